# Wine without a screen, for scripts to source. Every prefix is a folder of its own that the script throws away.
#
#   wineStart PREFIX [GRAPHICS]  makes a prefix in a new folder and starts its server; GRAPHICS is null (no screen, the
#                                default) or x11
#   wineCopy FROM PREFIX         the same as a copy of an idle one, in a moment
#   wineUse PREFIX               goes on in a prefix that is there
#   wine PROGRAM ARGUMENT...     runs a Windows program; its exit code is the low 8 bits of the program's
#   wineEnd                      ends the server of the present prefix, and with it all that runs there
wineLoader=/usr/lib/wine/wine64
wineServer=/usr/lib/wine/wineserver64

wineUse() {
  export WINEPREFIX=$1 WINEARCH=win64 WINEDEBUG=-all LC_ALL=C.UTF-8
  export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe,winedbg.exe=d'
  export HOME=$1/home XDG_RUNTIME_DIR=$1/run
  unset DISPLAY WAYLAND_DISPLAY
}

wine() { "$wineLoader" "$@"; }

# wineStart PREFIX [GRAPHICS]
wineStart() {
  mkdir -p "$1"/{home,run}
  chmod 700 "$1/run"
  wineUse "$1"
  wine wineboot -i </dev/null >/dev/null 2>&1
  wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d "${2:-null}" /f </dev/null >/dev/null 2>&1
  # Only a server that starts after the first boot can start services; and one that is told to stay keeps its drivers.
  wineEnd
  wineServe
}

# The first program starts the system's services, and these keep its streams for as long as they live. Whoever reads
# from a pipe to its end would wait for them.
wineServe() {
  "$wineServer" -p </dev/null >/dev/null 2>&1
  wine cmd /c exit </dev/null >/dev/null 2>&1
}

# wineCopy FROM PREFIX: files are shared by links, but for the registry, which the server writes.
wineCopy() {
  cp -al "$1" "$2"
  rm -f "$2"/*.reg "$2/wineserver"
  cp "$1"/*.reg "$2"
  wineUse "$2"
  wineServe
}

# Both calls end with an error where no server is left, which is what is wanted.
wineEnd() {
  "$wineServer" -k || true
  "$wineServer" -w || true
}
