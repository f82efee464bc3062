#!/usr/bin/env bash
# Installs the library, copies the example out of the tree, builds it there against what was installed, by CMake and by
# pkg-config, and holds what it prints against what it should.
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

expected='to the box:   0B 0B 00 06 80 35 00 00 00 C8
from the box: 0B 0B 00 0B 80 35 00 00 00 C8 00 03 56 50 44
board 200 says "VPD"'

check() { # PROGRAM WAY
  local said
  said=$("$1") || fail "the example that was built by $2 ended with exit code $?"
  [[ $said == "$expected" ]] || fail "the example that was built by $2 printed: $said"
  printf 'ok      the example builds by %s, and runs\n' "$2"
}

cmake --install "$build" --prefix "$place/first" --component talcpath >"$place/log" || fail "$(cat "$place/log")"
# An installed tree can be moved.
mv "$place/first" "$place/installed"
headers=$(cd "$place/installed/include" && find . -type f | sort | tr '\n' ' ')
[[ $headers == './talccaps.h ./talccapsmanager.h ./talcpath.h ' ]] || fail "these headers are installed: $headers"
if grep -rqI "$sources" "$place/installed"; then fail "what is installed names the folder that it was built from"; fi

cp -r "$sources/examples/first-packet" "$place/example"
cd "$place/example"
cmake -G Ninja -S . -B build -DCMAKE_PREFIX_PATH="$place/installed" -DCMAKE_CXX_COMPILER="$compiler" >"$place/log" 2>&1 ||
  fail "$(cat "$place/log")"
cmake --build build >"$place/log" 2>&1 || fail "$(cat "$place/log")"
check build/first-packet CMake

pc=$(find "$place/installed" -name talcpath.pc)
[[ -n $pc ]] || fail "there is no talcpath.pc"
read -ra flags < <(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --cflags --libs talcpath) || fail "pkg-config finds nothing"
"$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror main.cpp "${flags[@]}" -o by-hand || fail "no program from pkg-config's flags"
check ./by-hand pkg-config
