#!/usr/bin/env bash
# Installs the library, copies the examples out of the tree, builds them there against what was installed, by CMake and
# by pkg-config, and holds what they print against what they should.
#
#   InstalledLibraryTest.sh SOURCES BUILD COMPILER
set -euo pipefail
sources=$1
build=$2
compiler=$3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

fail() {
  printf 'FAILED  %s\n' "$*" >&2
  exit 1
}

first_packet='to the box:   0B 0B 00 06 80 35 00 00 00 C8
from the box: 0B 0B 00 0B 80 35 00 00 00 C8 00 03 56 50 44
board 200 says "VPD"'

page=$sources/docs/talcpath.md
block() { # NAME: a fenced block of the manual's page
  sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$page" | sed '1d;$d'
}
piped_transport=$(block output)
# The time stamps are the machine's own.
command_log=$(block log)

check_quotes() { # SOURCE BLOCK...: what the page shows of the example stands there
  local source=$1 name text
  shift
  for name in "$@"; do
    text=$(block "$name")
    [[ -n $text && $(<"$source") == *"$text"* ]] || fail "the page's block $name does not stand in $source"
    printf 'ok      the page quotes its %s\n' "$name"
  done
}

check() { # EXPECTED WAY COMMAND...
  local said expected=$1 way=$2
  shift 2
  said=$("$@") || fail "the example $1 that was built by $way ended with exit code $?"
  [[ $said == "$expected" ]] || fail "the example $1 that was built by $way printed: $said"
  printf 'ok      the example %s builds by %s, and runs\n' "$1" "$way"
}

check_log() { # the blank line in front belongs to the log
  local said
  said=$(sed 's/^@time [0-9]* /@time N /' commands.log)
  [[ $said == "$command_log" ]] || fail "the command log holds: $said"
  rm commands.log
}

build_by_cmake() { # EXAMPLE
  cp -r "$sources/examples/$1" "$place/$1"
  cd "$place/$1"
  cmake -G Ninja -S . -B build -DCMAKE_PREFIX_PATH="$place/installed" -DCMAKE_CXX_COMPILER="$compiler" \
    >"$place/log" 2>&1 || fail "$(cat "$place/log")"
  cmake --build build >"$place/log" 2>&1 || fail "$(cat "$place/log")"
}

build_by_hand() { # PROGRAM SOURCE...
  local program=$1
  shift
  "$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror "$@" "${flags[@]}" -o "$program" ||
    fail "no program $program from pkg-config's flags"
}

cmake --install "$build" --prefix "$place/first" --component talcpath >"$place/log" || fail "$(cat "$place/log")"
# An installed tree can be moved.
mv "$place/first" "$place/installed"
headers=$(cd "$place/installed/include" && find . -type f | sort | tr '\n' ' ')
[[ $headers == './talccaps.h ./talccapsmanager.h ./talcpath.h ' ]] || fail "these headers are installed: $headers"
if grep -rqI "$sources" "$place/installed"; then fail "what is installed names the folder that it was built from"; fi
pc=$(find "$place/installed" -name talcpath.pc)
[[ -n $pc ]] || fail "there is no talcpath.pc"
read -ra flags < <(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --cflags --libs talcpath) || fail "pkg-config finds nothing"

build_by_cmake first-packet
check "$first_packet" CMake build/first-packet
build_by_hand by-hand main.cpp
check "$first_packet" pkg-config ./by-hand

build_by_cmake piped-transport
check_quotes PipedTransport.cpp transport
check_quotes main.cpp select command observer
check "$piped_transport" CMake build/piped-transport build/box commands.log
check_log
build_by_hand by-hand main.cpp PipedTransport.cpp
build_by_hand box-by-hand box.cpp
check "$piped_transport" pkg-config ./by-hand ./box-by-hand commands.log
check_log
