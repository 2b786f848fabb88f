#!/usr/bin/env bash
# Installs the Debian packages that the build, the tests and the demonstration need, and those
# given as arguments. Does nothing when all are there.
set -euo pipefail

packages=(
    build-essential clang cmake ninja-build ccache pkg-config python3
    qt6-base-dev qt6-base-dev-tools qt6-serialport-dev qt6-svg-dev
    libgl-dev libsqlcipher-dev libssl-dev libcli11-dev nlohmann-json3-dev
    libpulse-dev libasound2-dev libsystemd-dev libzip-dev pulseaudio pulseaudio-utils
    libgtest-dev libgmock-dev libbenchmark-dev libmodbus-dev
    qt6-qpa-plugins qt6-wayland fonts-dejavu-core
    rsyslog rsyslog-openssl openssl
)

missing=()
for package in "${packages[@]}" "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
        missing+=("$package")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
"${sudo[@]}" apt-get update -q
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${missing[@]}"
