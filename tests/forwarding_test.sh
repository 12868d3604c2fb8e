#!/bin/sh
# rsyslog forwards logs, and lnav reads them, by the files of integrations/, with nothing but places changed.
# Usage: forwarding_test.sh SOURCE_DIR LIBRARY_DIR VINTRA CC [SANITIZERS]; 77 when neither program is there
set -eu
export LC_ALL=C TZ=UTC PATH="$PATH:/usr/sbin:/sbin"
work=$(mktemp -d)
vintra=$3
sender=
receiver=
follower=
finish() {
  exec 3>&-
  for process in $sender $receiver $follower; do kill -9 "$process"; done
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 1' HUP INT TERM

failed() {
  echo "failed: $*"
  cat "$work"/*.diagnosis 2>/dev/null || true
  exit 1
}

# await WHAT COMMAND...: until it succeeds, for 20 seconds
await() {
  what=$1
  shift
  deadline=$(($(date +%s) + 20))
  until "$@"; do
    [ "$(date +%s)" -lt $deadline ] || { tail -n 3 "$work/arrived" && failed "no $what in 20 seconds"; }
    sleep 0.02
  done
}

# A program that logs each line of its input: "DATE TIME LEVEL MESSAGE", where | stands for a line feed.
cat >"$work/write.c" <<'END'
#define _GNU_SOURCE
#include <VintraModule/VintraModule.h>
#include <stdio.h>
#include <string.h>
#include <sys/timeb.h>
#include <time.h>

static time_t now; /* what the library takes for the time */
time_t time(time_t* out) { return out != NULL ? (*out = now) : now; }
int ftime(struct timeb* out) {
  memset(out, 0, sizeof *out);
  out->time = now;
  out->millitm = 7;
  return 0;
}

int main(int argc, char** argv) {
  static const struct {
    const char* name;
    sint32 (*write)(LOGHANDLE, const sint8*, ...);
  } levels[] = {{"TRACE", LOG_TRACE}, {"DEBUG", LOG_DEBUG}, {"INFO", LOG_INFO}, {"NOTICE", LOG_NOTICE},
                {"WARN", LOG_WARN},   {"ERROR", LOG_ERROR}, {"CRIT", LOG_CRIT}, {"FATAL", LOG_FATAL}};
  static char line[65536];
  LOGHANDLE log = null_log_handle;
  if (argc != 3) return 2;
  while (fgets(line, sizeof line, stdin) != NULL) {
    struct tm stamp = {0};
    char* message = strptime(line, "%Y-%m-%d %H:%M:%S ", &stamp);
    char* level = strsep(&message, " ");
    now = mktime(&stamp);
    if (log == null_log_handle && LOG_MODULE_INIT(argv[1], argv[2], &log) != 0) return 1;
    message[strcspn(message, "\n")] = '\0';
    for (char* bar = message; (bar = strchr(bar, '|')) != NULL;) *bar = '\n';
    SourceInfo(log, "net.c", 42);
    for (int i = 0; i < 8; ++i) {
      if (strcmp(level, levels[i].name) == 0 && levels[i].write(log, "%s", message) != 0) return 1;
    }
  }
  LOG_MODULE_DESTORY(&log);
  return 0;
}
END
"$4" ${5:+-fsanitize=$5} -Wall -Wextra -Werror -I"$1" "$work/write.c" -o "$work/write" \
  -L"$2" -lvintra "-Wl,-rpath,$2"

# settings FILE_NAME MODE MAX_FILE_SIZE MAX_BACKUP_INDEX FORMAT MODULE [ENCRYPT]
settings() {
  cat >"$work/app.ini" <<END
[log]
file_name=$1
mode=Log_Mode_$2
max_file_size=$3
max_backup_index=$4
format=$5
module_name=$6
level=Log_Level_Trace
encrypt=${7:-0}
SysConfFormat=%N
PidAndTid=%N
END
}
write() { "$work/write" "$work/app.ini" log; }

# records FIRST LAST: numbered messages, one a minute of $day
day=2026-11-16
records() {
  for number in $(seq "$1" "$2"); do printf '%s 12:%02d:00 INFO number %d\n' "$day" "$number" "$number"; done
}
# the same as they are to arrive, in the order given
arrivals() {
  for number in "$@"; do
    printf 'info app %s 12:%02d:00.007 [INFO]  net  number %d\n' "$day" "$number" "$number"
  done
}

sender() {
  rsyslogd -n -f "$work/sender.conf" -i "$work/sender.pid" &
  sender=$!
}
end_sender() {
  kill "$sender"
  wait "$sender"
  sender=
}
arrived() { [ "$(wc -l <"$work/arrived")" -ge "$1" ]; }

# check WHAT: what has arrived, to the byte, is $work/expected; starts anew
check() {
  await "arrival of $1" arrived "$(wc -l <"$work/expected")"
  diff "$work/expected" "$work/arrived" || failed "$1"
  : >"$work/arrived"
}

with_rsyslogd() {
  mkdir "$work/logs" "$work/lines" "$work/sender" "$work/receiver"
  : >"$work/arrived"
  # The receiver shows a line feed as #012, as rsyslog does unless told otherwise: a line here is a record.
  cat >"$work/receiver.conf" <<END
global(workDirectory="$work/receiver" maxMessageSize="128k" processInternalMessages="on")
module(load="imtcp")
input(type="imtcp" address="127.0.0.1" port="0" listenPortFileName="$work/port" ruleset="arrived")
template(name="arrived" type="string" string="%syslogseverity-text% %app-name% %msg%\n")
ruleset(name="arrived") { action(type="omfile" file="$work/arrived" template="arrived") }
action(type="omfile" file="$work/receiver.diagnosis")
END
  rsyslogd -n -f "$work/receiver.conf" -i "$work/receiver.pid" &
  receiver=$!
  await "receiver" test -s "$work/port"
  sed -e "s,^#input(.*/var/log/app/,input(type=\"imfile\" file=\"$work/lines/," -e "s/^#  / /" \
    -e "s,/var/log/app/,$work/logs/," -e "s/logs.example.net/127.0.0.1/" \
    -e "s/\"514\"/\"$(cat "$work/port")\"/" "$1/integrations/rsyslog/vintra.conf" >"$work/vintra.conf"
  cat >"$work/sender.conf" <<END
global(workDirectory="$work/sender" processInternalMessages="on")
include(file="$work/vintra.conf")
action(type="omfile" file="$work/sender.diagnosis")
END
  if ! rsyslogd -N 1 -f "$work/sender.conf" >"$work/check.diagnosis" 2>&1 ||
    grep -qE 'warning|error' "$work/check.diagnosis"; then
    failed "rsyslog complains of the configuration"
  fi
  sender

  # Every level, lines within a message, a long one. The last record is there when the next one has come.
  long=$(head -c 20000 /dev/zero | tr '\0' x)
  settings "$work/logs/app.log" Simple 1000000 0 %D%T%E%N net
  printf "$day 12:00:00 %s\n" 'TRACE trace' 'DEBUG ' 'INFO one|two| three' 'NOTICE note' 'WARN 100%' \
    "ERROR $long" 'CRIT crit' 'FATAL the last|of them' | write
  printf "%s app $day 12:00:00.007 [%s]  net  %s\n" debug TRACE trace debug DEBUG '' \
    info INFO 'one#012two#012 three' notice NOTICE note warning WARN '100%' err ERROR "$long" \
    crit CRIT crit >"$work/expected"
  check "levels"
  # rsyslog starts again: nothing is lost, nothing comes twice.
  end_sender
  records 1 2 | write
  sender
  { echo "alert app $day 12:00:00.007 [FATAL]  net  the last#012of them" && arrivals 1; } >"$work/expected"
  check "a restart"
  # Start-up empties the file, whose waiting record comes joined with the first new one.
  settings "$work/logs/app.log" Simple 100 0 %D%T%E%N net
  records 3 4 | write
  arrivals 2 3 >"$work/expected"
  check "a file that was emptied"

  # A ring of three, two records a file. A file's second record arrives when the ring comes round.
  settings "$work/logs/ring.log" Rollback 70 3 %D%T%E%N net
  mkfifo "$work/input"
  write <"$work/input" &
  writer=$!
  exec 3>"$work/input"
  arrived=0
  for number in 1 3 5 7 9 11 13 15 17; do
    records $number $((number + 1)) >&3
    arrived=$((arrived + (number < 7 ? 1 : 2)))
    await "arrival of record $number of the ring" arrived $arrived
  done
  exec 3>&-
  wait $writer
  arrivals 1 3 5 2 7 4 9 6 11 8 13 10 15 12 17 >"$work/expected"
  check "a ring"

  # Two records a file here too, and midnight. The second ones wait for good.
  settings "$work/logs/day.log" Date 70 3 %D%T%E%N net
  (records 1 4 && day=2026-11-17 && records 5 6) | write
  await "arrival of the days" arrived 3
  sort "$work/arrived" -o "$work/arrived"
  (arrivals 1 3 && day=2026-11-17 && arrivals 5) >"$work/expected"
  check "days"

  # Records that end their lines themselves: all of them arrive, the last one too.
  settings "$work/lines/app.log" Simple 70 0 %D%T%E net
  printf "$day 12:00:00 WARN %s\n" 'one|' 'two|three|' | write
  await "arrival of a record with its own line end" arrived 1
  printf "$day 12:00:00 WARN %s\n" 'four|' | write
  printf "warning app $day 12:00:00.007 [WARN]  net  %s\n" one 'two#012three' four >"$work/expected"
  check "records with their own line ends"

  # A scrambled log by way of a plain file.
  settings "$work/scrambled.log" Simple 1000000 0 %D%T%E%N net 1
  "$vintra" cat -f "$work/scrambled.log" >>"$work/logs/plain.log" 2>/dev/null &
  follower=$!
  records 1 3 | write
  arrivals 1 2 >"$work/expected"
  check "a scrambled log"
  kill "$follower"
  wait "$follower" || true
  follower=

  end_sender
}

with_lnav() {
  export HOME="$work" XDG_CONFIG_HOME="$work/config"
  mkdir -p "$work/config" "$work/lnav"
  lnav -i "$1/integrations/lnav/vintra_log.json" >"$work/lnav.diagnosis" 2>&1 || failed "lnav takes no format"
  lnav -C >"$work/lnav.diagnosis" 2>&1 || true
  [ ! -s "$work/lnav.diagnosis" ] || failed "lnav complains of the format"
  columns=log_line,log_time,log_level,module,src_file,src_line,log_body
  for case in '%D%T%E%N,net' '%D%T%E%N,' '%D%T%E%N%F%L,net unit' '%D%T%E%N%F%L,'; do
    module=${case#*,}
    case $case in *%L*) source='net.c,42' ;; *) source='<NULL>,<NULL>' ;; esac
    rm -f "$work/lnav/app.log"
    settings "$work/lnav/app.log" Simple 1000000 0 "${case%,*}" "$module"
    printf '2026-11-16 12:00:%s\n' '00 TRACE t' '01 DEBUG a  b' '02 INFO one|  two|[INFO]' '03 NOTICE [7] n' \
      '04 WARN w' '05 ERROR [e] e' '06 CRIT ' '07 FATAL the last' | write
    lnav -n -c ";select $columns from vintra_log" -c ':write-csv-to -' "$work/lnav/app.log" >"$work/seen"
    { echo $columns && printf "%d,2026-11-16 12:00:0%d.007,%s,${module:-<NULL>},$source,%s\n" 0 0 trace t \
      1 1 debug 'a  b' 2 2 info "$(printf '"one\n  two\n[INFO]"')" 5 3 notice '[7] n' 6 4 warning w \
      7 5 error '[e] e' 8 6 critical '' 9 7 fatal 'the last'; } >"$work/expected"
    diff "$work/expected" "$work/seen" || failed "lnav on lines of $case"
    # The command is its own inverse, and so makes a scrambled log of it.
    "$vintra" cat --scramble "$work/lnav/app.log" >"$work/scrambled"
    "$vintra" cat "$work/scrambled" | lnav -n -c ";select $columns from vintra_log" -c ':write-csv-to -' >"$work/seen"
    diff "$work/expected" "$work/seen" || failed "lnav on scrambled lines of $case"
  done
}

tried=
for program in rsyslogd lnav; do
  if ! command -v $program >/dev/null; then
    echo "skipped: $program is not here"
    continue
  fi
  tried=y
  "with_$program" "$1"
done
[ "$tried" ] || exit 77
