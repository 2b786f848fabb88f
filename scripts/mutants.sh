#!/usr/bin/env bash
# Small faults in src/ and the tests that see them: scripts/mutants.sh [build|run|report|compare]
# [options of tools/mutants/mutants.py...]; without a step all but compare. What is found goes to
# build/mutants: matrix.tsv, unseen.txt, redundant.txt. A run that was ended goes on where it was.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/packages.sh
mutants() {
    python3 -B tools/mutants/mutants.py "$@"
}

case ${1:-} in
build | run | report | compare) mutants "$@" ;;
*)
    mutants build "$@"
    mutants run "$@"
    mutants report
    ;;
esac
