#!/usr/bin/env bash
# The unmodified program behind a driver that fails: what it says, how it ends, that it ends at all, and that the
# hardware is usable afterwards.
#
#   FaultTest.sh SOURCE WINDOWS_BIN LINUX_BIN PREFIX
set -euo pipefail
source=$1 windows=$2 linux=$3 prefix=$4
. "$source/tests/windows/Wine.sh"
. "$source/tests/windows/Bench.sh"

scratch=$(mktemp -d)
trap 'wineEnd; rm -rf "$scratch"' EXIT
fail() { printf 'FaultTest: %s\n' "$*" >&2; exit 1; }
ok() { printf 'ok: %s\n' "$*"; }

wineCopy "$prefix" "$scratch/prefix"
cd "$scratch"
makeBench "$linux" shelf

newBenches() {
  rm -rf bench twin
  cp -r shelf bench
  cp -r shelf twin
}

# behindDriver CODE ARGUMENT...: runs the program on the driver's bench; it must end by itself, with this exit code.
behindDriver() {
  local code=$1 ended=0
  shift
  benchRun bench "$@" >driver.out 2>driver.err || ended=$?
  ((ended == code)) || fail "$failing: exit code $ended, not $code: $(cat driver.err)"
  tr -d '\r' <driver.out >driver.out.text
  tr -d '\r' <driver.err >driver.err.text
}

# strikes CODE MESSAGE DRIVER_OPTIONS [FWBENCH_OPTIONS]: -version on new benches, with and without a driver. Both must
# end with this code and say the same, standard error must be the message (a pattern; "" for nothing), and neither may
# be spoken to in a way that it refuses. Options stand in one word each; those of fwbench are the driver's if left out.
strikes() {
  local code=$1 message=$2 twinCode=0 stream options forFwbench
  failing=$3
  read -ra options <<<"$3"
  read -ra forFwbench <<<"${4-$3}"
  newBenches
  benchAttach bench "${options[@]}" || fail "$failing: the driver does not start"
  behindDriver "$code" -version -nopause
  "$linux/fwbench" run twin "${forFwbench[@]}" -- -version -nopause </dev/null >twin.out.text 2>twin.err.text ||
    twinCode=$?
  ((twinCode == code)) || fail "$failing: exit code $twinCode without a driver, not $code"
  for stream in out err; do
    diff "twin.$stream.text" "driver.$stream.text" >&2 || fail "$failing: other words on standard $stream"
  done
  # shellcheck disable=SC2053  # the message is a pattern
  [[ $(cat driver.err.text) == $message ]] || fail "$failing: does not say \"$message\", but: $(cat driver.err.text)"
}

# diedOf MESSAGE: the program has said, as its last words, that it failed with this message.
# shellcheck disable=SC2053
diedOf() {
  [[ $(cat driver.err.text) == $(died "$1") ]] || fail "$failing: does not say \"$1\", but: $(cat driver.err.text)"
}

# works CODE ARGUMENT...: the driver's bench, without faults, serves a run that ends with this exit code.
works() {
  failing="$failing, the run after it"
  benchAttach bench || fail "$failing: the driver does not start"
  behindDriver "$@"
  noProtocolError
}

noProtocolError() {
  wine "$windows/fwbench.exe" show bench </dev/null >shown || fail "$failing: fwbench cannot read the bench"
  ! grep -F "protocol error" shown >&2 || fail "$failing: the hardware was spoken to in a way that it refused"
}

# died MESSAGE: the line, as a pattern.
died() { printf 'FwDeploy failed: %s File: *.cpp Line: *' "$1"; }

strikes 255 "$(died "can't fetch board memory map")" "--unlinked belmara" "--fault open-fails@1"
works 0 -version -nopause
strikes 255 "$(died "can't fetch board memory map")" "--unlinked dovu" "--fault open-fails@2"
strikes 0 "" "--unlinked morvak" "--fault open-fails@3"
ok "a device that is found and will not open"

strikes 255 "$(died "can't fetch board memory map")" "--fault memory-map-fails"
strikes 255 "$(died "bad return from fetching memory map")" "--fault memory-map-short"
strikes 255 "$(died "can't map registers")" "--fault map-registers-fails"
strikes 255 "$(died "bad return from mapping")" "--fault map-registers-short@2"
strikes 255 "$(died "couldn't map registers")" "--fault map-refused"
works 0 -version -nopause
strikes 255 "$(died "couldn't map registers")" "--fault map-refused-second@2"
ok "a mapping that fails, is cut short, or is refused"

strikes 255 "$(died "can't fetch board memory map")" "--fault control-fails"
strikes 255 "$(died "MorvakHelper::Open can't get Morvak model - ioctl failed.")" "--fault model-fails"
strikes 0 "" "--fault slot-fails"
strikes 255 "$(died "MorvakHelper: Invalid number of codec slots.")" "--fault slots-invalid"
strikes 0 "" "--fault vpd-fails"
strikes 255 "$(died "TransactBoBCommand: can't send talc command - ioctl failed.")" "--fault talc-fails"
strikes 255 "$(died "TransactBoBCommand: can't send talc command - bad ioctl return.")" "--fault talc-short@2"
ok "control calls that fail"

strikes 255 "$(died "TransactBoBCommand: bad header on Talc response packet.")" "--fault talc-unwritten"
strikes 255 "*$(died "Unable to get VPD information")" "--fault talc-time-out"
works 4 -pico -nopause
ok "replies that are never written, and commands that are never answered"

strikes 0 "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?" "--fault box-silent"
strikes 0 "Veltra BOB is inaccessable, and cannot be loaded.  Is BOB turned off?" "--fault box-late@1 --speed 1" \
  "--fault box-late@1"
strikes 255 "$(died "BOB Communications error, missing reply header")" "--fault box-no-header"
ok "a box that is silent, late, or speaks nonsense"

strikes 255 "$(died "Unable to decode Zerin major VPD information")" "--fault read-lost"
ok "registers that read all ones"

# The plug is pulled while the flash is written. What a run on a bench without a driver has here is no measure: that
# ends with the plug.
newBenches
failing="--fault power-cut@5000"
benchAttach bench --fault power-cut@5000
behindDriver 255 -belmara -nopause
diedOf "Error writing Zerin flash ROM"
behindDriver 255 -belmara -nopause
diedOf "can't fetch board memory map"
works 2 -belmara -nopause
wine "$windows/fwbench.exe" power-cycle bench </dev/null
behindDriver 0 -version -nopause
grep -q '^ *belmara .* 1161 *1161$' driver.out.text || fail "$failing: the card does not run what was installed then"
ok "hardware without power in the middle of a run stays away, and what that leaves can be programmed"

newBenches
failing="the driver's process is ended"
benchAttach bench
: >driver.out
benchRun bench -belmara -nopause >driver.out 2>driver.err &
program=$!
timeout 30 grep -qm1 Loading <(tail -n +1 -f --pid "$program" driver.out) || fail "$failing: nothing is loaded"
kill -KILL "$(driverProcess)"
ended=0
wait "$program" || ended=$?
((ended == 255)) || fail "$failing: exit code $ended, not 255"
tr -d '\r' <driver.err >driver.err.text
diedOf "Error writing Zerin flash ROM"
wineEnd
wineServe
works 2 -belmara -nopause
ok "a driver whose process is gone in the middle of a run: the registers read all ones, and a new driver works"
