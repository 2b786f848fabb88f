#!/usr/bin/env bash
# Builds the Debian packages korvanelle and korvanelle-kiosk into build/packages, and has lintian
# look at them.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/packages.sh lintian dpkg-dev systemd
cmake --preset release >/dev/null
cmake --build --preset release --target korvanelle korvanelle_base korvanelle_manuals
rm -rf build/packages
cpack --config build/release/CPackConfig.cmake -B build/packages
rm -rf build/packages/_CPack_Packages

# The packages are the developers' own, not an archive's; no bug asks for them.
lintian --allow-root --fail-on error --suppress-tags initial-upload-closes-no-bugs build/packages/*.deb
ls -l build/packages
