# Benches of simulated hardware behind real device calls, for scripts to source after Wine.sh. They set `windows`, the
# folder of the Windows programs.
#
#   benchAttach DIR [OPTION...]  makes devices of the boards of a bench folder, in place of those before; options are
#                                those of benchdriver: --fault NAME[@N], --unlinked BOARD, --speed N, --trace FILE
#   benchDetach                  removes the devices
#   driverProcess                prints the process id of the driver, which is a process of its own under Wine
#   windowsPath PATH             prints how Windows programs call a file of this system
#   benchRun DIR ARGUMENT...     runs FwDeploy.exe in the bench's firmware folder, then waits until the bench is saved;
#                                exit code 124 when the program does not end within three minutes
#   makeBench BIN DIR            a bench with two cards, a box and an Orbo QX at older versions; its firmware files are
#                                short, and made by the fwbench in BIN
windowsPath() { realpath -m -- "$1" | tr / '\\' | sed 's/^/Z:/'; }

benchAttach() { wine "$windows/benchdriver.exe" attach "$(windowsPath "$1")" "${@:2}" </dev/null; }

benchDetach() { wine "$windows/benchdriver.exe" detach </dev/null; }

driverProcess() {
  local maps
  for maps in $(grep -ls 'benchdriver\.sys' /proc/[0-9]*/maps); do
    ! grep -qzxFs "WINEPREFIX=$WINEPREFIX" "${maps%maps}environ" || basename "${maps%/maps}"
  done
}

benchRun() {
  local code=0
  (cd "$1/firmware" && timeout -k 5 180 "$wineLoader" "$windows/FwDeploy.exe" "${@:2}" </dev/null) || code=$?
  wine "$windows/benchdriver.exe" settle </dev/null
  return "$code"
}

makeBench() {
  cat >"$2.json" <<'END'
{"files": {"BLMX0202.rbi": {"id": "BLMX", "version": "1161", "payload": 5011},
           "DVUX0202.rbi": {"id": "DVUX", "version": "1161", "payload": 4999},
           "PLGR0201.rbi": {"id": "PLGR", "version": "0220", "payload": 9001},
           "BROX0201.rbi": {"id": "BROX", "version": "0225", "payload": 7013},
           "ULMN0101.rbi": {"id": "ULMN", "version": "001c", "payload": 3011},
           "TULM0002.rbi": {"id": "TULM", "version": "0002", "payload": 2989},
           "VULM0101.rbi": {"id": "VULM", "version": "0001", "payload": 3323},
           "TLM_0104.rbi": {"id": "TLM_", "version": "0232", "payload": 8011},
           "PICO.rbi": {"id": "PICO", "version": "0123", "payload": 6521},
           "XNDR.rbi": {"id": "XNDR", "version": "030f", "payload": 6012},
           "ENCD.rbi": {"id": "ENCD", "version": "0204", "payload": 7014},
           "ENSC.rbi": {"id": "ENSC", "version": "0020", "payload": 6551},
           "ENVC.rbi": {"id": "ENVC", "version": "000a", "payload": 3203}}}
END
  "$1/fwbench" new "$2" --orbo-qx 4
  "$1/fwbench" new "$2.files" --describe "$2.json"
  cp "$2.files"/firmware/* "$2/firmware/"
  rm -r "$2.files" "$2.json"
}
