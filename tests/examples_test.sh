#!/bin/sh
# The examples do what they say.
# Usage: examples_test.sh EXAMPLES_DIR SOURCE_DIR LIBRARY_DIR CC [SANITIZERS]
set -eu
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# expect WHAT PATTERN FILE: line by line, without the dates and times
expect() {
  tr -d '\r' <"$3" | sed 's/^[0-9-]* [0-9:.]* //' >"$work/seen"
  printf '%s' "$2" | diff - "$work/seen" || { echo "failed: $1"; exit 1; }
}

"$1/vintra_hello" "$work/hello.log" &
hello=$!
wait $hello
expect hello "[TRACE]    
System name: $(uname -s), Host name: $(uname -n), Hardware: $(uname -m), Release: $(uname -r), Version: $(uname -v)
CPU $(sed -n 5p /proc/cpuinfo)
$(awk '{ n += int((length($0) + 255) / 255) } END { printf "CPU: %d cores", n / 19 }' /proc/cpuinfo)
$(head -n 1 /proc/meminfo)
$(stat -f -c '%s %b' / | awk '{ printf "Hard Disk Size: %dMB. ", $1 * $2 / 1048576 }')
[TRACE]    [ $hello  $hello ]
[INFO]    [hello.cpp] [20] listening on port 8080
[WARN]    [hello.cpp] [21] disk /var is 93.5% full" "$work/hello.log"

edit_ini="$1/vintra_edit_ini"
walk="$1/vintra_walk"
printf '# a log\r\n[log]\nlevel=log_level_info\nfile_name=x' >"$work/log.ini"
for setting in 'file_name /a/simple.log' 'module_name lines' 'format %D' 'format %D%T%E%N' 'mode Log_Mode_Simple'; do
  "$edit_ini" set "$work/log.ini" log "${setting% *}" "${setting#* }"
done
expect edit_ini '# a log

[log]
mode=Log_Mode_Simple
format=%D%T%E%N
module_name=lines
level=log_level_info
file_name=/a/simple.log
' "$work/log.ini"
[ "$("$edit_ini" list "$work/log.ini" | head -n 2)" = "$(printf '[log]\nmode=Log_Mode_Simple')" ]
[ "$("$walk" "$work" log.ini)" = "$work/log.ini" ]
[ "$("$walk" "$work" | wc -l)" -ge 3 ]
if "$edit_ini" get "$work/log.ini" log missing 2>/dev/null || "$edit_ini" set "$work/log.ini" log k+ v 2>/dev/null; then
  echo "failed: edit_ini says nothing of a key that is missing or refused"
  exit 1
fi

# Each log as its section says. One that is missing or cannot be opened is named, and the others go on.
three_logs="$1/vintra_three_logs"
sed "s,/tmp/vintra/,$work/," "$2/examples/three_logs.ini" >"$work/three.ini"
"$three_logs" "$work/three.ini"
expect "the simple log" "[INFO]  net  listening on port 8080" "$work/net.log"
expect "the dated log" "[NOTICE]  audit  ann has logged in" "$work"/audit_????????_000.log
sed -i 's/^[[]net]/[other]/; s,= .*audit.log,= /dev/null/audit.log,' "$work/three.ini"
if "$three_logs" "$work/three.ini" 2>"$work/three.err"; then
  echo "failed: three_logs succeeds without two of its logs"
  exit 1
fi
expect "three_logs without two logs" "log [net]: is switched off
log [audit]: could not be opened (code 5)
log [audit]: refused a record (code 1)
" "$work/three.err"
sed 's/^[0-9:.]* //' "$work/trace000.log" >"$work/trace"
expect "the ring of two runs" "trace  step 1
trace  step 2
trace  step 3
trace  step 1
trace  step 2
trace  step 3" "$work/trace"

# Every record of every thread, once and in the thread's order.
[ "$("$1/vintra_threads" "$work/threads.log")" = 8000 ]
{ cat "$work/threads.log"; echo; } | sort -s -k 6,6 >"$work/threads.sorted"
expect threads "$(for thread in 0 1 2 3 4 5 6 7; do seq -f "[INFO]  worker  thread $thread record %g" 0 999; done)
" "$work/threads.sorted"

# A program that writes a sign itself, whatever way it is linked, is understood.
printf '#include <ConfigFileINI/ConfigFileINI.h>
int main(void) {
  NoteLineSign = 59;
  return GetConfigFileInt("log", "n", 0, "%s") == 7 && WriteConfigFileString("log", "m;", "v", "%s") == 0 ? 0 : 1;
}' "$work/sign.ini" "$work/sign.ini" >"$work/sign.c"
printf '[log]\n;[x]\n;n=1\nn=7' >"$work/sign.ini"
for way in '-fno-pie -no-pie' '-fPIE -pie'; do
  "$4" ${5:+-fsanitize=$5} $way -I"$2" "$work/sign.c" -o "$work/sign" -L"$3" -lvintra "-Wl,-rpath,$3"
  "$work/sign" || { echo "failed: a sign written by a host linked $way"; exit 1; }
done
