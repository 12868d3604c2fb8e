#!/bin/sh
# The public headers compile alone, in pairs, twice, and around <syslog.h>, in the oldest and the newest standards,
# with each compiler named; and the compiler checks the arguments of a record.
# Usage: headers_test.sh SOURCE_DIR COMPILER_PAIR... where a pair is "cc,c++".
set -eu
source_dir=$1
shift
log='#include <VintraModule/VintraModule.h>'
folder='#include <FolderModule/FolderModule.h>'
ini='#include <ConfigFileINI/ConfigFileINI.h>'
all='#include <vintra.h>'
syslog='#include <syslog.h>'
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
count=0

# compile LANGUAGE COMPILER STANDARD FILE
compile() {
  "$2" -x "$1" -std="$3" -I"$source_dir" -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fsyntax-only "$4"
}

# Each source makes a record by the alias, and by the plain name where no macro has taken it.
use='int use_it(LOGHANDLE h); int use_it(LOGHANDLE h) { return (int)vintra_info(VINTRA_HERE(h), "%d", 1); }'
plain='int plain(LOGHANDLE h); int plain(LOGHANDLE h) { return (int)LOG_INFO(h, "%s", "x"); }'
paths='void split(const char* p); void split(const char* p) { SplitPath(p, 0, 0, 0, 0); }'
signs='uint32 sign(void); uint32 sign(void) { NoteLineSign = 59; return SetConfigINISign(0, 0, 0, 0, 0); }'
i=0
for text in "$log
$use
$plain" "$folder
$paths" "$ini
$signs" "$ini
$log
$ini
$signs" "$log
$log
$use" "$folder
$folder
$paths" "$all
$all
$paths
$signs
$use" "$log
$folder
$use" "$folder
$log
$use" "$syslog
$log
$use" "$log
$syslog
$use"; do
  i=$((i + 1))
  printf '%s\n' "$text" >"$work/$i"
done

for pair in "$@"; do
  for standard in c99 c17; do
    for file in "$work"/*; do
      count=$((count + 1))
      compile c "${pair%,*}" $standard "$file" || { echo "failed: ${pair%,*} $standard"; cat "$file"; failed=1; }
    done
  done
  for standard in c++11 c++2b; do
    for file in "$work"/*; do
      count=$((count + 1))
      compile c++ "${pair#*,}" $standard "$file" || { echo "failed: ${pair#*,} $standard"; cat "$file"; failed=1; }
    done
  done
  "${pair%,*}" -x c -std=c99 -I"$source_dir" -c "$work/1" -o "$work/object"
  symbols=$(nm -u "$work/object" | awk '$2 !~ /^_/ { printf "%s ", $2 }')
  [ "$symbols" = "LOG_INFO SourceInfo " ] || { echo "failed: the alias is another symbol: $symbols"; failed=1; }
  rm "$work/object"
  for call in 'LOG_INFO(h, "%d", "text")' 'vintra_fatal(h, "%s")' 'LOG_TRACE(h, "%s", 1)'; do
    printf '%s\nvoid f(LOGHANDLE h);\nvoid f(LOGHANDLE h) { %s; }\n' "$log" "$call" >"$work/wrong.c"
    count=$((count + 1))
    if compile c "${pair%,*}" c99 "$work/wrong.c" 2>/dev/null; then
      echo "failed: ${pair%,*} does not object to $call"
      failed=1
    fi
    rm "$work/wrong.c"
  done
done
echo "$count compilations"
exit $failed
