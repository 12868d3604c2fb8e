#!/bin/sh
# Writes the pages of section 3: one for each public header and record, and for each function one that leads to its
# header's. headers.sh DOXYFILE DOXYGEN_OUTPUT PAGES_FOLDER HEADER...
set -eu
doxyfile=$1
output=$2
pages=$3
shift 3
rm -rf "$output" "$pages"
mkdir -p "$output" "$pages"
doxygen "$doxyfile"
for page in LogConfigRec LogConfigRecEx $(basename -a "$@"); do
  # Quotation marks of examples come back, the end of an example gets its own line, text behind one begins at the margin,
  # and no line of text begins with what would be a command there.
  sed -e 's/QUOTATION-MARK/\\(dq/g' -e 's/^\(..*\)\.fi$/\1\n.fi/' -e 's/^ \([[:alnum:]]\)/\1/' -e "s/^'/\\\\(aq/" \
    -e 's/\\fC/\\fB/g' "$output/man/man3/$page.3" >"$pages/$page.3"
done
for header in $(basename -a "$@"); do
  sed -i 's/^\.SH SYNOPSIS/&\n\\fB#include <vintra.h>\\fP/' "$pages/$header.3"
done
for header in "$@"; do
  for name in $(sed -nE -e 's/^(extern )?VINTRA_API [^(;]*[ *]([A-Za-z_]+)[(;].*/\2/p' \
    -e 's/^VINTRA_LEVEL_ALIAS\(([a-z_]+),.*/\1/p' "$header"); do
    echo ".so man3/$(basename "$header").3" >"$pages/$name.3"
  done
done
gzip -9n "$pages"/*
