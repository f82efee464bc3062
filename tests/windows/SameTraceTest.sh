#!/usr/bin/env bash
# The same bench on both systems: made alike, run alike, left alike, byte for byte.
#
#   SameTraceTest.sh SOURCE WINDOWS_BIN LINUX_BIN PREFIX
set -euo pipefail
source=$1 windows=$2 linux=$3 prefix=$4
. "$source/tests/windows/Wine.sh"

scratch=$(mktemp -d)
trap 'wineEnd; rm -rf "$scratch"' EXIT
fail() { printf 'SameTraceTest: %s\n' "$*" >&2; exit 1; }
ok() { printf 'ok: %s\n' "$*"; }

wineCopy "$prefix" "$scratch/prefix"
mkdir "$scratch"/{windows,linux}

# both CODE ARGUMENT...: fwbench of both systems, each in its own folder; they must end and say the same.
both() {
  local code=$1 ended=0
  shift
  (cd "$scratch/windows" && wine "$windows/fwbench.exe" "$@" </dev/null >../windows.said 2>&1) || ended=$?
  ((ended == code)) || { cat "$scratch/windows.said" >&2; fail "fwbench $* ended with $ended on Windows, not $code"; }
  ended=0
  (cd "$scratch/linux" && "$linux/fwbench" "$@" </dev/null >../linux.said 2>&1) || ended=$?
  ((ended == code)) || fail "fwbench $* ended with $ended on Linux, not $code"
  diff "$scratch/linux.said" <(sed 's/\r$//' "$scratch/windows.said") >&2 || fail "fwbench $* says different things"
}

same() { diff -rq "$scratch/linux" "$scratch/windows" >&2 || fail "$1 differs"; }

# Whoever installs leaves a name in the card's flash, so it has to be the same one.
read -r USERNAME USERDOMAIN < <(wine cmd /c 'echo %USERNAME% %USERDOMAIN%' | tr -d '\r')
[[ -n $USERNAME && -n $USERDOMAIN ]] || fail "Wine tells no user"
export USERNAME USERDOMAIN TZ=UTC

both 0 new bench --host-cards both --box on --orbo-qx 4 --seed 7
same "the bench as made"
ok "a bench of the same seed is the same"

both 7 run bench --trace all.trace --vcd all.vcd -- -all -nopause
(($(wc -l <"$scratch/linux/all.trace") > 100000)) || fail "the trace of an install is short"
same "the trace, the waveform or the bench after an install"
ok "trace ($(wc -l <"$scratch/windows/all.trace") lines) and waveform of an install are the same"

both 2 run bench --trace karvel.trace -- -bkarvel -nofussy -nopause
same "the trace or the bench after programming a CPLD"
both 255 run bench --trace fault.trace --fault erase-fails@2 -- -belmara -nofussy -noupdate -nopause
same "the trace or the bench after a failed erase"
both 0 power-cycle bench
both 0 show bench --json
same "the bench after a power cycle"
ok "CPLD, a fault and a power cycle leave the same"
