#!/usr/bin/env bash
# The installer and the example front end together, as two programs: each record against what the console says, and
# that a front end changes nothing of what the installer does.
#
#   FrontEndTest.sh SOURCE WINDOWS_BIN LINUX_BIN PREFIX [PICTURES]
#
# PICTURES is a folder for a picture of the front end in the middle of an install.
set -euo pipefail
source=$1 windows=$2 linux=$3 prefix=$4 pictures=${5-}
. "$source/tests/windows/Wine.sh"
. "$source/tests/windows/Bench.sh"

scratch=$(mktemp -d)
screen=
frontEnd=
cleanUp() {
  [[ -z $frontEnd ]] || kill "$frontEnd" 2>/dev/null || true
  wineEnd
  [[ -z $screen ]] || { kill "$screen" && wait "$screen"; } 2>/dev/null || true
  rm -rf "$scratch"
}
trap cleanUp EXIT
fail() {
  printf 'FrontEndTest: %s\n' "$*" >&2
  exit 1
}
ok() { printf 'ok: %s\n' "$*"; }

# await WHAT COMMAND...: until the command succeeds; half a minute at most.
await() {
  local what=$1 attempt
  shift
  for ((attempt = 0; attempt < 600; ++attempt)); do
    if "$@"; then return 0; fi
    sleep 0.05
  done
  fail "waited in vain for $what"
}

# startFrontEnd [OPTION...]: returns when its window is there. It logs to $scratch/log and ends with the restart record.
startFrontEnd() {
  rm -f "$scratch/log"
  timeout 600 "${inFrontOf[@]}" "$windows/frontend.exe" --log "$scratch/log" --exit-after-restart "$@" &
  frontEnd=$!
  await "the front end's window" test -e "$scratch/log"
}

endFrontEnd() {
  local code=0
  wait "$frontEnd" || code=$?
  frontEnd=
  ((code == 0)) || fail "the front end ended with exit code $code"
}

# install NAME CODE ARGUMENT...: runs the installer in the present folder; its output goes to $scratch/NAME.out and .err.
install() {
  local name=$1 expected=$2 code=0
  shift 2
  timeout 600 "$wineLoader" "$windows/FwDeploy.exe" "$@" </dev/null >"$scratch/$name.out" 2>"$scratch/$name.err" || code=$?
  ((code == expected)) || fail "FwDeploy $* ended with exit code $code, not $expected: $(tail -n 3 "$scratch/$name.err")"
}

# sameOutput ONE OTHER: but for the percentages, which hang on the time that things take.
sameOutput() {
  local stream
  for stream in out err; do
    diff <(sed '/^[0-9]*%\r*$/d' "$scratch/$1.$stream") <(sed '/^[0-9]*%\r*$/d' "$scratch/$2.$stream") >&2 ||
      fail "the front end changes what is said on standard $stream"
  done
}

# recordsIn: the log as lines of record, part or nothing, and numbers or texts; versions as the console has them.
recordsIn() {
  sed -E \
    -e 's/^\{"bytes":268,"current":([0-9]+),"expected":([0-9]+),"hex":"[0-9a-f]{536}","kind":42,"part":"([^"]*)","record":"version"\}$/version \3 \1 \2/' \
    -e 's/^\{"bytes":524,"hex":"[0-9a-f]{1048}","kind":82,"part":"([^"]*)","percent":(-?[0-9]+),"phase":"([^"]*)","record":"progress"\}$/progress \1 \3 \2/' \
    -e 's/^\{"boxPowerCycle":([0-9]+),"bytes":8,"cpuRestart":([0-9]+),"hex":"[0-9a-f]{16}","kind":102,"record":"restart"\}$/restart \2 \1/' \
    "$scratch/log" | awk '$1 == "version" { $3 = sprintf("%04x", $3); $4 = sprintf("%04x", $4) } { print }'
}

# recordsOf NAME: the records that the console's lines call for, in the same form.
recordsOf() {
  tr -d '\r' <"$scratch/$1.out" | awk '
    /^ *[a-z0-9]+ +[0-9a-f]+\.[0-9a-f]+ / { sub(/-.*/, "", $3); if ($4 != "N/A") print "version", $1, $3, $4; next }
    $0 == "Loading" || $0 == "Programming" { phase = $0; print "progress", part, phase, 0; next }
    $0 == "Done" { print "progress", part, phase = $0, 100; next }
    /^[0-9]+%$/ { print "progress", part, phase, $0 + 0; next }
    /^[a-z0-9]+$/ { part = $0 }'
}

# expectRecords NAME CPU BOX: the log holds what the console of that run calls for, and the restart record at the end.
expectRecords() {
  diff <(recordsOf "$1" && echo "restart $2 $3") <(recordsIn) >&2 || fail "the records are not those of the console"
}

# withFrontEnd NAME CODE CPU BOX ARGUMENT...: installs while a front end listens.
withFrontEnd() {
  startFrontEnd
  install "$1" "$2" "${@:5}"
  endFrontEnd
  expectRecords "$1" "$3" "$4"
}

# newBench NAME: with the beginnings of the firmware files, so that an install is quick.
newBench() {
  "$linux/fwbench" new "$scratch/$1"
  truncate -s '<20000' "$scratch/$1"/firmware/*.rbi
}

# count KIND: records of that kind in the log.
count() { recordsIn | grep -c "^$1 " || true; }

withoutHardware() {
  mkdir "$scratch/here"
  cd "$scratch/here"
  install bare 255 -version -nopause
  withFrontEnd seen 255 0 0 -version -nopause
  sameOutput bare seen
  ok "without hardware the only record is a restart of 0 and 0, and the front end changes nothing"

  # The last record is there before the user has pressed Enter.
  local installer code=0
  mkfifo "$scratch/keys"
  startFrontEnd
  timeout 600 "$wineLoader" "$windows/FwDeploy.exe" <"$scratch/keys" >"$scratch/paused.out" 2>"$scratch/paused.err" &
  installer=$!
  exec {keys}>"$scratch/keys"
  endFrontEnd
  kill -0 "$installer" 2>/dev/null || fail "the installer did not wait for Enter"
  echo >&"$keys"
  exec {keys}>&-
  wait "$installer" || code=$?
  ((code == 255)) || fail "the paused run ended with exit code $code"
  expectRecords paused 0 0
  ok "the restart record comes before the wait for Enter"
}

changesNothing() {
  newBench alone
  cp -r "$scratch/alone" "$scratch/watched"
  local name
  for name in alone watched; do
    benchAttach "$scratch/$name"
    cd "$scratch/$name/firmware"
    if [[ $name == alone ]]; then
      install alone 5 -fwcore -pico -version -nopause
    else
      withFrontEnd watched 5 0 0 -fwcore -pico -version -nopause
    fi
    benchDetach
  done
  sameOutput alone watched
  ok "an install with a front end says and does what it does without; its code is 5, and its restart 0 and 0"
}

wholeInstall() {
  newBench bench
  benchAttach "$scratch/bench"
  cd "$scratch/bench/firmware"
  withFrontEnd all 7 0 0 -all -version -nopause
  # Both host cards, box and Orbo QX: what the bench has, but for the CPLDs, which expect no version and give no progress.
  (($(count version) == 14)) || fail "$(count version) version records, not 14"
  (($(count 'progress [a-z0-9]* Done') == 14)) || fail "$(count 'progress [a-z0-9]* Done') parts were done, not 14"
  ok "an install of everything gives $(count version) versions, $(count progress) steps and, as its code is 7, a restart of 0 and 0"

  # "belmara" in its field, 1160 and 1161; "belmara", "Loading", 0.
  grep -qE '"hex":"62656c6d61726100[0-9a-f]{504}6011000061110000"' "$scratch/log" || fail "no version record of belmara's bytes"
  grep -qE '"hex":"62656c6d61726100[0-9a-f]{504}4c6f6164696e6700[0-9a-f]{504}00000000"' "$scratch/log" ||
    fail "no progress record of belmara's bytes"
  ok "the bytes of a version and of a progress record are those of the format"

  withFrontEnd box 1 0 1 -fwcore -nofussy -nopause
  withFrontEnd second 4 1 1 -pico -nofussy -nopause
  withFrontEnd card 2 1 0 -dovu -nofussy -nopause -noprogress -version
  ok "the exit codes 1, 2 and 4 give the restarts 0 1, 1 0 and 1 1"
  # Two parts more than above: -nofussy shows them, too.
  (($(count version) == 16)) || fail "-noprogress gave $(count version) version records, not 16"
  (($(count progress) == 0)) || fail "-noprogress gave $(count progress) progress records"
  ok "-noprogress gives no progress, but versions and restart"
  benchDetach
}

failingInstall() {
  newBench faulty
  benchAttach "$scratch/faulty" --fault program-fails@1
  cd "$scratch/faulty/firmware"
  withFrontEnd failed 255 0 0 -all -nopause
  benchDetach
  (($(count progress) > 0)) || fail "the failing install gave no progress"
  ok "an install that fails in the middle ends with a restart of 0 and 0"
}

startScreen() {
  mkfifo "$scratch/display"
  Xvfb -displayfd 3 -screen 0 640x480x24 -nolisten tcp 3>"$scratch/display" 2>"$scratch/screen.log" &
  screen=$!
  local number
  read -r -t 30 number <"$scratch/display" || fail "there is no screen: $(cat "$scratch/screen.log")"
  wineEnd
  wineCopy "$prefix" "$scratch/onScreen"
  export DISPLAY=:$number
  wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d x11 /f >/dev/null
  # The drivers of the desktop are chosen when the server starts.
  wineEnd
  wineServe
}

# Pixels of the picture that have the colour of the front end's bars.
barPixels() {
  import -window root "$scratch/front-end.png" &&
    convert "$scratch/front-end.png" -fill black +opaque '#7CC996' -fill white -opaque '#7CC996' \
      -format '%[fx:round(mean*w*h)]' info:
}

isDrawn() { (($(barPixels) > 2000)); }

isHeld() { recordsIn | grep -E "^progress $1 [A-Za-z]+ ([5-9][0-9]|[0-9]{3,})$" >/dev/null; }

picture() {
  newBench shown
  # One that takes a while, so that there is a middle.
  truncate -s 800000 "$scratch/shown/firmware/TLM_0104.rbi"
  startScreen
  benchAttach "$scratch/shown"
  touch "$scratch/hold"
  local installer
  # Only a desktop draws title bars; all that is to meet has to be on it.
  inFrontOf=("$wineLoader" explorer '/desktop=bench,640x480')
  startFrontEnd --hold tolmarn "$scratch/hold"
  cd "$scratch/shown/firmware"
  timeout 600 "${inFrontOf[@]}" "$windows/FwDeploy.exe" -version -fwcore -tolmarn -ulmen -nopause \
    </dev/null >"$scratch/shown.out" 2>"$scratch/shown.err" &
  installer=$!
  await "the middle of the install" isHeld tolmarn
  await "the front end on the screen" isDrawn
  local size colours
  read -r size colours < <(identify -format '%wx%h %k\n' "$scratch/front-end.png")
  [[ $size == 640x480 ]] || fail "the picture is $size"
  ((colours > 20)) || fail "the picture has $colours colours only"
  ! recordsIn | grep '^progress ulmen' >/dev/null || fail "the install did not wait for the front end"
  if [[ -n $pictures ]]; then cp "$scratch/front-end.png" "$pictures/"; fi
  ok "the front end is on the screen while the installer waits for it"

  rm "$scratch/hold"
  wait "$installer" || true
  endFrontEnd
  expectRecords shown 0 1
  benchDetach
  ok "when it lets go the install goes on to its end"
}

wineCopy "$prefix" "$scratch/prefix"
inFrontOf=("$wineLoader")
withoutHardware
changesNothing
wholeInstall
failingInstall
picture
