#!/bin/sh
# The command vintra, as people use it. Usage: command_test.sh VINTRA LIBRARY_DIR
set -eu
export LC_ALL=C
vintra=$1
library_dir=$2
work=$(mktemp -d)
follower=
trap '[ -z "$follower" ] || kill "$follower" 2>/dev/null; rm -rf "$work"' EXIT
cd "$work"

fail() {
  echo "failed: $*"
  exit 1
}

# exits CODE PATTERN COMMAND...: the exit code, and what is said of it
exits() {
  expected=$1 pattern=$2
  shift 2
  code=0
  "$@" >out 2>err </dev/null || code=$?
  [ "$code" = "$expected" ] || fail "$* exits with $code: $(cat err)"
  cat out err | grep -q -- "$pattern" || fail "$* says: $(cat out err)"
}

# until_true COMMAND...: what has to come true within 20 seconds
until_true() {
  for _ in $(seq 400); do
    if "$@" 2>/dev/null; then return; fi
    sleep 0.05
  done
  fail "never came true: $*"
}

# lines FILE: without CR, dates and times
lines() { tr -d '\r' <"$1" | sed 's/^[0-9-]* [0-9:.]* //'; }

# How it is called.
exits 0 'vintra check INI' "$vintra" --help
exits 0 '^vintra [0-9]*\.[0-9]*\.[0-9]*$' "$vintra" --version
for command in cat write check; do exits 0 "^Usage: vintra $command" "$vintra" $command --help; done
exits 0 '^Usage: vintra write' "$vintra" write -f x -kh
exits 1 'standard output: No space left' sh -c '"$0" --help >/dev/full' "$vintra"
exits 2 'no command' "$vintra"
exits 2 'no such command: kat' "$vintra" kat
exits 2 "unrecognized option '--frob'" "$vintra" cat --frob
exits 2 "requires an argument -- 'l'" "$vintra" write -f x -l
exits 2 'which log' "$vintra" write -c x.ini
exits 2 'max-size goes with --file' "$vintra" write -c x.ini -s a --max-size 5
exits 2 'does not go with --config' "$vintra" write -c x.ini -f x
exits 2 '"rest" is no option' "$vintra" write -f x rest
exits 2 'no INI file' "$vintra" check
for wrong in '--level loud' '--mode ring' '--max-size 0' '--max-size 3G' '--max-size 5x' '--files -1' '--files 5K' \
  "--module $(printf '%64s' '')" "--format $(printf '%64s' '')" "--file $(printf '%260s' '')" '--file '; do
  exits 2 "${wrong%% *} cannot be" "$vintra" write -f x "${wrong%% *}" "${wrong#* }"
done
[ ! -e x ] || fail "a log was made for a wrong call"

# Lines become records, whatever ends them and however long they are, and come back from a scrambled file.
long=$(head -c 200000 /dev/zero | tr '\0' x)
printf 'one\r\ntwo %%s\n\nthree\0%s\nlast' "$long" >input
printf '[NOTICE]  m  one\n[NOTICE]  m  two %%s\n[NOTICE]  m  \n[NOTICE]  m  three\n[NOTICE]  m  %s\n[NOTICE]  m  last' \
  "$long" >expected
"$vintra" write -f logs/a.log -l notice --module m --scramble <input
"$vintra" cat logs/a.log >a.txt
lines a.txt | cmp - expected
! grep -q "$(printf 'one\r\r')" a.txt || fail "CR LF leaves a CR in the record"
cat logs/a.log | "$vintra" cat | cmp - a.txt
"$vintra" cat --scramble a.txt | cmp - logs/a.log
for plain in "cat a.txt" "cat --plain a.txt" "cat --scramble logs/a.log"; do "$vintra" $plain | cmp - a.txt; done
"$vintra" cat --plain logs/a.log | cmp - logs/a.log
# What tells is a blank, a digit or a sign. Without them, and behind the NULs that a crash may leave, it is text.
for text in 'a b' 'x=1024' "it's." "$(printf 'a\tb\n-c')"; do
  printf '%s' "$text" >text
  for masking in --plain --scramble; do "$vintra" cat $masking text | "$vintra" cat | cmp - text; done
done
for text in '' HELLO 1616 '\303\244' '\0\0\0\0\0\0a b'; do
  printf "$text" >text
  "$vintra" cat text | cmp - text
done
"$vintra" cat logs/a.log - <logs/a.log >twice
lines twice >seen
{ cat expected; echo; cat expected; } | cmp - seen
exits 1 'nothere: No such file' sh -c '"$0" cat nothere logs/a.log >rest' "$vintra"
cmp rest a.txt
exits 1 'standard output: No space left' sh -c '"$0" cat logs/a.log >/dev/full' "$vintra"
for follow in '' -f; do
  exits 1 'a.txt: is standard output too' sh -c 'timeout 2 "$0" cat $1 a.txt >>a.txt' "$vintra" "$follow"
done
exits 1 'logs: Is a directory' "$vintra" cat logs

# The modes and limits without an INI file.
seq 400 | "$vintra" write -f ring.log -m rollback --max-size 1K --files 2 --format %N
[ "$(echo ring*)" = 'ring000.log ring001.log' ] || fail "a ring of 2 files has $(echo ring*)"
touch "days_$(date -d '-3 days' +%Y%m%d)_000.log"
echo x | "$vintra" write -f days.log -m Log_Mode_Date --days 2 --flush-size 64K
[ "$(echo days*)" = "days_$(date +%Y%m%d)_000.log" ] || fail "of two days there is $(echo days*)"

# A section says what the log is like. What is wrong in it is said, and a level that drops everything is refused.
cat >log.ini <<END
[good]
file_name = $work/ini.log
level = Log_Level_Warn
max_file_size = 10M
encrypt = 0
[none]
file_name = $work/none.log
END
printf '\357\273\277[a]\n' >marked.ini
exits 1 'no section \[a\]; a byte order mark' "$vintra" check marked.ini a
exits 1 'nothere.ini: No such file' "$vintra" write -c nothere.ini -s good
exits 1 'no section \[missing\]' "$vintra" write -c log.ini -s missing
exits 1 'level: missing' "$vintra" write -c log.ini -s none
exits 0 'drops every record of the level info' "$vintra" write -c log.ini -s good
[ ! -s ini.log ] || fail "a record below the level is in the log"
echo x | "$vintra" write -c log.ini -s good -l Log_Level_Fatal 2>err
[ "$(lines ini.log)" = '[FATAL]    x' ] || fail "the log of a section has $(lines ini.log)"
grep -q 'max_file_size: "10M" reads as 10' err || fail "nothing is said of 10M"

# A record that is refused ends the run, or does not, and is told of by the exit code.
code=0
printf 'a\nb\nc\n' | "$vintra" write -f /dev/full 2>err || code=$?
[ $code = 1 ] && grep -q 'line 1 could not be written (7' err && grep -q '4 bytes that were read' err ||
  fail "a full disk gives $code: $(cat err)"
code=0
printf 'a\nb\nc\n' | "$vintra" write -k -f /dev/full 2>err || code=$?
[ $code = 1 ] && [ "$(wc -l <err)" = 1 ] || fail "a full disk gives $code with --keep-going: $(cat err)"
code=0
printf 'a' | "$vintra" write -f /dev/full --flush-size 1K 2>err || code=$?
[ $code = 1 ] && grep -q 'could not be flushed (7' err || fail "a flush on a full disk gives $code: $(cat err)"
exits 1 "could not be opened (5.*; $library_dir/LogModuleErrMsg.log tells more" "$vintra" write -f "$work"
# Who cannot write the error log is not sent there.
mkdir -p own/LogModuleErrMsg.log
cp "$library_dir"/libvintra.so.? own
exits 1 'could not be opened (5: a file could not be opened)$' env LD_LIBRARY_PATH="$work/own" "$vintra" write -f "$work"
exits 1 'standard input: Bad file descriptor' sh -c 'timeout 20 "$0" write -f closed.log <&-' "$vintra"
exits 1 "could not be opened (1: its configuration" "$vintra" write -f "$work/"

# SIGTERM, SIGINT and SIGHUP store what is in the pipe, also what is not flushed yet and the beginning of a line.
mkfifo pipe
# Nobody who reads messages is no reason to stop.
exec 3<>pipe 4>pipe 3<&-
code=0
printf 'a\nb\n' | "$vintra" write -k -f /dev/full 2>&4 || code=$?
exec 4>&-
[ $code = 1 ] || fail "a message that nobody reads gives $code"
for signal in TERM INT HUP; do
  # A shell switches SIGINT off for what it runs in the background.
  env --default-signal=INT,HUP "$vintra" write -f "$signal.log" --flush-size 1M <pipe &
  writer=$!
  exec 3>pipe
  until_true [ -e $signal.log ]
  # The input and the signal come while the run sleeps, so that it finds both.
  kill -s STOP $writer
  head -c 30000 input >&3
  kill -s $signal $writer
  kill -s CONT $writer
  wait $writer || fail "SIG$signal ends with $?"
  exec 3>&-
  "$vintra" write -f expected.log <<END
$(head -c 30000 input | tr '\0' '\n')
END
  [ "$(lines $signal.log)" = "$(lines expected.log)" ] || fail "SIG$signal has lost something"
  rm expected.log
done
# A pause is enough to see a line that is not flushed by the log itself.
"$vintra" write -f pause.log --flush-size 1M <pipe &
exec 3>pipe
echo seen >&3
until_true grep -q seen pause.log
exec 3>&-
wait $!

# Following: what is there, what is added, a file emptied and grown beyond what it was, one replaced, one that comes.
put() { printf '%s' "$2" | "$vintra" cat --scramble >>"$1"; }
shows() { [ "$(tr '\r' '~' <followed)" = "$1" ]; }
put live 'one.'
"$vintra" cat -f live later >followed 2>err &
follower=$!
until_true shows 'one.'
put live "$(printf '\r\ntwo')"
until_true shows "$(printf 'one.~\ntwo')"
printf '%s' "$(printf 'three.\r\nis longer')" | "$vintra" cat --scramble >live
until_true shows "$(printf 'one.~\ntwo~\nthree.~\nis longer')"
mv live gone
put live 'four.'
until_true shows "$(printf 'one.~\ntwo~\nthree.~\nis longer~\nfour.')"
printf 'five.' >later # in plain text, beside a scrambled one
until_true shows "$(printf 'one.~\ntwo~\nthree.~\nis longer~\nfour.~\nfive.')"
put live "$(printf '\r\nsix')"
until_true shows "$(printf 'one.~\ntwo~\nthree.~\nis longer~\nfour.~\nfive.~\nsix')"
: >live
put live 'seven.'
until_true shows "$(printf 'one.~\ntwo~\nthree.~\nis longer~\nfour.~\nfive.~\nsix~\nseven.')"
[ "$(grep -c 'later: No such file' err)" = 1 ] || fail "nothing is said of a file that is not there"
kill $follower
wait $follower || true
follower=
# It ends when nobody reads any more, although nothing new comes.
{ timeout 20 "$vintra" cat -f live || echo $? >code; } | head -c 1 >/dev/null
[ ! -e code ] || fail "cat -f goes on without a reader: $(cat code)"

# A ring that is written while it is followed: each record that is not lost to a reuse of the ring, once.
seq 2000 | "$vintra" write -f run.log -m rollback --max-size 1M --files 3 --format %N --scramble
"$vintra" cat -f run000.log run001.log >followed 2>err &
follower=$!
seq 2001 4000 | "$vintra" write -f run.log -m rollback --max-size 1M --files 3 --format %N --scramble
until_true sh -c '[ "$(tr -d "\r " <followed | grep -c .)" = 4000 ]'
{ seq 4000 | head -c -1; } >numbers
tr -d '\r ' <followed | cmp - numbers
kill $follower
follower=

# What a section comes to.
cat >check.ini <<'END'
[good]
file_name = /var/log/app/app.log
level = log_level_info
mode = Log_Mode_Date
max_file_size = 1048576
max_backup_index = 5
flush_size = 4096
format = %D %T%E%N
time_span = 7
SysConfFormat = %O
module_name = net
PidAndTid = %P
encrypt = 0
[bad]
file_name = logs/
level = info
Mode = Log_Mode_Date
max_file_size = 10M
max_backup_index = 3
format = %d
encrypt = 5000000000
time_spam = 1
level = Log_Level_Info
no separator
module_name = hidden
[bad]
[long]
level = Log_Level_Info
END
exits 1 "check.ini:24: the line has no '=', and hides what is behind it" "$vintra" check check.ini
[ "$(cat out)" = "$(printf 'good\nbad\nbad\nlong')" ] || fail "sections are not listed"
exits 0 '^  flush_size        4096$' "$vintra" check check.ini good
! grep -q 'default\|wrong\|unused' out || fail "something is wrong with a good section: $(cat out)"
exits 1 '^\[bad\]$' "$vintra" check check.ini good bad
while read -r key value; do
  sed -n '/^\[bad\]/,$p' out | tr -s ' ' | grep -qF -- " $key $value" || fail "check: not \"$key $value\" in: $(cat out)"
done <<END
file_name logs/default.log default: names a folder; relative, so under the library's folder $library_dir/
level Log_Level_Disable wrong: "info" is none of its names, so every record is dropped
mode Log_Mode_Simple default: missing
max_file_size 10 wrong: "10M" reads as 10
max_backup_index 3 unused: Log_Mode_Simple does not read it
flush_size 0 default: missing
format %d wrong: "%d" is no directive
encrypt 705032704 wrong: "5000000000" reads as 705032704
Mode wrong: unknown key; is mode meant? (line 17)
time_spam wrong: unknown key (line 22)
level wrong: written twice, and only the first counts (line 23)
wrong: the line has no '=', and hides what is behind it (line 24)
wrong: a second section of the name, which nobody reads (line 26)
END
for length in 246 247; do # the folder has two more characters
  printf '[a]\nlevel = Log_Level_Info\nfile_name = /%s/a.log\n' "$(printf '%*s' $length '' | tr ' ' d)" >folder.ini
  exits $((length - 246)) '^  file_name' "$vintra" check folder.ini a
done
exits 1 'no section \[x\]' "$vintra" check check.ini x
printf '\357\273\277[a]\nx=1\n[b]\nno separator\n' >marked.ini
exits 1 'no section \[a\]; a byte order mark' "$vintra" check marked.ini a
exits 1 '^vintra: marked.ini:1: a byte order mark hides this line$' "$vintra" check marked.ini
grep -q '^vintra: marked.ini:4: .* has no .=., and hides' err || fail "nothing is said of a malformed line: $(cat err)"
exits 1 'nothere.ini: No such file' "$vintra" check nothere.ini
printf '[\nx=1\n[]\n' >unnamed.ini
exits 1 'unnamed.ini:3: a section without a name' "$vintra" check unnamed.ini
exits 1 'standard input: Bad file descriptor' sh -c '"$0" check - <&-' "$vintra"
exits 2 'config cannot be "-"' "$vintra" write -c - -s a
exits 1 'empty: no sections' sh -c ': >empty; "$0" check empty' "$vintra"
exits 1 '/dev/zero: File too large' timeout 20 "$vintra" check /dev/zero
for pipe in - /dev/stdin; do
  [ "$(cat check.ini | "$vintra" check $pipe long)" = "$("$vintra" check check.ini long)" ] || fail "check does not read pipes"
done
exits 1 'standard input:1: .*end in' sh -c 'echo [xy | "$0" check -' "$vintra"
printf '[\033[2J]\nmode=\177\nlevel=Log_Level_Info\nmode=\t' >signs.ini
exits 0 '^\\x1B\[2J$' "$vintra" check signs.ini
exits 1 'wrong: "\\x7F" is none' "$vintra" check signs.ini "$(printf '\033[2J')"
# The number of a ring's file counts: 192 characters in front of the name, 3 and 4 behind it, and 259 in all.
for length in 60 61; do
  printf '[a]\nlevel=Log_Level_Info\nmode=Log_Mode_Rollback\nfile_name=/%0190d/%0*d.log\n' 0 $length 0 >length.ini
  exits $((length - 60)) "\(0.log$\)\|start-up refuses a path of more than 259" "$vintra" check length.ini a
done
# Which file a start would go on in.
printf '[a]\nlevel=Log_Level_Info\nfile_name=%s/next.log\nmax_file_size=9\nmax_backup_index=2\nmode=' "$work" >next.ini
{ cat next.ini; printf 'Log_Mode_Rollback\n'; } >ring.ini
{ cat next.ini; printf 'Log_Mode_Date\n'; } >days.ini
next() { exits 0 "^  next file  *$work/next$2.log  *$3\$" "$vintra" check "$1" a; }
next days.ini "_$(date +%Y%m%d)_000" made
next ring.ini 000 made
printf '%9s' '' >next000.log
printf '%8s' '' >next001.log
next ring.ini 001 'appended to'
printf ' ' >>next001.log
touch -d '-1 hour' next000.log
next ring.ini 000 'emptied, as all are full'
touch -d '-2 hours' next001.log
next ring.ini 000 'emptied, as all are full, though it is the newest'
echo 'format=%D% C' >>ring.ini
next ring.ini 000 'emptied, by the %C of its format'
rm next000.log
next ring.ini 000 made
mkdir next000.log
next ring.ini 000 'cannot be opened: Is a directory'
echo '[broken' >>check.ini
exits 1 "check.ini:29: .*does not end in ']'" "$vintra" check check.ini
exits 0 '^  file_name *default.log *default: missing' "$vintra" check check.ini long
grep -q '^  encrypt *1 *default: missing, so the file is scrambled' out || fail "nothing is said of scrambling: $(cat out)"

# Non-blocking streams are waited for; dd passes the flags on to whoever shares them.
head -c 9000000 /dev/zero | tr '\0' 'x' | fold -w 99 >large
cat large | { dd iflag=nonblock oflag=nonblock count=0 status=none; "$vintra" cat --scramble; } | "$vintra" cat --scramble | cmp - large

# Colours and progress are for terminals.
script -qec true /dev/null </dev/null >/dev/null 2>&1 || { echo "skipped: colours and progress, as no terminal is to be had"; exit 0; }
on_terminal() { TERM=xterm script -qec "$1" /dev/null </dev/null; }
on_terminal "'$vintra' check check.ini bad" | grep -q "$(printf '\033')\[31m" || fail "no colours on a terminal"
! on_terminal "NO_COLOR=1 '$vintra' check check.ini bad" | grep -q "$(printf '\033')" || fail "NO_COLOR is not heeded"
"$vintra" check check.ini bad | grep "$(printf '\033')" && fail "colours without a terminal"
on_terminal "'$vintra' write -f large.log --flush-size 64K <large" | grep -q '100%\|[0-9]%  [0-9]* of 8 MiB' ||
  fail "no progress on a terminal"
on_terminal "'$vintra' cat <large >/dev/null" | grep -q '%  [0-9]* of 8 MiB' || fail "cat shows no progress"
on_terminal "'$vintra' cat large nothere >/dev/null" | grep -q "$(printf '\033')\[Kvintra: nothere" ||
  fail "a message stands behind the progress"
! on_terminal "'$vintra' write -f small.log <input" | grep -q '%' || fail "progress for a small input"
printf 'a\tb\033[2J\007\302\233\233\303\244c\rd\364\220\200\200\r\ne\303' >signs
printf 'a~b\\x1B[2J\\x07\\xC2\\x9B\\x9B\303\244c\\x0Dd\\xF4\\x90\\x80\\x80' >shown
on_terminal "'$vintra' cat signs" | tr '\t\r' '~ ' | grep -qFf shown ||
  fail "a terminal gets $(on_terminal "'$vintra' cat signs" | od -c)"
"$vintra" cat signs | cmp - signs
"$vintra" write -f large.log --flush-size 64K <large 2>err
[ ! -s err ] || fail "progress without a terminal"
on_terminal "'$vintra' cat large.log" | tail -c 1 | od -An -c | grep -q 'n' || fail "a prompt would not begin a line"
