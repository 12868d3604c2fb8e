#!/bin/sh
# The Debian packages hold what they should; installed, used and removed again they leave nothing behind.
# Usage: deb_test.sh CPACK BUILD_DIR
set -eu
export LC_ALL=C
cpack=$1
build=$2
command -v dpkg-gensymbols >/dev/null || { echo "skipped: dpkg-dev is not here"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "failed: $*"
  exit 1
}

"$cpack" -G DEB --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/packed" 2>&1 || { cat "$work/packed"; exit 1; }
cd "$work"
lib=$(echo packages/libvintra1_*.deb)
dev=$(echo packages/libvintra-dev_*.deb)
tools=$(echo packages/vintra-tools_*.deb)

dpkg-deb -e "$lib" control
case $(cat control/shlibs) in
  'libvintra 1 libvintra1 (>= '*) ;;
  *) fail "shlibs: $(cat control/shlibs)" ;;
esac
[ "$(cat control/triggers)" = 'activate-noawait ldconfig' ] || fail "the loader is not told of the library"
# The symbols are those that the library has.
dpkg-deb -x "$lib" unpacked
mkdir -p symbols/debian
printf 'Source: vintra\n\nPackage: libvintra1\nArchitecture: any\n' >symbols/debian/control
library=$work/$(find unpacked -name 'libvintra.so.1.*')
(cd symbols && dpkg-gensymbols -v1.0.0 -plibvintra1 -e"$library" -O../seen) >done 2>&1 || { cat done; fail "no symbols"; }
sort control/symbols >named
sort seen | diff named - || fail "the symbols file is another"
for package in "$dev" "$tools"; do
  dpkg-deb -f "$package" Depends | grep -q 'libvintra1 (= ' || fail "$package does not need its library"
done

# A system of its own, without the packages that a real one has. What the packages' scripts call is not there.
mkdir -p root/var/lib/dpkg/info root/var/lib/dpkg/updates bin
: >root/var/lib/dpkg/status
printf '#!/bin/sh\n' | tee bin/ldconfig >bin/start-stop-daemon
chmod +x bin/*
packages() {
  PATH="$work/bin:$PATH" dpkg --root="$work/root" --force-depends --force-not-root --force-script-chrootless --log=/dev/null \
    "$@" >done 2>&1 || { cat done; fail "dpkg $*"; }
}
packages -i "$lib" "$dev" "$tools"
for file in bin/vintra include/vintra/vintra.h share/vintra/rsyslog/vintra.conf share/vintra/lnav/vintra_log.json \
  share/doc/vintra/README.md share/doc/vintra/docs/README.md share/doc/vintra/examples/hello.cpp \
  share/doc/libvintra1/copyright share/doc/libvintra1/changelog.gz; do
  [ -s "root/usr/$file" ] || fail "no $file"
done
library=$(find root/usr/lib -name libvintra.so.1)
# Keys that are missing are told of in the library's error log.
printf '[a]\nlevel = Log_Level_Info\nfile_name = %s/app.log\n' "$work" >log.ini
export LD_LIBRARY_PATH="${library%/*}"
echo hello | root/usr/bin/vintra write -c log.ini -s a
root/usr/bin/vintra cat app.log | grep -q hello || fail "the command does not work"
unset LD_LIBRARY_PATH
[ -s "${library%/*}/LogModuleErrMsg.log" ] || fail "no error log to be removed"
packages -r vintra-tools libvintra-dev libvintra1
packages -P vintra-tools libvintra-dev libvintra1
left=$(find root -path root/var/lib/dpkg -prune -o ! -type d -print -o -path 'root/usr/*' -name '*vintra*' -print)
[ -z "$left" ] || fail "left behind: $left"
