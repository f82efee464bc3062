#!/usr/bin/env bash
# Holds the man pages against the programs: each command and option of a usage text is in the program's page, each
# option of a page is one of the program, the firmware files of FwDeploy's page are those of a bench, and the formatter
# finds no fault.
#
#   ManPagesTest.sh PAGES PROGRAMS     the folder of the pages, and that of the programs
set -euo pipefail
pages=$(cd "$1" && pwd)
programs=$(cd "$2" && pwd)
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"

fail() {
  printf 'FAILED  %s\n' "$*" >&2
  exit 1
}

# One paragraph a line, so that no word is broken.
page() { MANWIDTH=1000 MANROFFOPT='-rHY=0' man --encoding=ascii -l "$pages/$1.1" | col -bx; }

# usage PROGRAM WORD...: prints "option NAME" and "command NAME" for each one that is in the usage text of the program,
# or of the command that WORD... is, and of the commands below it.
usage() {
  local name text command
  text=$("$programs/$1" "${@:2}" --help) || fail "$* --help ended with exit code $?"
  grep -oE '^  (-[a-z],)?--[a-z-]+' <<<"$text" | grep -oE -e '-+[a-z-]+' | sed 's/^/option /'
  for command in $(awk '/^Subcommands:/ { on = 1; next } on && /^  [a-z]/ { print $1 }' <<<"$text"); do
    name="${*:2} $command"
    printf 'command %s\n' "${name# }"
    usage "$@" "$command"
  done
}

# hasWord TEXT WORD: it stands there, and is no part of a longer one.
hasWord() { grep -qE -e "(^|[^[:alnum:]-])$2($|[^[:alnum:]-])" "$1"; }

optionsOf() { grep -oE '(^|[^[:alnum:]-])-{1,2}[[:alpha:]][[:alnum:]-]*' "$1" | sed 's/^[^-]*//' | sort -u; }

for program in FwDeploy fwbench rbitool talctool; do
  faults=$(MANROFFSEQ='' man --warnings -E UTF-8 -l -Tutf8 -Z "$pages/$program.1" 2>&1 >/dev/null) ||
    fail "man does not show $program's page: $faults"
  [[ -z $faults ]] || fail "the formatter says of $program's page: $faults"
  page "$program" >"$program.text"
  for section in NAME SYNOPSIS DESCRIPTION ENVIRONMENT 'EXIT STATUS' EXAMPLES 'SEE ALSO'; do
    grep -qx "$section" "$program.text" || fail "$program's page has no section $section"
  done
done
printf 'ok: the formatter finds no fault in the four pages\n'

for program in fwbench rbitool talctool; do
  usage "$program" | sort -u >words
  (($(wc -l <words) > 5)) || fail "$program --help names but $(wc -l <words) words"
  while read -r kind word; do
    hasWord "$program.text" "$word" || fail "$program's page does not have the $kind $word"
  done <words
  for option in $(optionsOf "$program.text"); do
    # Examples have command lines of the installer, behind "--".
    [[ $program == fwbench && $option =~ ^-(all|version|nopause)$ ]] || grep -qxF "option $option" words ||
      fail "$program's page has the option $option, which the program has not"
  done
  printf 'ok: the page of %s has its %d commands and options, and no others\n' "$program" "$(wc -l <words)"
done

# The installer's usage text keeps some options from those who do not know them.
{
  printf '%s\n' -help -all -veltra -noveltra -orboqx -noorboqx -forcetolmarn -noforcetolmarn
  { "$programs/FwDeploy" -help -nopause 2>error || true; } | grep -oE -e '-[a-z0-9]+'
} >words
(($(wc -l <words) == 8 + 10 + 2 * 28)) || fail "FwDeploy has $(wc -l <words) options"
while read -r option; do
  hasWord FwDeploy.text "$option" || fail "FwDeploy's page does not have the option $option"
done <words
for option in $(optionsOf FwDeploy.text); do
  [[ $option == -part || $option == -nopart ]] || grep -qxF -e "$option" words ||
    fail "FwDeploy's page has the option $option, which the test does not know"
  [[ $option == -part || $option == -nopart ]] || {
    "$programs/FwDeploy" "$option" -nopause >said 2>&1 || true
    ! grep -q 'Bad command line' said || fail "FwDeploy does not take $option"
  }
done
printf 'ok: the page of FwDeploy has its %d options, and no others\n' "$(wc -l <words)"

"$programs/fwbench" new bench
find bench/firmware -type f -printf '%f\n' | sort >made
grep -oE '[A-Z][A-Z0-9_]+\.rbi$' FwDeploy.text | sort -u >named
diff made named || fail "the firmware files of FwDeploy's page are not those of a bench"
printf 'ok: the page of FwDeploy names the %d firmware files\n' "$(wc -l <named)"
