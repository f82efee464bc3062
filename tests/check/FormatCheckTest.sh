#!/usr/bin/env bash
# The check of the layout passes a well laid out file and fails a badly laid out one. Needs clang-format.
#
#   FormatCheckTest.sh TREE
TREE=$(cd "$1" && pwd)
source "$TREE/tests/check/ExpectCheck.sh"
format() { "$TREE/cmake/check/format" "$small"; }

put .clang-format <"$TREE/.clang-format"
echo 'int answer = 42;' | put src/Good.cpp
passes "well laid out" "format: 1 files are laid out" format

printf 'int  answer( ){\nreturn 42 ;}\n' | put simulator/Bad.h
fails "badly laid out, by file and line" "simulator/Bad.h:1:4: error: code should be clang-formatted" format
fails "badly laid out, the reason" "are not laid out as .clang-format has it" format

rm "$small/simulator/Bad.h"
echo 'NoSuchKey: true' | put .clang-format
fails "a style that clang-format does not know" "clang-format does not accept .clang-format" format

finish
