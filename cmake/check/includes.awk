# Reads house.txt, then every C++ file of the tree, and holds each #include against the rules of the house:
#
#   - it names a header of the house, in quotes, by a path without "..";
#   - the header's room is one that the including room may use, so never one above it;
#   - files do not include each other round in a circle.
#
# Plain awk, so that it runs wherever the tree builds.

function trim(text) { gsub(/^[ \t]+|[ \t]+$/, "", text); return text }

function folderOf(path) { return match(path, /.*\//) ? substr(path, 1, RLENGTH) : "" }

function finding(file, line, text) { print file ":" line ": " text; findings++ }

function roomOf(file,    p, best) {
  best = 0
  for (p = 1; p <= places; p++)
    if (index(file, place[p]) == 1 && (!best || length(place[p]) > length(place[best]))) best = p
  if (best) used[best] = 1
  return best ? owner[best] : ""
}

# The file that an include names: beside the including file, or through the include path of a room.
function resolve(file, name, quoted,    p, base, path) {
  if (quoted && (folderOf(file) name) in known) return folderOf(file) name
  for (p = 1; p <= places; p++) {
    base = place[p]
    sub(/\/$/, "", base)
    path = folderOf(base) name
    if (path in known && roomOf(path) == owner[p]) return path
  }
  return ""
}

function readRow(    column, names, n, i, p, room) {
  if (split($0, column, "|") != 3) { finding(FILENAME, FNR, "expected: room | place | may include"); return }
  room = trim(column[1])
  place[++places] = trim(column[2])
  owner[places] = room
  rowLine[places] = FNR
  if (!(room in rank)) { rank[room] = ++rooms; roomName[rooms] = room }
  n = split(trim(column[3]), names, /[ \t]+/)
  for (i = 1; i <= n; i++) {
    if (names[i] == "*") { for (p = 1; p < rank[room]; p++) may[room, roomName[p]] = 1; continue }
    if (!(names[i] in rank) || rank[names[i]] >= rank[room])
      finding(FILENAME, FNR, "rule: room " room " may use only rooms that stand before it in the table, not " names[i])
    else may[room, names[i]] = 1
  }
}

function judge(file, line, text,    quoted, name, target, from, to) {
  sub(/^[ \t]*#[ \t]*include[ \t]*/, "", text)
  if (text !~ /^"[^"]+"|^<[^>]+>/) { finding(file, line, "rule: an include names its file in quotes or in <>"); return }
  quoted = text ~ /^"/
  name = substr(text, 2)
  sub(/[">].*/, "", name)
  if (name ~ /(^|\/)\.\.(\/|$)/) {
    finding(file, line, "\"" name "\": rule: no include climbs out of its folder with \"..\"")
    return
  }
  target = resolve(file, name, quoted)
  if (target == "") {
    if (quoted) finding(file, line, "\"" name "\": rule: quotes are for headers of the house, and it has no such file")
    return
  }
  includes++
  if (!quoted) finding(file, line, "<" name ">: rule: headers of the house are included with quotes")
  count[file]++
  goal[file, count[file]] = target
  goalLine[file, count[file]] = line
  from = roomOf(file)
  to = roomOf(target)
  if (from == to || from == "" || to == "" || (from, to) in may) return
  if (rank[to] > rank[from])
    finding(file, line, "\"" name "\": rule: no room includes a room above it: " to " stands above " from)
  else
    finding(file, line, "\"" name "\": rule: " from " may not include " to " (cmake/check/house.txt)")
}

# Walks the includes of a file; one that leads back to a file on the way closes a circle.
function walk(file,    i, k, text) {
  state[file] = "on the way"
  way[++depth] = file
  for (i = 1; i <= count[file]; i++) {
    if (!(goal[file, i] in state)) walk(goal[file, i])
    else if (state[goal[file, i]] == "on the way") {
      text = goal[file, i]
      for (k = depth; way[k] != goal[file, i]; k--) text = way[k] " -> " text
      finding(file, goalLine[file, i], "rule: no includes in a circle: " goal[file, i] " -> " text)
    }
  }
  depth--
  state[file] = "done"
}

BEGIN {
  for (i = 2; i < ARGC; i++) known[ARGV[i]] = 1
}

FILENAME == ARGV[1] {
  if ($0 !~ /^[ \t]*(#|$)/) readRow()
  next
}

FNR == 1 {
  files++
  if (roomOf(FILENAME) == "") finding(FILENAME, 1, "rule: every file has a room in cmake/check/house.txt")
}

/^[ \t]*#[ \t]*include/ { judge(FILENAME, FNR, $0) }

END {
  for (i = 2; i < ARGC; i++) if (!(ARGV[i] in state)) walk(ARGV[i])
  for (p = 1; p <= places; p++)
    if (!(p in used)) finding(ARGV[1], rowLine[p], "rule: each place exists: no C++ file begins with " place[p])
  if (findings) {
    print "includes: " findings " broken rules of the house, see above" > "/dev/stderr"
    exit 1
  }
  print "includes: " includes " in " files " files, all of them down the house and none in a circle"
}
