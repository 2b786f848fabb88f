#!/usr/bin/env bash
# Renders every screen in every language at 800 by 600 and, scaled, at 1280 by 800 and 1280 by 1024.
#
#   scripts/screenshots.sh FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:?a folder}

scripts/packages.sh
cmake --preset release >/dev/null
cmake --build --preset release --target korvanelle-screens korvanelle-mksite korvanelle_base
site=$(mktemp -d)
trap 'rm -rf "$site"' EXIT
cp build/release/korvanelle.cfg data/help/*.html data/printers/*.prt "$site"
build/release/tools/mksite/korvanelle-mksite data/demo/site.json "$site/korvanelle.cfg" "$site/korvanelle.dat"
build/release/tools/screens/korvanelle-screens "$site" "$target/800x600"
build/release/tools/screens/korvanelle-screens "$site" "$target/1280x800" 1280 800
build/release/tools/screens/korvanelle-screens "$site" "$target/1280x1024" 1280 1024
