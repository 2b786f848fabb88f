#!/usr/bin/env bash
# Installs the packages of scripts/package.sh in a clean Debian, runs the program from them against
# the simulator, starts the system with its units where a container can be started, upgrades, removes
# and purges them. Needs root. The clean system is kept in build/ for the next time.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo "scripts/test-package.sh needs root." >&2; exit 2; }

scripts/packages.sh debootstrap systemd systemd-container dpkg-dev
scripts/package.sh
cmake --build --preset release --target korvanelle-sim korvanelle-mksite
program_deb=$(echo build/packages/korvanelle_*.deb)
kiosk_deb=$(echo build/packages/korvanelle-kiosk_*.deb)
version=$(dpkg-deb -f "$program_deb" Version)

# What the mirror is and who signs it comes from this machine.
clean=build/clean-root
if [ ! -e "$clean.tar" ]; then
    rm -rf "$clean"
    debootstrap --variant=minbase bookworm "$clean" "${KORVANELLE_MIRROR:-http://deb.debian.org/debian}"
    tar -C "$clean" -cf "$clean.tar.part" .
    mv "$clean.tar.part" "$clean.tar"
    rm -rf "$clean"
fi

root=$(mktemp -d)
simulator=
program=
machine=
finish() {
    [ -z "$machine" ] || { kill "$machine" && wait "$machine"; } 2>/dev/null || true
    [ -z "$program" ] || kill "$program" 2>/dev/null || true
    [ -z "$simulator" ] || kill "$simulator" 2>/dev/null || true
    local place
    for place in mnt dev/pts proc; do
        ! mountpoint -q "$root/$place" || umount -l "$root/$place"
    done
    # Nothing of this machine may hang below what is deleted.
    ! grep -q " $root/" /proc/self/mounts || { echo "$root is still in use." >&2; return; }
    rm -rf --one-file-system "$root"
}
trap finish EXIT
trap 'exit 130' INT TERM

fail() { echo "FAILED: $*" >&2; exit 1; }
step() { echo "== $*"; }
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
eventually() {
    for _ in $(seq 300); do
        ! "$@" || return 0
        sleep 0.2
    done
    return 1
}

mount_all() {
    mount -t proc proc "$root/proc"
    mount --bind /dev/pts "$root/dev/pts"
    mount --bind build/release "$root/mnt"
}
unmount_all() { umount "$root/mnt" "$root/dev/pts" "$root/proc"; }

tar -C "$root" -xf "$clean.tar"
mkdir -p "$root/mnt"
mount_all
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
chmod +x "$root/usr/sbin/policy-rc.d"

step "install $version"
mkdir -p build/apt-cache "$root/debs"
cp "$program_deb" "$kiosk_deb" "$root/debs"
cp build/apt-cache/*.deb "$root/var/cache/apt/archives/" 2>/dev/null || true
echo 'APT::Keep-Downloaded-Packages "true";' >"$root/etc/apt/apt.conf.d/keep"
inside apt-get update -q
inside sh -c 'apt-get install -y -q --no-install-recommends /debs/*.deb'
cp -u "$root"/var/cache/apt/archives/*.deb build/apt-cache/

[ "$(inside stat -c '%U %a' /var/lib/korvanelle)" = "korvanelle 750" ] || fail "the folder of the data"
for group in dialout lp audio; do
    inside id -nG korvanelle | grep -qw "$group" || fail "the group $group"
done
[ -L "$root/etc/systemd/system/multi-user.target.wants/korvanelle-kiosk.service" ] || fail "the kiosk isn't enabled"
# A panel PC carries no desktop.
desktop=$(inside dpkg-query -W -f="\${Package}\n" | grep -E '^(xserver-xorg|gnome-|plasma-|xfce4|task-|lightdm|gdm3|sddm|weston)' || true)
[ -z "$desktop" ] || fail "a desktop came along: $desktop"

inside /usr/lib/korvanelle/korvanelle-sim --help >/dev/null || fail "the simulator of the rehearsals"

step "units"
inside systemd-analyze verify --man=no /lib/systemd/system/korvanelle-kiosk.service \
    /lib/systemd/system/korvanelle-service.service
for unit in korvanelle-kiosk korvanelle-kiosk-wayland; do
    # Ten times the score.
    inside systemd-analyze security --offline=true --threshold=29 "/lib/systemd/system/$unit.service" | tail -n 1
done

step "run"
data=$root/var/lib/korvanelle
inside /mnt/tools/mksite/korvanelle-mksite /dev/stdin /usr/lib/korvanelle/korvanelle.cfg \
    /var/lib/korvanelle/korvanelle.dat <data/demo/site.json
printf '[Ports]\r\nCOM1=/var/lib/korvanelle/bus\r\n' >"$data/korvanelle.ini"
printf '' >"$data/Histo20200101.his"
inside chown korvanelle:korvanelle /var/lib/korvanelle/korvanelle.dat \
    /var/lib/korvanelle/korvanelle.ini /var/lib/korvanelle/Histo20200101.his
# Holds the standard input of the simulator open; its scenario tells what the modules do.
mkfifo "$root/commands"
exec 3<>"$root/commands"
cp data/demo/scenario.json "$root/debs"
as_user=(chroot "$root" setpriv "--reuid=korvanelle" "--regid=korvanelle" --init-groups
    env -i PATH=/usr/bin:/bin LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen)
"${as_user[@]}" /mnt/simulator/korvanelle-sim --link /var/lib/korvanelle/bus \
    --scenario /debs/scenario.json <&3 >/dev/null &
simulator=$!
eventually test -L "$data/bus" || fail "the simulator"
"${as_user[@]}" korvanelle &
program=$!
polled() { grep -qE "APPEAR|COMMAND" "$data"/Trace/*.log 2>/dev/null; }
eventually polled || fail "no module was polled"
recorded() { grep -qE "P0[1-8]-C" "$data"/Histo*.his; }
eventually recorded || fail "no alarm is in the history"
kill "$program"
wait "$program" || fail "the program ended with an error"
program=
grep -q "APPLI STOP" "$data"/Trace/*.log || fail "the end isn't in the trace"
kill "$simulator"
wait "$simulator" || true
simulator=
[ -z "$(find "$root/usr/lib/korvanelle" -newer "$data/korvanelle.ini" -type f)" ] || fail "the program wrote beside itself"

# What the documentation tells to install for the compositor.
read -ra compositor <<<"$(sed -n 's/^ *apt install --no-install-recommends \(cage .*\)/\1/p' docs/installation.md)"
[ "${#compositor[@]}" -gt 0 ] || fail "no compositor in docs/installation.md"
nspawn=(systemd-nspawn --quiet --register=no --private-network --console=pipe -D "$root")
# Where no systemd runs there is none to make a unit for the container.
[ -d /run/systemd/system ] || nspawn+=(--keep-unit)
booted() {
    local init
    init=$(tr -d ' ' <"/proc/$machine/task/$machine/children") && [ -n "$init" ] &&
        nsenter -t "$init" -a env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@"
}
unit=korvanelle-kiosk
shown() { booted systemctl show -p "$1" --value "$unit"; }
told() { booted journalctl -b -u "$unit" -g "$1" >/dev/null; }
# up <starts>: the unit said that it is up, after so many new starts, and what it does.
up() {
    [ "$(shown ActiveState 2>/dev/null)" = active ] && [ "$(shown NRestarts)" = "$1" ] &&
        [[ $(shown StatusText) == *"Modules watched: 8"* ]]
}
hangs_and_dies() {
    eventually up 0 || fail "$unit isn't up: $(booted journalctl -b -u "$unit")"
    booted killall -STOP korvanelle
    eventually up 1 || fail "$unit hung and wasn't started again"
    told "Watchdog timeout" || fail "the watchdog of $unit"
    booted killall -KILL korvanelle
    eventually up 2 || fail "$unit died and wasn't started again"
    booted systemctl stop "$unit"
    [ "$(shown Result)" = success ] || fail "the end of $unit"
    told "Korvanelle II stops" || fail "$unit was killed at its end"
}
rehearsing() { [[ $(shown StatusText) == Rehearsal.* ]]; }
watching() { up 0 && ! rehearsing; }
# A rehearsal takes the place of the watch and gives it back; neither the unit nor a compositor may
# take that for an end.
rehearses() {
    local place="$root/etc/systemd/system/$unit.service.d/rehearsal.conf"
    printf '[Service]\nExecStart=\n%s --rehearsal\n' "$(grep ^ExecStart= "packaging/kiosk/$unit.service")" >"$place"
    booted systemctl daemon-reload
    booted systemctl start "$unit"
    eventually rehearsing || fail "$unit doesn't rehearse: $(booted journalctl -b -u "$unit")"
    # A simulator is given up with its third death.
    for _ in 1 2 3; do
        eventually booted killall -q -KILL korvanelle-sim
        sleep 1
    done
    eventually watching || fail "the rehearsal of $unit has no good end: $(booted journalctl -b -u "$unit")"
    booted systemctl stop "$unit"
    rm "$place"
    booted systemctl daemon-reload
}

unmount_all
if "${nspawn[@]}" true 2>/dev/null; then
    step "start of the system"
    # A container has no console and no display; nobody waits a minute.
    for unit in korvanelle-kiosk korvanelle-kiosk-wayland; do
        mkdir "$root/etc/systemd/system/$unit.service.d"
        printf '[Service]\nStandardInput=null\nWatchdogSec=5\n' >"$root/etc/systemd/system/$unit.service.d/container.conf"
    done
    cp "$root/etc/default/korvanelle-kiosk" "$root/default"
    printf 'QT_QPA_PLATFORM=offscreen\nWLR_BACKENDS=headless\n' >>"$root/etc/default/korvanelle-kiosk"
    mount_all
    inside apt-get install -y -q --no-install-recommends "${compositor[@]}" psmisc
    cp -u "$root"/var/cache/apt/archives/*.deb build/apt-cache/
    unmount_all
    "${nspawn[@]}" --boot </dev/null >/dev/null 2>&1 &
    machine=$!
    unit=korvanelle-kiosk
    hangs_and_dies
    rehearses
    unit=korvanelle-kiosk-wayland
    booted systemctl start "$unit"
    hangs_and_dies
    rehearses
    kill "$machine"
    wait "$machine" || true
    machine=
    rm -r "$root"/etc/systemd/system/korvanelle-kiosk*.service.d
    mv "$root/default" "$root/etc/default/korvanelle-kiosk"
else
    step "no container can be started here: the units were not run"
fi
mount_all

step "upgrade"
echo "# changed by the technician" >>"$root/etc/default/korvanelle-kiosk"
for deb in "$program_deb" "$kiosk_deb"; do
    dpkg-deb -R "$deb" "$root/next"
    sed -i "s/^Version: .*/Version: $version+next/" "$root/next/DEBIAN/control"
    [ ! -e "$root/next/etc/default/korvanelle-kiosk" ] ||
        echo "# another line of ours" >>"$root/next/etc/default/korvanelle-kiosk"
    rm -f "$root/next/DEBIAN/md5sums"
    dpkg-deb --root-owner-group -b "$root/next" "$root/debs/next-$(basename "$deb")" >/dev/null
    rm -rf "$root/next"
done
inside sh -c 'dpkg --force-confdef --force-confold -i /debs/next-*.deb'
[ "$(inside dpkg-query -W -f="\${Version}" korvanelle)" = "$version+next" ] || fail "the upgrade"
grep -q "changed by the technician" "$root/etc/default/korvanelle-kiosk" || fail "the conffile was overwritten"
recorded || fail "the history went with the upgrade"

step "remove and purge"
inside systemctl enable korvanelle-kiosk-wayland
inside dpkg -r korvanelle-kiosk korvanelle
[ -e "$data/korvanelle.dat" ] || fail "a removal took the site"
[ -e "$root/etc/default/korvanelle-kiosk" ] || fail "a removal took the conffile"
inside sh -c 'dpkg -i /debs/next-*.deb'
[ "$(inside systemctl is-enabled korvanelle-kiosk-wayland)" = enabled ] || fail "the kiosk that was chosen stays masked"
inside dpkg -P korvanelle-kiosk korvanelle
recorded || fail "a purge took the histories"
{ [ ! -e "$data/korvanelle.dat" ] && [ ! -e "$data/Trace" ]; } || fail "a purge left the site"
[ -z "$(find "$root/etc" -name '*korvanelle*')" ] || fail "a purge left $(find "$root/etc" -name '*korvanelle*')"
inside sh -c 'dpkg -i /debs/korvanelle_*.deb'
inside env KORVANELLE_PURGE_HISTORY=1 dpkg -P korvanelle
[ ! -e "$data" ] || fail "a purge that was asked for the histories left them"
echo "The packages install, run, upgrade and go."
