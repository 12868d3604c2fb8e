#!/bin/sh
# The examples do what they say, and so does the first program of the README.
# Usage: examples_test.sh EXAMPLES_DIR SOURCE_DIR LIBRARY_DIR CC [SANITIZERS]
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# expect WHAT PATTERN FILE: line by line, without the dates and times
expect() {
  tr -d '\r' <"$3" | sed 's/^[0-9-]* [0-9:.]* //' >"$work/seen"
  printf '%s' "$2" | diff - "$work/seen" || { echo "failed: $1"; exit 1; }
}

"$1/vintra_hello" "$work/hello.log"
expect hello "[INFO]    [hello.cpp] [17] listening on port 8080
[WARN]    [hello.cpp] [18] disk /var is 93.5% full" "$work/hello.log"

lines='[INFO]  lines  one
[INFO]  lines  two %s
[INFO]  lines  
[INFO]  lines  last'
log_lines="$1/vintra_log_lines"
printf 'one\ntwo %%s\n\nlast' >"$work/input"
[ "$("$log_lines" "$work/simple.log" simple scrambled 1000 <"$work/input")" = 4 ]
"$1/vintra_convert" "$work/simple.log" "$work/simple.txt"
expect "log_lines and convert" "$lines" "$work/simple.txt"
"$log_lines" "$work/ring.log" rollback plain 80 2 <"$work/input" >"$work/count" # two lines are beyond 80 bytes
{ cat "$work/ring000.log"; echo; cat "$work/ring001.log"; } >"$work/ring.txt"
expect "log_lines with a ring" "$lines" "$work/ring.txt"
: >"$work/days_20200101_000.log"
"$log_lines" "$work/days.log" date plain 1000 2 7 <"$work/input" >"$work/count"
days=$(cd "$work" && echo days_*) # one file, of today
case $days in
  days_2020* | *' '* | *'*'*) echo "failed: log_lines by days leaves $days"; exit 1 ;;
esac
expect "log_lines by days" "$lines" "$work/$days"
if "$1/vintra_convert" "$work/input" /dev/full 2>/dev/null; then
  echo "failed: convert says nothing of a full disk"
  exit 1
fi
# A folder is no log. The library says so beside its own file.
if "$log_lines" "$work" simple plain 1000 </dev/null 2>/dev/null; then
  echo "failed: log_lines takes a folder for a log"
  exit 1
fi
tail -n 1 "$3/LogModuleErrMsg.log" | grep -F "LOG_MODULE_INIT_Ex open file($work) for write failed."

awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$2/README.md" |
  sed "s,/var/log/app/,$work/," >"$work/readme.c"
"$4" ${5:+-fsanitize=$5} -std=c99 -Wall -Wextra -Werror -I"$2" "$work/readme.c" -o "$work/readme" \
  -L"$3" -lvintra "-Wl,-rpath,$3"
"$work/readme"
expect README "[INFO]  net  listening on port 8080" "$work/app.log"
