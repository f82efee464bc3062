# What the packages have in common, for their scripts to source with the build folder and the package's folder.
#
#   version, compiler    of the build
#   stage                an empty folder for what goes into the package; goes away with the script
#   settleStage          gives everything in it the release's time and sane permissions
#
# The release's time is SOURCE_DATE_EPOCH, by default that of the last commit. So the same build makes the same bytes.
set -euo pipefail
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$(cd "$1" && pwd)
mkdir -p "$2"
packages=$(cd "$2" && pwd)
program=$(basename "$0")
export LC_ALL=C.UTF-8 TZ=UTC

fail() {
  printf '%s: %s\n' "$program" "$*" >&2
  exit 1
}

[[ -f $build/package-settings ]] || fail "$build is no build folder of this tree with the tools"
source "$build/package-settings"
if [[ -z ${SOURCE_DATE_EPOCH:-} ]]; then
  # A tree without a repository: then its own time.
  SOURCE_DATE_EPOCH=$(git -C "$tree" log -1 --format=%ct 2>/dev/null || stat -c %Y "$tree/CMakeLists.txt")
fi
export SOURCE_DATE_EPOCH

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
stage=$place/stage
mkdir "$stage"

# installed COMPONENT PREFIX [OPTION...]
installed() {
  cmake --install "$build" --component "$1" --prefix "$2" "${@:3}" >"$place/log" 2>&1 || fail "$(<"$place/log")"
}

settleStage() {
  chmod -R u=rwX,go=rX "$stage"
  find "$stage" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
}
