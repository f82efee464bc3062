# What the tests of the packages have in common, for them to source.

fail() {
  printf 'FAILED  %s\n' "$*" >&2
  exit 1
}

# checkSameBytes SCRIPT BUILD PACKAGE: the script, run again, makes the very same package of the build.
checkSameBytes() {
  "$1" "$2" again >/dev/null || fail "it does not pack again"
  cmp "$3" "again/$(basename "$3")" || fail "packing again gives other bytes"
  printf 'ok: packing again gives the same bytes\n'
}

# checkNoFolder UNPACKED FOLDER...: no file names one of the folders, which only the machine has that it was built on.
checkNoFolder() {
  local folder
  for folder in "${@:2}"; do
    if grep -rlaF "$folder" "$1"; then fail "the package names the folder $folder"; fi
  done
  printf 'ok: no file names a folder of the build\n'
}

# checkLicences PLACE TEXT...: each text stands in a file there.
checkLicences() {
  local text
  for text in "${@:2}"; do
    grep -rqF "$text" "$1" || fail "no licence has the words: $text"
  done
}

# checkPrograms VERSION FOLDER: uses each program, and FOLDER, which is new, for a bench. The caller's expect CODE
# PROGRAM ARGUMENT... runs a program, fails on any other exit code, and leaves what was said in the file said.
checkPrograms() {
  local program version=$1 bench=$2
  for program in fwbench rbitool talctool; do
    expect 0 "$program" --version
    [[ $(<said) == "$program $version" ]] || fail "$program --version says: $(<said)"
  done
  expect 255 FwDeploy -nopause
  grep -q 'FwDeploy failed: Could access neither Veltra nor Orbo QX hardware' said || fail "FwDeploy says: $(<said)"
  expect 0 talctool check
  (($(grep -c '"kind"' said) == 163)) || fail "talctool lists $(grep -c '"kind"' said) commands"
  expect 0 fwbench new "$bench"
  expect 0 rbitool show "$bench/firmware/BLMX0202.rbi"
  [[ $(<said) == *'"id":"BLMX"'*'"revision":"1161"'* ]] || fail "rbitool shows: $(<said)"
  # 7: computer, box and Orbo QX have to be power-cycled.
  expect 7 fwbench run "$bench" -- -all -nopause -noprogress
  expect 0 fwbench show "$bench"
  grep -qx 'belmara  *1160  *1161 *' said || fail "after the install, fwbench shows: $(<said)"
  expect 0 fwbench power-cycle "$bench"
  expect 0 fwbench show "$bench"
  grep -qx 'belmara  *1161  *1161 *' said || fail "after the power cycle, fwbench shows: $(<said)"
  printf 'ok: the programs run, and install firmware on a bench\n'
}
