#!/bin/sh
# Turns a page of docs/ into a compressed manual page: page.sh PAGE OUTPUT NAME SECTION VERSION SUMMARY
set -eu
{
  printf 'title: %s\nsection: %s\nsource: Vintra %s\nvolume: Vintra\n\n# NAME\n\n%s - %s\n' "$3" "$4" "$5" "$3" "$6"
  # The page's title is the NAME here, and headings are one level higher. Links are text, as there is nothing to follow.
  sed -n 3p "$1" | grep -q '^#' || printf '\n# DESCRIPTION\n'
  sed -E -e '1d' -e 's/^##/#/' -e 's/^# (Synopsis|Description)$/# \U\1/' -e 's/\[[a-z]+\.md\]\(configuration\.md\)/**vintra-log**(5)/g' \
    -e 's/\[[a-z]+\.md\]\(ini\.md\)/**vintra-ini**(5)/g' -e 's/\[[a-z]+\.md\]\(command\.md\)/**vintra**(1)/g' \
    -e 's/\[([^]]*)\]\([^)]*\)/\1/g' "$1"
  printf '\n# SEE ALSO\n\n**vintra**(1), **vintra-log**(5), **vintra-ini**(5), **VintraModule.h**(3), **ConfigFileINI.h**(3)\n\n'
  printf 'Pages whose names end in .md lie in the folder vintra/docs of the installed documents.\n'
} | lowdown -s -Tman --out-no-smarty | awk -f "$(dirname "$0")/tables.awk" |
  sed -e "1s/^/'\\\\\" t\n/" -e '/^\.TH/a .na\n.nr HY 0' -e 's/\\fC/\\fB/g' | gzip -9n >"$2"
