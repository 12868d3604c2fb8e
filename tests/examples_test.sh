#!/bin/sh
# The examples do what they say, and so does the first program of the README.
# Usage: examples_test.sh HELLO LOG_LINES SOURCE_DIR LIBRARY_DIR CC [SANITIZERS]
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# expect WHAT PATTERN FILE: line by line, without the dates and times
expect() {
  tr -d '\r' <"$3" | sed 's/^[0-9-]* [0-9:.]* //' >"$work/seen"
  printf '%s' "$2" | diff - "$work/seen" || { echo "failed: $1"; exit 1; }
}

"$1" "$work/hello.log"
expect hello "[INFO]    [hello.cpp] [17] listening on port 8080
[WARN]    [hello.cpp] [18] disk /var is 93.5% full" "$work/hello.log"

printf 'one\ntwo %%s\n\nlast' | "$2" "$work/lines.log" plain 1000 >"$work/count"
[ "$(cat "$work/count")" = 4 ]
expect log_lines "[INFO]  lines  one
[INFO]  lines  two %s
[INFO]  lines  
[INFO]  lines  last" "$work/lines.log"
# A folder is no log. The library says so beside its own file.
if "$2" "$work" plain 1000 </dev/null 2>/dev/null; then
  echo "failed: log_lines takes a folder for a log"
  exit 1
fi
tail -n 1 "$4/LogModuleErrMsg.log" | grep -F "LOG_MODULE_INIT_Ex open file($work) for write failed."

awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$3/README.md" |
  sed "s,/var/log/app/,$work/," >"$work/readme.c"
"$5" ${6:+-fsanitize=$6} -std=c99 -Wall -Wextra -Werror -I"$3" "$work/readme.c" -o "$work/readme" \
  -L"$4" -lvintra "-Wl,-rpath,$4"
"$work/readme"
expect README "[INFO]  net  listening on port 8080" "$work/app.log"
