#!/usr/bin/env bash
# The linter passes clean code, and fails on a fault in a source, in a header behind the links of the include path, and
# on a source that no target compiles. Needs clang-tidy.
#
#   LintCheckTest.sh TREE
TREE=$(cd "$1" && pwd)
source "$TREE/tests/check/ExpectCheck.sh"
lint() { "$TREE/cmake/check/lint" "$small/build" "$small"; }

put .clang-tidy <"$TREE/.clang-tidy"
printf '#pragma once\nint Answer();\n' | put src/room/Answer.h
printf '#include "room/Answer.h"\n\nint Answer() { return 42; }\n' | put src/room/Answer.cpp
mkdir -p "$small/build/doors/room"
ln -s "$small/src/room" "$small/build/doors/room/room"
put build/compile_commands.json <<END
[
{
  "directory": "$small/build",
  "command": "g++ -std=c++20 -I$small/build/doors/room -Wall -Werror -c $small/src/room/Answer.cpp",
  "file": "$small/src/room/Answer.cpp"
}
]
END
passes "clean code" "lint: clang-tidy finds nothing in 1 sources" lint

printf '#pragma once\ninline int Half(int n) {\n  if (n > 1)\n    ;\n  return n / 2;\n}\nint Answer();\n' | put src/room/Answer.h
fails "a fault in a header of another room" "Answer.h:4:5: error" lint
printf '#pragma once\nint Answer();\n' | put src/room/Answer.h

printf '#include "room/Answer.h"\n\nint Answer() { return sizeof(sizeof(int)); }\n' | put src/room/Answer.cpp
fails "a fault in a source" "Answer.cpp:3" lint
fails "the reason comes last" "lint: clang-tidy has findings, see above" lint

echo 'int x;' | put tools/Forgotten.cpp
fails "a source that no target compiles" "lint: tools/Forgotten.cpp is compiled by no target" lint

finish
