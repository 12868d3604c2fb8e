#!/bin/sh
# The library exports what the list says, no more and no less. Usage: exports_test.sh NM LIBRARY LIST
set -eu
"$1" -D --defined-only "$2" | awk '$2 != "A" { print $3 }' | LC_ALL=C sort | diff -u "$3" - && echo "$(wc -l <"$3") symbols"
