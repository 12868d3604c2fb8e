#!/bin/sh
# README.md and the pages of docs/ keep what they show: C and C++ blocks compile, the page of a whole program has every
# line that it prints and logs, INI blocks are log sections without a mistake, and links lead to files.
# Usage: docs_test.sh SOURCE_DIR CC CXX LIBRARY_DIR VINTRA [SANITIZERS]
set -eu
export LC_ALL=C
source_dir=$(cd "$1" && pwd)
cc=$2 cxx=$3 vintra=$5 sanitize=${6:+-fsanitize=$6}
library_dir=$(cd "$4" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
count=0

fail() {
  echo "failed: $*"
  failures=$((failures + 1))
}

# compile FILE OPTION...
compile() {
  case $1 in
    *.cpp) set -- "$cxx" -std=c++11 "$@" ;;
    *) set -- "$cc" -std=c99 "$@" ;;
  esac
  "$@" $sanitize -Wall -Wextra -Werror -I"$source_dir"
}

# link FILE PROGRAM
link() {
  compile "$1" -o "$2" -L"$library_dir" -lvintra "-Wl,-rpath,$library_dir"
}

# take_apart PAGE FOLDER: the blocks of a page, each in a file that is named for its first line and its tag, and the
# links of the text around them in the file "links". Prints what is wrong with the fences.
take_apart() {
  awk -v page="$1" -v folder="$2" '
    /^ *```/ {
      if (file != "") { close(file); file = ""; next }
      tag = $0
      sub(/^ *```/, "", tag)
      if (tag !~ /^(c|cpp|ini|sh|text)$/) { print page ":" NR ": a fence with the tag \"" tag "\""; tag = "none" }
      file = folder "/" (NR + 1) "." tag
      printf "" >file
      next
    }
    file != "" { print >file; next }
    /^    / { next }
    {
      for (rest = $0; match(rest, /\]\([^)]*\)/); rest = substr(rest, RSTART + RLENGTH))
        print substr(rest, RSTART + 2, RLENGTH - 3) >(folder "/links")
    }
    END { if (file != "") print page ": the last fence is open" }' "$1"
}

# check_program PAGE LINE FILE
check_program() {
  link "$3" "$work/program" || { fail "$1:$2: a program does not compile"; return; }
  rm -rf "$work/run"
  mkdir "$work/run"
  (cd "$work/run" && "$work/program") >"$work/shown" 2>&1 || fail "$1:$2: a program fails"
  for log in "$work"/run/app/*; do
    if [ -f "$log" ]; then sed 's/\r$//; s/^[0-9-]* [0-9:.]* //' "$log"; echo; fi
  done >>"$work/shown"
  grep . "$work/shown" >"$work/lines" || fail "$1:$2: a program shows nothing"
  while IFS= read -r line; do
    grep -qF -- "$line" "$1" || fail "$1:$2: not on the page: $line"
  done <"$work/lines"
}

# check_sections PAGE LINE FILE
check_sections() {
  "$vintra" check "$3" >"$work/sections" && [ -s "$work/sections" ] || fail "$1:$2: no sections"
  while IFS= read -r section; do
    "$vintra" check "$3" "$section" >"$work/checked" || fail "$1:$2: $(cat "$work/checked")"
  done <"$work/sections"
}

# check_fragment PAGE LINE FILE
check_fragment() {
  {
    printf '#include <vintra.h>\n#include <stdio.h>\n#include <stdlib.h>\n#include <string.h>\n'
    printf 'void fragment(LOGHANDLE log);\nvoid fragment(LOGHANDLE log) {\n#line %s "%s"\n' "$2" "$1"
    cat "$3"
    printf '(void)log;\n}\n'
  } >"$work/fragment.${3##*.}"
  compile "$work/fragment.${3##*.}" -c -o "$work/fragment.o" || fail "$1:$2: a fragment does not compile"
}

cd "$source_dir"
for page in README.md docs/*.md; do
  mkdir -p "$work/$page"
  : >"$work/$page/links"
  take_apart "$page" "$work/$page" >"$work/wrong"
  [ ! -s "$work/wrong" ] || fail "$(cat "$work/wrong")"

  while IFS= read -r link; do
    case $link in
      [a-z]*:* | '#'*) continue ;;
    esac
    [ -e "$(dirname "$page")/${link%%#*}" ] || fail "$page: no file for the link $link"
  done <"$work/$page/links"

  for block in "$work/$page"/*.*; do
    at=${block##*/}
    at=${at%.*}
    file=$work/main.${block##*.}
    case $file in
      *.c | *.cpp | *.ini) count=$((count + 1)) ;;
      *) continue ;;
    esac
    sed "s,/var/log/app/,$work/run/app/,g" "$block" >"$file"
    if [ "$file" = "$work/main.ini" ]; then
      check_sections "$page" "$at" "$file"
    elif grep -q 'main(' "$file"; then
      check_program "$page" "$at" "$file"
    else
      check_fragment "$page" "$at" "$file"
    fi
  done
done
[ $count -gt 0 ] || fail "no page has a block"
echo "$count blocks"
[ $failures -eq 0 ]
