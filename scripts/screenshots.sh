#!/usr/bin/env bash
# Renders every screen in every language at 800 by 600 and, scaled, at 1280 by 800 and 1280 by 1024.
#
#   scripts/screenshots.sh [--help-pictures] FOLDER
#
# --help-pictures    also renews the pictures that the help shows, out of those of 800 by 600
set -euo pipefail
cd "$(dirname "$0")/.."
help=
[ "${1:-}" != --help-pictures ] || { help=yes; shift; }
target=${1:?a folder}

scripts/packages.sh ${help:+imagemagick}
cmake --preset release >/dev/null
cmake --build --preset release --target korvanelle-screens korvanelle-mksite korvanelle_base
site=$(mktemp -d)
trap 'rm -rf "$site"' EXIT
cp -r build/release/korvanelle.cfg data/help/* data/printers/*.prt "$site"
build/release/tools/mksite/korvanelle-mksite data/demo/site.json "$site/korvanelle.cfg" "$site/korvanelle.dat"
for size in "800 600" "1280 800" "1280 1024"; do
    read -r width height <<<"$size"
    mkdir -p "$target/${width}x$height"
    build/release/tools/screens/korvanelle-screens "$site" "$target/${width}x$height" "$width" "$height"
done

# Half the size and few colours: what is looked for is where things stand.
[ -n "$help" ] || exit 0
mkdir -p data/help/pictures
grep -oh 'pictures/[^"]*\.png' data/help/*.html | sort -u | while read -r picture; do
    convert "$target/800x600/${picture#pictures/}" -resize 400x300 +dither -colors 48 -strip \
        -define png:compression-level=9 "PNG8:data/help/$picture"
done
