# Makes the release notes of AppStream metainfo of a changelog in the form of Keep a Changelog; what is not released yet is
# left out. A heading of a kind of change becomes a paragraph, a list stays one.
function plain(text) {
  while (match(text, /\[[^]]*\]\([^)]*\)/)) {
    link = substr(text, RSTART, RLENGTH)
    sub(/^\[/, "", link)
    sub(/\]\(.*/, "", link)
    text = substr(text, 1, RSTART - 1) link substr(text, RSTART + RLENGTH)
  }
  gsub(/`/, "", text)
  gsub(/&/, "\\&amp;", text)
  gsub(/</, "\\&lt;", text)
  return text
}
function endItem() {
  if (item == "") return
  if (!inList) print "        <ul>"
  inList = 1
  print "          <li>" plain(item) "</li>"
  item = ""
}
function endList() {
  endItem()
  if (inList) print "        </ul>"
  inList = 0
}
function endRelease() {
  endList()
  if (inRelease) print "      </description>\n    </release>"
  inRelease = 0
}
/^## / {
  endRelease()
  if (!match($0, /\[[0-9][0-9.]*\] - [0-9-]+/)) next
  version = $2
  gsub(/[][]/, "", version)
  print "    <release version=\"" version "\" date=\"" $4 "\">\n      <description>"
  inRelease = 1
  next
}
!inRelease || /^$/ { next }
/^### / {
  endList()
  print "        <p>" substr($0, 5) "</p>"
  next
}
/^- / {
  endItem()
  item = substr($0, 3)
  next
}
/^  / { if (item != "") item = item " " substr($0, 3) }
END { endRelease() }
