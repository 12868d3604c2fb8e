# Turns the plain comments of a public header into what Doxygen reads. A comment documents the declarations that follow
# it without a blank line, or what it stands behind; the first one documents the file. Text that is set in further than
# the rest, as tables and examples are, stays as it is.

# What Doxygen would take for markup.
function escaped(text) {
  gsub(/[\\@&$#<>%"]/, "\\\\&", text)
  sub(/^\*/, "<!-- -->*", text)  # else it would be the decoration of a comment
  return text
}

# A line of a comment. Doxygen makes other quotation marks of those in verbatim text, so they travel under another name.
function put(text) {
  set_in = text == "" ? 0 : text ~ /^  /
  if (set_in != verbatim) print set_in ? "@verbatim" : "@endverbatim"
  verbatim = set_in
  if (verbatim) gsub(/"/, "QUOTATION-MARK", text)
  print verbatim ? text : escaped(text)
}

function put_comment(opening, text) {
  print opening " " escaped(text) " */"
}

function text_of(line) {
  sub(/^ *\/?\* ?/, "", line)
  sub(/ *\*\/ *$/, "", line)
  return line
}

# How many declarations stand from line at on, up to an empty line.
function declarations(at, count) {
  for (count = 0; at <= NR && lines[at] != ""; ++at) count += lines[at] ~ /VINTRA_API .*[;,(]/
  return count
}

# Whether the comment that begins at a line documents what has a page of its own, with a line of its own in indexes.
function has_page(at) {
  while (lines[at] !~ /\*\/ *$/) ++at
  return lines[at + 1] ~ /^typedef struct /
}

function begin_comment(line, at) {
  print seen ? "/**" : "/** @file"
  if (!seen || has_page(at)) print "@brief"
  inside = 1
  top_level = seen && line ~ /^\//
  seen = 1
  if (text_of(line) != "") put(text_of(line))
}

function go_on_comment(line, at, last) {
  last = line ~ /\*\/ *$/
  sub(/ *\*\/ *$/, "", line)
  sub(/^ *\* ?/, "", line)
  if (!last || line != "") put(line)
  if (!last) return
  if (verbatim) print "@endverbatim"
  print "*/"
  inside = verbatim = 0
  grouped = top_level && declarations(at + 1) > 1
  if (grouped) print "/**@{*/"
}

function put_code(line, name) {
  # A macro that the header itself removes is nobody's.
  if (match(line, /^#define [A-Za-z_]+/)) {
    name = substr(line, 9, RLENGTH - 8)
    if (name in removed) {
      print "/// @cond"
      hidden = 1
    }
  }
  if (grouped && line == "") {
    print "/**@}*/"
    grouped = 0
  }
  # A type and its only other name would be documented twice.
  if (line ~ /^typedef (struct|enum) .*{$/) sub(/^typedef /, "", line)
  if (line ~ /^} [A-Za-z]+;$/) line = "};"
  print line
  if (hidden && line !~ /\\$/) {
    print "/// @endcond"
    hidden = 0
  }
}

{ lines[NR] = $0 }

/^#undef / { removed[$2] }

END {
  for (i = 1; i <= NR; ++i) {
    line = lines[i]
    if (inside) {
      go_on_comment(line, i)
    } else if (line ~ /^ *\/\*/ && line !~ /\*\/ *$/) {
      begin_comment(line, i)
    } else if (line ~ /^ *\/\*/) {
      put_comment(has_page(i) ? "/** @brief" : "/**", text_of(line))
    } else if (line ~ /\/\*.*\*\/ *$/) {
      at = index(line, "/*")
      printf "%s", substr(line, 1, at - 1)
      put_comment("/**<", text_of(substr(line, at)))
    } else {
      put_code(line)
    }
  }
}
