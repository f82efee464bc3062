#!/usr/bin/env bash
# The unmodified program finds simulated hardware by the system's own calls, reads and writes its mapped registers, and
# installs firmware in all of it. It must say, and leave, what the same run on a bench leaves without a driver.
#
#   InstallTest.sh SOURCE WINDOWS_BIN LINUX_BIN PREFIX
set -euo pipefail
source=$1 windows=$2 linux=$3 prefix=$4
. "$source/tests/windows/Wine.sh"
. "$source/tests/windows/Bench.sh"

scratch=$(mktemp -d)
trap 'wineEnd; rm -rf "$scratch"' EXIT
fail() { printf 'InstallTest: %s\n' "$*" >&2; exit 1; }
ok() { printf 'ok: %s\n' "$*"; }

wineCopy "$prefix" "$scratch/prefix"
cd "$scratch"

# A bench with everything, whose firmware files are short: one block of flash is enough.
makeBench "$linux" bench
cp -r bench twin

# Between "Loading" and "Done" a percentage comes each time that a while has passed, so that these lines hang on how
# fast the hardware is. All others are compared, those of the CPLD too.
comparable() { tr -d '\r' <"$1" | awk '/^Loading/ { timed = 1 } /^Done/ { timed = 0 } !(timed && /^[0-9]+%$/)'; }

# both CODE ARGUMENT...: runs the program on the driver's bench, and fwbench on its twin. They must end with this exit
# code, say the same, and leave the same.
both() {
  local code=$1 driverCode=0 twinCode=0 stream
  shift
  benchRun bench "$@" >driver.out 2>driver.err || driverCode=$?
  "$linux/fwbench" run twin -- "$@" </dev/null >twin.out 2>twin.err || twinCode=$?
  ((driverCode == code)) || fail "$*: exit code $driverCode behind the driver, not $code: $(tail -n 3 driver.err)"
  ((twinCode == code)) || fail "$*: exit code $twinCode without the driver, not $code"
  for stream in out err; do
    diff <(comparable "twin.$stream") <(comparable "driver.$stream") >&2 || fail "$*: other words on standard $stream"
  done
  wine "$windows/fwbench.exe" show bench </dev/null >driver.show
  "$linux/fwbench" show twin >twin.show
  ! grep -F "protocol error" driver.show >&2 || fail "$*: the hardware was spoken to in a way that it refused"
  diff twin.show <(tr -d '\r' <driver.show) >&2 || fail "$*: the hardware holds something else"
}

powerCycle() {
  wine "$windows/fwbench.exe" power-cycle bench </dev/null
  "$linux/fwbench" power-cycle twin
}

# expectVersions: each part that has an expected version must run it, by the table in driver.out.
expectVersions() {
  tr -d '\r' <driver.out | awk '$4 ~ /^[0-9a-f]+$/ { ++rows; if ($3 != $4) { print; ++old } }
                                END { exit old > 0 || rows < 14 }' >&2 || fail "a part does not run what was installed"
}

benchAttach bench || fail "the driver does not start"
both 0 -version -nopause
(($(grep -c '^ *[a-z0-9]* *[0-9]' driver.out) == 16)) || fail "-version does not list 16 parts: $(cat driver.out)"
ok "both cards, the box and the Orbo QX are found, opened and asked"

both 7 -all -nopause
ok "-all programs them all, exit code 7"

powerCycle
both 0 -version -nopause
expectVersions
ok "after a power cycle every part runs what was installed"

both 2 -bkarvel -nofussy -nopause
powerCycle
both 0 -version -nopause
grep -q '^ *bkarvel .* 0017 ' driver.out || fail "bkarvel does not run 0017, which its file has"
ok "-bkarvel programs the CPLD through the JTAG port, exit code 2"

benchDetach
code=0
benchRun bench -version -nopause >driver.out 2>&1 || code=$?
((code == 255)) || fail "without devices: exit code $code, not 255"
ok "when the devices are removed there is no hardware again"
