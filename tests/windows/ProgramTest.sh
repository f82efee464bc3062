#!/usr/bin/env bash
# The program as it ships, on a system without the hardware: what it says, how it ends, and what it is made of.
#
#   ProgramTest.sh SOURCE WINDOWS_BIN LINUX_BIN PREFIX
set -euo pipefail
source=$1 windows=$2 linux=$3 prefix=$4
. "$source/tests/windows/Wine.sh"

scratch=$(mktemp -d)
trap 'wineEnd; rm -rf "$scratch"' EXIT
fail() { printf 'ProgramTest: %s\n' "$*" >&2; exit 1; }
ok() { printf 'ok: %s\n' "$*"; }

wineCopy "$prefix" "$scratch/prefix"
mkdir "$scratch/here"
cd "$scratch/here"

# both ARGUMENT...: runs both builds with these arguments. They must say the same, but for line ends, and end alike.
both() {
  local windowsCode=0 linuxCode=0 stream
  wine "$windows/FwDeploy.exe" "$@" </dev/null >windows.out 2>windows.err || windowsCode=$?
  "$linux/FwDeploy" "$@" </dev/null >linux.out 2>linux.err || linuxCode=$?
  ((windowsCode == linuxCode)) || fail "$*: exit code $windowsCode on Windows, $linuxCode on Linux"
  for stream in out err; do
    ! grep -qvP '\r$' "windows.$stream" || fail "$*: a line on $stream without the line end of Windows"
    diff "linux.$stream" <(sed 's/\r$//' "windows.$stream") >&2 || fail "$*: the systems differ on standard $stream"
  done
}

# says CODE TEXT ARGUMENT...: the same, and the text is there.
says() {
  local code=$1 text=$2 ended=0
  both "${@:3}"
  wine "$windows/FwDeploy.exe" "${@:3}" </dev/null >/dev/null 2>&1 || ended=$?
  ((ended == code)) || fail "${*:3}: exit code $ended, not $code"
  grep -qF -- "$text" windows.out windows.err || fail "${*:3}: does not say \"$text\""
}

says 255 "Could access neither Veltra nor Orbo QX hardware" -nopause
ok "no device: the line for no hardware, exit code 255"

both -help
grep -q -- '-noversion' windows.out || fail "-help lists no options"
both -nosuchoption -nopause
both -version nosuchfile.rbi -nopause
both -belmara nosuchfile.rbi -nopause
both -belmara -nopause
both
ok "-help, option errors and the rest say on Windows what they say on Linux"

resources=$(x86_64-w64-mingw32-windres -i "$windows/FwDeploy.exe" -O rc 2>/dev/null)
for block in '"IDR_RT_TCDFILE_'{1..6}'" "RT_TCD_FILE"' '"IDR_RT_HWCFILE_1" "RT_HWC_FILE"' '1 VERSIONINFO' '1 24 '; do
  grep -q "^$block" <<<"$resources" || fail "there is no resource $block in FwDeploy.exe"
done
ok "dictionaries, capabilities, version and manifest are resources of the program"

# A constructor and a destructor bear two symbols each.
exports=$(x86_64-w64-mingw32-objdump -p "$windows/FwDeploy.exe" |
  sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^\t\[ *[0-9]*\] //p' | c++filt)
(($(wc -l <<<"$exports") == 29)) || fail "FwDeploy.exe exports $(wc -l <<<"$exports") names, not 29"
expected=$(sed -n 's/^ *"\(.*\)";$/\1/p' "$source/src/user/TestAndUtilApps/FwDeploy/exported-symbols.txt" | sort)
diff <(sort -u <<<"$exports") - <<<"$expected" >&2 || fail "FwDeploy.exe exports other functions than on Linux"
ok "the 27 functions of the timing class are exported, and nothing else"

libraries=$(x86_64-w64-mingw32-objdump -p "$windows/FwDeploy.exe" | sed -n 's/^.*DLL Name: //p' | sort)
diff - <<<"$libraries" <(printf '%s\n' ADVAPI32.dll KERNEL32.dll SETUPAPI.dll USER32.dll WINMM.dll msvcrt.dll) >&2 ||
  fail "FwDeploy.exe needs other libraries than the system's"
ok "nothing but the system's own libraries is needed"
