#!/usr/bin/env bash
# Unpacks the zip for Windows into an empty folder, looks at what is in it, and runs each program under Wine in a new
# prefix.
#
#   WindowsPackageTest.sh SOURCES BUILD PACKAGE
set -euo pipefail
sources=$(cd "$1" && pwd)
build=$(cd "$2" && pwd)
package=$(realpath "$3")
source "$sources/tests/package/PackageChecks.sh"
source "$sources/tests/windows/Wine.sh"
place=$(mktemp -d)
started=
trap 'if [[ -n $started ]]; then wineEnd; fi; rm -rf "$place"' EXIT
cd "$place"

# expect CODE PROGRAM ARGUMENT...: runs an unpacked program, keeps what it says, and fails on any other exit code.
expect() {
  local expected=$1 program=$2 code=0
  shift 2
  timeout 120 "$wineLoader" "$top/$program.exe" "$@" </dev/null >said.crlf 2>&1 || code=$?
  tr -d '\r' <said.crlf >said
  ((code == expected)) || fail "$program $* ended with exit code $code, not $expected: $(<said)"
}

checkSameBytes "$sources/cmake/package/windows" "$build" "$package"
unzip -q "$package" -d unpacked
name=$(basename "$package" .zip)
[[ $(ls unpacked) == "$name" ]] || fail "the zip has more at its top than $name: $(ls unpacked)"
top=$place/unpacked/$name
[[ $(cd "$top" && echo *.exe) == 'FwDeploy.exe fwbench.exe rbitool.exe talctool.exe' ]] ||
  fail "other programs: $(ls "$top")"
for program in "$top"/*.exe; do
  x86_64-w64-mingw32-objdump --syms "$program" | grep -qx 'no symbols' || fail "$program has symbols"
  if x86_64-w64-mingw32-objdump --headers "$program" | grep ' \.debug_'; then fail "$program has debug symbols"; fi
  # What Windows itself has: nothing of a compiler's.
  if x86_64-w64-mingw32-objdump --private-headers "$program" | grep 'DLL Name: ' |
    grep -viE ' (ADVAPI32|KERNEL32|msvcrt|SETUPAPI|USER32|WINMM)\.dll$'; then
    fail "$program needs a library that does not come with it"
  fi
done
printf 'ok: four programs, no symbols, no library but those of Windows\n'
checkNoFolder unpacked "$sources" "$build" "$place"

checkLicences "$top/licences" 'GCC RUNTIME LIBRARY EXCEPTION' 'the mingw-w64 project' \
  'mingw-w64-libraries/winpthreads' 'University of Cincinnati' 'Niels Lohmann'
for licence in $(grep -rhoE '/usr/share/common-licenses/[A-Za-z0-9][A-Za-z0-9.-]*' "$top/licences" |
  sed 's/.*\///; s/\.$//' | sort -u); do
  [[ -s $top/licences/common/$licence.txt ]] || fail "the text of $licence is missing"
done
if "$sources/cmake/package/licences" refused c++ none/such.h 2>said; then fail "a missing licence is no error"; fi
printf 'ok: the licences are there, and one that is missing stops the packing\n'

pages=0
for page in "$top"/*.html "$top"/docs/*.html; do
  for link in $(grep -oE 'href="[^"#:]+"' "$page" | cut -d '"' -f 2); do
    [[ -s $(dirname "$page")/$link ]] || fail "$page links to $link, which is not there"
  done
  pages=$((pages + 1))
done
((pages == 1 + $(find "$sources/docs" -maxdepth 1 -name '*.md' | wc -l))) || fail "there are $pages pages"
for program in "$top"/*.exe; do
  grep -q '^NAME' "$top/man/$(basename "$program" .exe).txt" || fail "no usage text of $program"
done
printf 'ok: the manual has %d pages, and no link leads nowhere\n' "$pages"

wineUse "$place/prefix"
started=yes
timeout 120 bash -c '. "$1"; wineStart "$2"' wineStart "$sources/tests/windows/Wine.sh" "$WINEPREFIX" ||
  fail "Wine does not start"
checkPrograms "$(sed -E 's/^fwdeploy-(.*)-windows-x64$/\1/' <<<"$name")" bench
