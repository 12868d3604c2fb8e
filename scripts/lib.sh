# Shared by the scripts of this folder: sourced, not run.
set -Eeuo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

step() { printf '\n==> %s\n' "$*"; }
die() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}
trap 'printf "%s: failed at line %s: %s\n" "${0##*/}" "$LINENO" "$BASH_COMMAND" >&2' ERR

# need PACKAGE...: installs those Debian packages that are missing.
need() {
  command -v dpkg-query >/dev/null || die "this needs a Debian system with: $*"
  local missing=() package as_root=()
  for package in "$@"; do
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0
  step "Installing ${missing[*]}"
  if [[ $(id -u) -ne 0 ]]; then
    command -v sudo >/dev/null || die "installing ${missing[*]} needs root or sudo"
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET: configures and builds.
build() {
  step "Building ($1)"
  local output
  output=$(cmake --preset "$1" -DVINTRA_WARNINGS_AS_ERRORS="$warnings_as_errors" 2>&1) || {
    printf '%s\n' "$output"
    die "configuring $1 failed"
  }
  cmake --build --preset "$1"
}

# A newer compiler's warnings fail our own builds, not those of somebody who tries the library.
warnings_as_errors=${VINTRA_WARNINGS_AS_ERRORS:-OFF}
build_packages=(cmake ninja-build g++ libc6-dev)
man_packages=(doxygen lowdown)
test_packages=("${build_packages[@]}" "${man_packages[@]}" libgtest-dev clang pkg-config man-db dpkg-dev file)

# Variants: the same tests, built in another way. A warning fails a build.
variant_rows=()
variants_failed=0

# try_variant NAME RUN CMAKE_ARGUMENT...: builds GoogleTest and the tests, and calls RUN with the folder of the build.
# Its last line goes into the table.
try_variant() {
  local name=$1 run=$2 folder=$root/build/variants/$1 result
  shift 2
  step "$name"
  local common=(-G Ninja "$@")
  if variant_steps >"$folder.log" 2>&1; then
    result=$(tail -n 1 "$folder.log")
  else
    result="FAILED, see build/variants/$name.log"
    variants_failed=1
    tail -n 40 "$folder.log"
  fi
  echo "$result"
  variant_rows+=("$(printf '%-18s %s' "$name" "$result")")
}

# As a condition it runs without errexit, so each step ends it by itself.
variant_steps() {
  rm -rf "$folder"
  cmake -S /usr/src/googletest -B "$folder/googletest" "${common[@]}" -DCMAKE_INSTALL_PREFIX="$folder/gtest" \
    -DCMAKE_INSTALL_LIBDIR=lib -DBUILD_GMOCK=OFF -DCMAKE_CXX_STANDARD=17 || return
  cmake --build "$folder/googletest" --target install || return
  cmake -S "$root" -B "$folder" "${common[@]}" -DGTest_DIR="$folder/gtest/lib/cmake/GTest" -DVINTRA_BUILD_MAN=OFF \
    -DVINTRA_WARNINGS_AS_ERRORS=ON || return
  cmake --build "$folder" || return
  "$run" "$folder"
}

# run_tests COMMAND...: the test program, and a line that tells how it went.
run_tests() {
  local output
  output=$("$@" --gtest_brief=1 2>&1) || { printf '%s\n' "$output"; return 1; }
  printf '%s\n' "$output"
  local skipped
  skipped=$(sed -n 's/^\[  SKIPPED \] \([0-9]*\) tests\{0,1\}.*/\1/p' <<<"$output")
  sed -n "s/^\[  PASSED  \] \([0-9]*\) tests.*/\1 tests passed, ${skipped:-0} skipped/p" <<<"$output"
}

show_variants() {
  step "${1:-Variants}"
  printf '%s\n' "${variant_rows[@]}"
  ((variants_failed == 0)) || die "not all of them are well"
}
