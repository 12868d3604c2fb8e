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

lines='[INFO]  lines  one
[INFO]  lines  two %s
[INFO]  lines  
[INFO]  lines  last'
log_lines="$1/vintra_log_lines"
settings="$1/vintra_settings"
printf 'one\ntwo %%s\n\nlast' >"$work/input"
printf '# a log\r\n[log]\nlevel=log_level_info\nfile_name=x' >"$work/log.ini"
for setting in "file_name $work/simple.log" 'module_name lines' 'format %D' 'format %D%T%E%N' 'mode Log_Mode_Simple'; do
  "$settings" set "$work/log.ini" log "${setting% *}" "${setting#* }"
done
expect settings '# a log

[log]
mode=Log_Mode_Simple
format=%D%T%E%N
module_name=lines
level=log_level_info
file_name='"$work"'/simple.log
' "$work/log.ini"
[ "$("$log_lines" "$work/log.ini" log <"$work/input")" = 4 ]
"$1/vintra_convert" "$work/simple.log" "$work/simple.txt"
expect "log_lines and convert" "$lines" "$work/simple.txt"
if "$log_lines" "$work/log.ini" logs </dev/null 2>/dev/null; then
  echo "failed: log_lines takes a section that is missing"
  exit 1
fi
if "$1/vintra_convert" "$work/input" /dev/full 2>/dev/null; then
  echo "failed: convert says nothing of a full disk"
  exit 1
fi
# A folder is no log. The library says so beside its own file.
"$settings" set "$work/log.ini" log file_name "$work"
if "$log_lines" "$work/log.ini" log </dev/null 2>/dev/null; then
  echo "failed: log_lines takes a folder for a log"
  exit 1
fi
tail -n 1 "$3/LogModuleErrMsg.log" | grep -F "LOG_MODULE_INIT_Ex open file($work) for write failed."
[ "$("$settings" list "$work/log.ini" | head -n 2)" = "$(printf '[log]\nmode=Log_Mode_Simple')" ]
[ "$("$settings" find "$work" simple.txt)" = "$work/simple.txt" ]
[ "$("$settings" find "$work" | wc -l)" -ge 4 ]
if "$settings" get "$work/log.ini" log missing 2>/dev/null || "$settings" set "$work/log.ini" log k+ v 2>/dev/null; then
  echo "failed: settings says nothing of a key that is missing or refused"
  exit 1
fi

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
