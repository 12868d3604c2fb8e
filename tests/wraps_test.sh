#!/bin/sh
# Each call that the tests replace is one that the library makes, by one of its names here: a fortified call and one of
# wider seconds have others, and what is not replaced would escape unseen.
# Usage: wraps_test.sh READELF NAME[,NAME...]... -- OBJECT...
set -eu
readelf=$1
shift
groups=
while [ "$1" != -- ]; do
  groups="$groups $1"
  shift
done
shift
called=$("$readelf" -sW "$@" | awk '$7 == "UND" { print $8 }')
for group in $groups; do
  for name in $(echo "$group" | tr , ' '); do
    echo "$called" | grep -qx "$name" && continue 2
  done
  echo "the library calls none of: $group"
  exit 1
done
