#!/usr/bin/env bash
# Checks form: clang-format on all sources, shellcheck on all scripts, and clang-tidy on the sources
# that a change touches.
#
#   scripts/lint.sh [--all | --since COMMIT]
#
# --since COMMIT  clang-tidy looks at what differs from that commit; without it, from the branch
#                 that is followed, or else from the commit before
# --all           clang-tidy looks at every source
set -euo pipefail
cd "$(dirname "$0")/.."

since=
case ${1:-} in
--all) ;;
--since) since=${2:?a commit} ;;
'') since=$(git merge-base HEAD '@{upstream}' 2>/dev/null || git rev-parse -q --verify HEAD~1 ||
    git rev-parse HEAD) ;;
*) echo "usage: scripts/lint.sh [--all | --since COMMIT]" >&2; exit 2 ;;
esac

scripts/packages.sh clang-format clang-tidy shellcheck
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
{ git ls-files '*.sh' '.ci/*'; git grep -l '^#!/bin/sh' packaging; } | xargs shellcheck

# clang doesn't read the compiler's precompiled headers, and looks at one file at a time.
build=build/lint
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    -DKORVANELLE_PRECOMPILED=OFF -DKORVANELLE_UNITY=OFF >/dev/null
mapfile -t sources < <(
    if [ -n "$since" ]; then
        git diff --name-only --diff-filter=d "$since" -- '*.cpp'
    else
        git ls-files '*.cpp'
    fi | while read -r source; do
        grep -qF "/$source\"" "$build/compile_commands.json" && echo "$source"
    done || true
)
[ "${#sources[@]}" -eq 0 ] && exit 0
# The forms and signals of the sources, without which they can't be read.
mapfile -t generated < <(ninja -C "$build" -t targets all | sed -n 's/: phony$//p' | grep '_autogen$')
cmake --build "$build" --target "${generated[@]}" >/dev/null
printf '%s\n' "${sources[@]}" |
    xargs -P "$(nproc)" -n 1 clang-tidy --quiet --warnings-as-errors='*' -p "$build"
