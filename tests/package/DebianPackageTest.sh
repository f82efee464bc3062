#!/usr/bin/env bash
# Installs the Debian package on a small Debian system of its own that has the essential packages and those that the
# package depends on; runs the programs there, builds an example against the installed library, and takes the package
# off again.
#
#   DebianPackageTest.sh SOURCES BUILD PACKAGE     as root, or as one who may use sudo
#
# The system comes from the Debian archives that this machine's apt uses.
set -euo pipefail
sources=$(cd "$1" && pwd)
build=$(cd "$2" && pwd)
package=$(realpath "$3")
source "$sources/tests/package/PackageChecks.sh"
export LC_ALL=C.UTF-8
as_root=()
if ((EUID != 0)); then as_root=(sudo); fi
place=$(mktemp -d)
trap '"${as_root[@]}" rm -rf --one-file-system "$place"' EXIT
cd "$place"
system=$place/system

there() {
  "${as_root[@]}" chroot "$system" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@" </dev/null
}

# expect CODE COMMAND...: runs the command on the new system, keeps what it says, and fails on any other exit code.
expect() {
  local expected=$1 code=0
  shift
  there "$@" >said 2>&1 || code=$?
  ((code == expected)) || fail "$* ended with exit code $code, not $expected: $(<said)"
}

# All but what dpkg notes down for itself, and what was put there to try.
fileList() {
  "${as_root[@]}" find "$system" -xdev ! -path "$system/var/lib/dpkg*" ! -path "$system/var/log/*" \
    ! -path "$system/tmp/*" | sort
}

checkSameBytes "$sources/cmake/package/debian" "$build" "$package"

dpkg-deb -c "$package" >listing
if grep -vE '^(drwxr-xr-x|-rw-r--r--|-rwxr-xr-x) root/root ' listing; then fail "odd owners or permissions"; fi
[[ $(awk '/^-rwx/ { print $NF }' listing | sort | tr '\n' ' ') == \
  './usr/bin/FwDeploy ./usr/bin/fwbench ./usr/bin/rbitool ./usr/bin/talctool ' ]] ||
  fail "other files are executable: $(<listing)"
dpkg-deb -x "$package" unpacked
for program in unpacked/usr/bin/*; do
  if readelf --wide --sections "$program" | grep -E ' \.(symtab|debug_)'; then fail "$program has symbols"; fi
done
if readelf --wide --sections unpacked/usr/lib/libtalcpath.a | grep -E ' \.debug_'; then
  fail "the library has debug symbols"
fi
checkLicences unpacked/usr/share/doc/fwdeploy/copyright \
  'GCC RUNTIME LIBRARY EXCEPTION' 'University of Cincinnati' 'Niels Lohmann'
printf 'ok: owners, permissions, no symbols, licences\n'
checkNoFolder unpacked "$sources" "$build" "$place"

# A system with nothing but what the package asks for.
depends=$(dpkg-deb -f "$package" Depends | sed -E 's/ *\([^)]*\)//g; s/ //g')
listArchives() {
  apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    sort -u
}
listArchives >archives
if [[ ! -s archives ]]; then
  "${as_root[@]}" apt-get update >log 2>&1 || true
  listArchives >archives
  [[ -s archives ]] || fail "apt knows no archive of Debian: $(<log)"
fi
# How this machine reaches its archives, and what it makes of their dates.
apt-config dump Acquire | grep -E '^Acquire::(http|https|Check-|Retries)' | grep -v ' "";$' >apt-options || true
"${as_root[@]}" timeout 400 mmdebstrap --variant=essential --include="$depends" --aptopt="$place/apt-options" \
  '' "$system" archives >log 2>&1 || fail "no system to install on: $(tail -n 30 log)"
printf 'ok: a new system with %s\n' "$depends"

fileList >before
"${as_root[@]}" cp "$package" "$system/tmp/fwdeploy.deb"
expect 0 dpkg -i /tmp/fwdeploy.deb
expect 0 dpkg --verify fwdeploy
[[ ! -s said ]] || fail "dpkg --verify: $(<said)"
printf 'ok: it installs\n'

checkPrograms "$(dpkg-deb -f "$package" Version)" /tmp/bench

for program in FwDeploy fwbench rbitool talctool; do
  man -M "$system/usr/share/man" "$program" >said 2>&1 || fail "there is no man page of $program: $(<said)"
  grep -q "^NAME" said || fail "the man page of $program shows: $(<said)"
done
printf 'ok: man finds the four pages\n'

# The compiler is this machine's, headers and library are those installed.
cp -r "$system/usr/share/doc/fwdeploy/examples/first-packet" example
cmake -G Ninja -S example -B example/build -DCMAKE_PREFIX_PATH="$system/usr" >log 2>&1 || fail "$(<log)"
grep -q "^TalcPath_DIR:PATH=$system/usr/" example/build/CMakeCache.txt || fail "CMake finds another TalcPath"
cmake --build example/build >log 2>&1 || fail "$(<log)"
"${as_root[@]}" cp example/build/first-packet "$system/tmp"
expect 0 /tmp/first-packet
grep -qxF 'to the box:   0B 0B 00 06 80 35 00 00 00 C8' said || fail "the example says: $(<said)"
read -ra flags < <(PKG_CONFIG_LIBDIR=$system/usr/lib/pkgconfig pkg-config --cflags --libs talcpath)
c++ -std=c++17 example/main.cpp "${flags[@]}" -o by-hand >log 2>&1 || fail "pkg-config gives ${flags[*]}: $(<log)"
printf 'ok: an example builds against the library, and runs\n'

expect 0 dpkg --purge fwdeploy
fileList >after
diff before after || fail "taking the package off leaves something behind"
printf 'ok: nothing is left behind\n'
