#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests. With an argument, the preset of that name
# in place of "release".
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
scripts/packages.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
# Many tests wait for a line or a program more than they work.
ctest --preset "$preset" --parallel "$(($(nproc) + 4))"
