#!/usr/bin/env bash
# The check of the includes passes a small tree that keeps the rules, and fails it for each rule that is broken.
#
#   HouseCheckTest.sh TREE
TREE=$(cd "$1" && pwd)
source "$TREE/tests/check/ExpectCheck.sh"

goodTree() {
  rm -rf "${small:?}"/*
  put cmake/check/house.txt <<'END'
# room   | place             | may include
ground   | src/ground/       |
errors   | src/program/Error |
middle   | src/middle/       | ground errors
aside    | src/aside/        | ground
top      | src/program/      | middle ground
tests    | tests/            | *
END
  echo '#pragma once' | put src/ground/Clock.h
  echo '#pragma once' | put src/program/Error.h
  printf '#pragma once\n#include <cstdint>\n\n#include "ground/Clock.h"\n#include "Error.h"\n' | put src/middle/Helper.h
  printf '#include "middle/Helper.h"\n\n#include "Table.h"\n' | put src/middle/Helper.cpp
  echo '#pragma once' | put src/middle/Table.h
  echo '#include "ground/Clock.h"' | put src/aside/Aside.cpp
  echo '#include "middle/Helper.h"' | put src/program/Program.h
  echo '#include "program/Program.h"' | put tests/ProgramTest.cpp
}
includes() { "$TREE/cmake/check/includes" "$small"; }

goodTree
passes "a tree that keeps the rules" "includes: 7 in 8 files" includes

goodTree
printf '#pragma once\n#include "middle/Helper.h"\n' | put src/ground/Clock.h
fails "an include that climbs" \
  'src/ground/Clock.h:2: "middle/Helper.h": rule: no room includes a room above it: middle stands above ground' includes

goodTree
echo '#include "tests/ProgramTest.h"' | put src/program/Program.h
echo '#pragma once' | put tests/ProgramTest.h
fails "a program that includes a test" "no room includes a room above it: tests stands above top" includes

goodTree
echo '#include "middle/Helper.h"' | put src/aside/Aside.cpp
fails "an include of a room below that is not the room's to use" \
  'src/aside/Aside.cpp:1: "middle/Helper.h": rule: aside may not include middle' includes

goodTree
echo '#include "Error.h"' | put src/program/Program.h
fails "a file's own place goes before its folder's" 'src/program/Program.h:1: "Error.h": rule: top may not include errors' includes

goodTree
printf '#pragma once\n\n#include "middle/Helper.h"\n' | put src/middle/Table.h
printf '#pragma once\n#include "middle/Table.h"\n' | put src/middle/Helper.h
fails "a circle of two" "rule: no includes in a circle: src/middle/Helper.h -> src/middle/Table.h -> src/middle/Helper.h" includes
fails "a circle, by file and line" "src/middle/Table.h:3: rule" includes

goodTree
echo '#include "Third.h"' | put src/middle/Table.h
echo '#include "Helper.h"' | put src/middle/Third.h
printf '#pragma once\n#include "middle/Table.h"\n' | put src/middle/Helper.h
fails "a circle of three" \
  "src/middle/Helper.h -> src/middle/Table.h -> src/middle/Third.h -> src/middle/Helper.h" includes

goodTree
echo '#include "Table.h"' | put src/middle/Table.h
fails "a file that includes itself" "in a circle: src/middle/Table.h -> src/middle/Table.h" includes

goodTree
echo '#include "../ground/Clock.h"' | put src/aside/Aside.cpp
fails "an include with .." 'src/aside/Aside.cpp:1: "../ground/Clock.h": rule: no include climbs out of its folder' includes

goodTree
echo '  #  include "ground/../middle/Helper.h"' | put src/aside/Aside.cpp
fails "an include with .. in the middle and blanks around the hash" 'rule: no include climbs out of its folder' includes

goodTree
echo '#include "ground/Gone.h"' | put src/aside/Aside.cpp
fails "an include of nothing" '"ground/Gone.h": rule: quotes are for headers of the house, and it has no such file' includes

goodTree
echo '#include <middle/Helper.h>' | put src/aside/Aside.cpp
fails "a header of the house in angle brackets" "<middle/Helper.h>: rule: headers of the house are included with quotes" includes
fails "angle brackets do not hide where it goes" "rule: aside may not include middle" includes

goodTree
echo '#include HEADER' | put src/aside/Aside.cpp
fails "an include that a macro names" "src/aside/Aside.cpp:1: rule: an include names its file" includes

goodTree
echo 'int x;' | put src/elsewhere/New.cpp
fails "a file outside the rooms" "src/elsewhere/New.cpp:1: rule: every file has a room" includes

goodTree
printf 'ground | src/ground/ | top\ntop | src/ | ground\ntests | tests/ |\n' | put cmake/check/house.txt
fails "a table with an arrow up" "cmake/check/house.txt:1: rule: room ground may use only rooms that stand before it" includes

goodTree
echo 'gone | src/gone/ | ground' >>"$small/cmake/check/house.txt"
fails "a table with a place that is not there" "no C++ file begins with src/gone/" includes

rm -rf "${small:?}"/*
fails "a tree without C++" "no C++ file found" includes

# The report on lengths: 20 files of 1 to 20 lines have their median at the 10th and their 95th percentile at the 19th.
for lines in {1..20}; do seq "$lines" | put "src/F$lines.cpp"; done
seq 601 | put tests/LongTest.cpp
passes "lengths of the program's files" "src, simulator, tools: median 10, 95th percentile 19 (20 files)" \
  "$TREE/cmake/check/sizes" "$small"
passes "lengths of the tests" "tests: median 601, 95th percentile 601 (1 files)" "$TREE/cmake/check/sizes" "$small"
passes "files that grew long" "over 600 lines: tests/LongTest.cpp (601)" "$TREE/cmake/check/sizes" "$small"

finish
