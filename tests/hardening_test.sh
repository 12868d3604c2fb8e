#!/bin/sh
# The library and the command are built to stand an attack, and the library needs nothing but the compiler's runtime.
# Usage: hardening_test.sh READELF CONFIGURATION LIBRARY COMMAND
set -eu
seen=$(mktemp)
trap 'rm -f "$seen"' EXIT
failed=0

# expect COUNT PATTERN WHAT: how many lines of what readelf says of the file have the pattern, where + is one or more.
expect() {
  count=$(grep -c -- "$2" "$seen" || true)
  case $1$count in
    00 | +[1-9]*) ;;
    *) echo "failed: $file: $3 ($count lines with $2)"; failed=1 ;;
  esac
}

for file in "$3" "$4"; do
  LC_ALL=C "$1" -W -l -d --dyn-syms "$file" >"$seen"
  expect + 'GNU_RELRO' "the linkage tables stay writable"
  expect + 'FLAGS.* \(BIND_\)\?NOW' "calls are bound one by one, by tables that stay writable"
  expect + 'GNU_STACK .* RW  *0x' "the stack is executable"
  expect 0 'TEXTREL' "the loader writes to code"
  expect + ' UND __stack_chk_fail' "the stack is not guarded"
  [ "$2" = Debug ] || expect + ' UND __[a-z]*_chk\(@\|$\)' "the C library does not check sizes" # which takes an optimiser
done
expect + 'FLAGS_1.* PIE' "it always lies at the same address"

file=$3
LC_ALL=C "$1" -W -d "$file" >"$seen"
expect + 'SONAME.*\[libvintra\.so\.1\]' "it has another name"
expect 0 'R\(UN\)\?PATH' "it has its own search path"
sed -i '/NEEDED/!d; /\[\(libc\.so\|libm\.so\|libstdc++\.so\|libc++\.so\|libc++abi\.so\|libunwind\.so\|libgcc_s\.so\|ld-linux\)[^]]*\]/d' "$seen"
expect 0 NEEDED "it needs more: $(cat "$seen")"
exit $failed
