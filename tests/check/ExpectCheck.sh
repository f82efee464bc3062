# shellcheck shell=bash
# What the tests of the house checks share. Sourced with TREE set to the source tree; makes the empty folder $small, in
# which a test builds a small tree, and takes it away at the end.
set -euo pipefail
small=$(mktemp -d)
trap 'rm -rf "$small"' EXIT
failures=0

put() { # FILE: writes standard input to a file of the small tree
  mkdir -p "$small/$(dirname "$1")"
  cat >"$small/$1"
}

bad() { # CASE TEXT
  printf 'FAILED  %s\n        %s\n' "$1" "$2"
  failures=$((failures + 1))
}

passes() { # CASE TEXT COMMAND...: the command succeeds and says TEXT
  local name=$1 text=$2 said
  shift 2
  if ! said=$("$@" 2>&1); then
    bad "$name" "expected success, got: $said"
  elif [[ $said != *"$text"* ]]; then
    bad "$name" "expected \"$text\", got: $said"
  else
    echo "ok      $name"
  fi
}

fails() { # CASE TEXT COMMAND...: the command fails and says TEXT
  local name=$1 text=$2 said
  shift 2
  if said=$("$@" 2>&1); then
    bad "$name" "expected a failure, got: $said"
  elif [[ $said != *"$text"* ]]; then
    bad "$name" "expected \"$text\", got: $said"
  else
    echo "ok      $name"
  fi
}

finish() { exit $((failures != 0)); }
