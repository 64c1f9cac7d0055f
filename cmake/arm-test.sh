#!/usr/bin/env bash
# Cross-builds the driver for 32-bit ARM and runs its tests under qemu-arm; `./run arm` installs
# what this takes and calls it. The panel's side, Debian's armhf Qt 5 with what that needs, goes to
# build-arm/root: downloaded by an apt with an architecture, package lists and cache of its own,
# from the Debian archive this machine uses, and unpacked without being installed, so that the
# machine's own packages stay as they are. A second call only builds what has changed and runs.
# Written for Debian 12; elsewhere some of the package names differ. What the tests say is kept
# in build-arm/tst_*.log.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$PWD/build-arm
root=$build/root

runtime=(libqt5network5 libqt5serialport5 libqt5test5)
# Unpacked alone: what these depend on besides, OpenGL and the like, is not needed here.
development=(qtbase5-dev libqt5serialport5-dev qt5-qmake)

fail() {
    printf 'arm-test: %s\n' "$1" >&2
    exit 2
}

armhf() {
    apt-get -qq -c "$build/apt/apt.conf" "$@" || fail "apt could not get the armhf packages"
}

# Puts the panel's libraries into $root, completely or not at all.
make_root() {
    local apt=$build/apt package
    rm -rf "$apt" "$root.new"
    mkdir -p "$apt/state/lists/partial" "$apt/debs/partial" "$root.new"
    : >"$apt/state/status"
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) main' \
        'Created-By: Packages' 'Label: Debian' 'Component: main' >"$apt/sources.list"
    [[ -s $apt/sources.list ]] ||
        fail "apt here knows no Debian main archive; expected one, and its lists by apt-get update"
    cat >"$apt/apt.conf" <<CONF
APT::Architecture "armhf";
APT::Architectures { "armhf"; };
APT::Install-Recommends "false";
APT::Sandbox::User "root";
Acquire::Languages "none";
Dir::State "$apt/state";
Dir::State::status "$apt/state/status";
Dir::Cache "$apt";
Dir::Cache::archives "$apt/debs";
Dir::Etc::sourcelist "$apt/sources.list";
Dir::Etc::sourceparts "/dev/null";
CONF
    armhf update
    armhf install --yes --download-only "${runtime[@]}"
    (cd "$apt/debs" && armhf download "${development[@]}")
    for package in "$apt"/debs/*.deb; do
        dpkg -x "$package" "$root.new"
    done
    # moc and its like run here, not on the panel.
    ln -s /usr/lib/qt5 "$root.new/usr/lib/qt5"
    mv "$root.new" "$root"
}

[[ -d $root ]] || make_root
if ! { cmake -S . -B "$build" -G Ninja -DTOLVANE_FOLDERS='plc;tests/lib;tests/exchange' \
    -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake && cmake --build "$build"; } \
    >"$build/build.log" 2>&1; then
    cat "$build/build.log" >&2
    fail "the build failed"
fi
grep -A5 'warning:' "$build/build.log" >&2 || true

status=0
for program in "$build"/tests/*/tst_*; do
    [[ -f $program && -x $program ]] || continue
    name=${program##*/}
    if timeout 20m qemu-arm -L "$root" "$program" >"$build/$name.log" 2>&1; then
        printf '%-13s %s\n' "$name" "$(grep '^Totals:' "$build/$name.log")"
    else
        status=1
        printf '%-13s FAILED\n' "$name"
        grep -vE '^(PASS|Config)' "$build/$name.log" | tail -n 40 >&2 || true
    fi
done
exit $status
