#!/bin/sh
# What is installed serves programs in C and C++ through CMake and through pkg-config, from whatever prefix, and the
# manual pages render. Usage: install_test.sh CMAKE BUILD_DIR SOURCE_DIR CC CXX LIBDIR
set -eu
cmake=$1
build=$2
source_dir=$3
cc=$4
cxx=$5
libdir=$6
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "failed: $*"
  exit 1
}

# use HOW PROGRAM PREFIX LANGUAGE [FOLDER]: the program finds the library by its SONAME, in the prefix, or has it in
# itself
use() {
  rm -f "$work/app.log"
  [ "$("$2" "$work/app.log")" = "${5-$3/$libdir/}" ] || fail "$1: the library lies elsewhere"
  [ "$("$3/bin/vintra" cat "$work/app.log")" = "[INFO]    from $4" ] || fail "$1: the log is not what was written"
}

for prefix in "$work/one" "$work/two words"; do
  "$cmake" --install "$build" --prefix "$prefix" >"$work/installed"
  [ "$(readlink "$prefix/$libdir/libvintra.so")" = libvintra.so.1 ] || fail "libvintra.so leads elsewhere"
  (cd "$prefix/include/vintra" && find . -type f | sort | tr '\n' ' ') >"$work/headers"
  [ "$(cat "$work/headers")" = './Common/BaseTypes.h ./ConfigFileINI/ConfigFileINI.h ./FolderModule/FolderModule.h ./VintraModule/VintraModule.h ./vintra.h ' ] ||
    fail "other headers are installed: $(cat "$work/headers")"

  for project in . static; do
    {
      "$cmake" -S "$source_dir/tests/consumer/$project" -B "$prefix/build/$project" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" && "$cmake" --build "$prefix/build/$project"
    } >"$work/built" 2>&1 || { cat "$work/built"; exit 1; }
  done
  use "CMake, C" "$prefix/build/consumer_c" "$prefix" C
  use "CMake, C++" "$prefix/build/consumer_cxx" "$prefix" C++
  use "CMake, static" "$prefix/build/static/consumer_static" "$prefix" C "$prefix/build/static/"

  export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
  [ "$(pkg-config --modversion vintra)" = "$("$prefix/bin/vintra" --version | cut -d ' ' -f 2)" ] || fail "another version"
  flags=$(pkg-config --cflags --libs vintra)
  # The paths of a host's own choice may have blanks, which pkg-config marks for a shell.
  eval "'$cc' -std=c99 '$source_dir/tests/consumer/consumer.c' -o '$work/consumer' $flags '-Wl,-rpath,$prefix/$libdir'"
  use "pkg-config, C" "$work/consumer" "$prefix" C
  eval "'$cxx' -std=c++11 '$source_dir/tests/consumer/consumer.cpp' -o '$work/consumer' $flags '-Wl,-rpath,$prefix/$libdir'"
  use "pkg-config, C++" "$work/consumer" "$prefix" C++
  runtime=$(sed -n 's/^Libs.private: //p' "$PKG_CONFIG_PATH/vintra.pc")
  flags="$(pkg-config --cflags vintra) $(pkg-config --variable=libdir vintra)/libvintra.a $runtime"
  eval "'$cc' -std=c99 '$source_dir/tests/consumer/consumer.c' -o '$work/consumer' $flags"
  use "pkg-config, static" "$work/consumer" "$prefix" C "$work/"
  for program in "$work/consumer" "$prefix/build/static/consumer_static"; do
    ! ldd "$program" | grep libvintra || fail "$program needs the shared library"
  done
  flags=$(pkg-config --static --cflags --libs vintra)
  [ "$runtime" = "${runtime#*stdc++}" ] && continue # libc++ has no runtime of its own that is all static
  eval "'$cc' -std=c99 -static '$source_dir/tests/consumer/consumer.c' -o '$work/consumer' $flags"
  use "pkg-config, all static" "$work/consumer" "$prefix" C ''
done

# A library folder of its own leaves the headers below the prefix.
"$cmake" -S "$source_dir" -B "$work/build" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DVINTRA_BUILD_TESTS=OFF \
  -DCMAKE_INSTALL_PREFIX=/prefix -DCMAKE_INSTALL_LIBDIR=/elsewhere/lib >"$work/configured" 2>&1 || { cat "$work/configured"; exit 1; }
flags=$(pkg-config --cflags --libs-only-L "$work/build/vintra.pc")
[ "${flags% }" = "-I/prefix/include/vintra -L/elsewhere/lib" ] || fail "headers are looked for elsewhere: $flags"

for page in "$work"/one/share/doc/vintra/*.md "$work"/one/share/doc/vintra/docs/*.md; do
  for link in $(grep -o ']([^)#:]*' "$page" | cut -c 3-); do
    [ -e "${page%/*}/$link" ] || fail "$page leads to $link, which is not installed"
  done
done

# As a part of a host, which has documents and packages of its own.
mkdir "$work/host"
cat >"$work/host/CMakeLists.txt" <<EOF
cmake_minimum_required(VERSION 3.21)
project(host C CXX)
include(GNUInstallDirs)
include(CPack)
add_subdirectory("$source_dir" vintra)
EOF
"$cmake" -S "$work/host" -B "$work/host/build" -DVINTRA_INSTALL=ON -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
  >"$work/configured" 2>&1 || { cat "$work/configured"; exit 1; }
! grep -n 'share/doc/host' "$work/host/build/vintra/cmake_install.cmake" || fail "documents go to those of a host"
grep -q 'CPACK_PACKAGE_NAME "host"' "$work/host/build/CPackConfig.cmake" || fail "a host's packages are replaced"

pages=$work/one/share/man
export GROFF_NO_SGR=1 MANROFFOPT=-c # text without the escapes of a terminal, whatever man's version
[ -d "$pages" ] || { echo "skipped: the manual pages, as they were not built"; exit 0; }
for page in "$pages"/man?/*; do
  warnings=$(cd "$pages" && LC_ALL=C.UTF-8 man --warnings -E UTF-8 -Tutf8 -l "$page" 2>&1 >"$work/raw")
  sed "s/.$(printf '\b')//g" "$work/raw" >"$work/page" # without the marks of bold type
  # A page that leads to another one is looked up from where it is installed.
  [ -z "$warnings" ] || fail "$page: $warnings"
  grep -q '^NAME' "$work/page" || fail "$page has no name"
  ! grep -n 'QUOTATION-MARK\|\.fi$\|@endverbatim\|VINTRA_LEVEL_ALIAS' "$work/page" || fail "$page shows what was meant for a tool"
done
for name in $(sed 's/@.*//; /^_Z/d' "$source_dir/tests/exports.txt") vintra_info; do
  [ -e "$pages/man3/$name.3.gz" ] || fail "no manual page for $name"
done
for page in vintra.1 vintra-log.5 vintra-ini.5; do
  [ -e "$pages/man${page##*.}/$page.gz" ] || fail "no manual page $page"
done
MANPATH=$pages man LogConfigRec | grep -q '#include <VintraModule/VintraModule.h>' || fail "LogConfigRec is included otherwise"
MANPATH=$pages LC_ALL=C.UTF-8 man LOG_INFO | grep -q 'Write one record of a level' || fail "man LOG_INFO leads nowhere"
echo "$(ls "$pages"/man?/* | wc -l) manual pages"
