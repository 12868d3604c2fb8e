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
