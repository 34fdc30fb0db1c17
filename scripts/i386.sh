#!/usr/bin/env bash
# Builds the library, the tool and every test as 32-bit x86 code (the host
# application is a 32-bit program) against Debian's i386 libxml2 and runs
# the tests, then compares the library's interface with its ABI baseline.
#
#   bash scripts/i386.sh             set up, build, test, check the interface
#                                    against abi/kelProfile-i386.abi
#   bash scripts/i386.sh --library   set up and build only the library (for
#                                    scripts/abi.sh); exits 3 when the i386
#                                    packages cannot be installed
#
# The i386 packages come from Debian through multiarch. When the archive's
# i386 index lags behind the amd64 one, a library that both architectures
# need (liblzma5, libssl3, ...) is offered at different versions for each,
# and multiarch refuses to install them side by side; the setup then pins
# both to the version the i386 index offers. When even that cannot be
# installed, the run says so in one line and is skipped: the other builds
# still check everything else.
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=build/i386
mode=${1:-}

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"

wanted=(g++-multilib libxml2-dev:i386 libgtest-dev:i386)

installed() {
  local p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || return 1
  done
}

# Candidate version of a package in the i386 index, or nothing.
i386_candidate() {
  apt-cache policy "$1:i386" 2>/dev/null | awk '/Candidate:/ { if ($2 != "(none)") print $2 }'
}

# True when the amd64 index offers this version of the package.
amd64_offers() {
  apt-cache madison "$1" 2>/dev/null | awk -v v="$2" '$3 == v && /amd64/ { found = 1 } END { exit !found }'
}

# Adds to `pins` the package at the version the i386 index offers, for i386
# and, when it is installed for amd64, for amd64 too (multiarch wants one
# version on both). Fails when amd64 does not offer that version.
pin_both() {
  local p=$1 v
  v=$(i386_candidate "$p")
  [ -n "$v" ] || return 1
  pins+=("$p:i386=$v")
  if installed "$p:amd64"; then
    amd64_offers "$p" "$v" || return 1
    pins+=("$p:amd64=$v")
  fi
}

# Keeps an amd64 package that the plan would remove (it holds a library at
# its amd64 version) by moving it to the version the i386 index offers.
pin_amd64() {
  local p=$1 v
  v=$(i386_candidate "$p")
  [ -n "$v" ] && amd64_offers "$p" "$v" || return 1
  pins+=("$p:amd64=$v")
}

# Installs the wanted packages, pinning what the archive's skew requires.
# Never removes a package: a plan that would is pinned further or given up.
install_packages() {
  installed "${wanted[@]}" && return 0
  if ! dpkg --print-foreign-architectures | grep -qx i386; then
    $sudo dpkg --add-architecture i386
  fi
  # A partly failed update (one index out of sync) still leaves the others.
  $sudo apt-get update -q >/dev/null 2>&1 || true
  pins=()
  local round plan p pinned_any
  for round in 1 2 3 4 5 6 7 8; do
    plan=$(apt-get install -s -q --no-install-recommends --allow-downgrades \
      "${wanted[@]}" "${pins[@]}" 2>&1) || true
    if grep -q '^Inst ' <<<"$plan" && ! grep -q '^Remv ' <<<"$plan" &&
      ! grep -q '^E: ' <<<"$plan"; then
      DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends \
        --allow-downgrades "${wanted[@]}" "${pins[@]}" >/dev/null 2>&1 || return 1
      return 0
    fi
    # Packages that cannot go in as asked, and packages the plan would
    # remove.
    pinned_any=0
    for p in $(sed -n -e 's/.*Depends: \([^ :]*\):i386.*not going to be installed.*/\1/p' \
      -e 's/.*Depends: \([^ :]*\):i386 (.*but [^ ]* is to be installed.*/\1/p' <<<"$plan" | sort -u); do
      [[ " ${pins[*]} " == *" $p:i386="* ]] && continue
      pin_both "$p" || return 1
      pinned_any=1
    done
    for p in $(sed -n 's/^Remv \([^ :]*\).*/\1/p' <<<"$plan" | sort -u); do
      [[ " ${pins[*]} " == *" $p:amd64="* ]] && return 1
      pin_amd64 "$p" || return 1
      pinned_any=1
    done
    [ "$pinned_any" -eq 1 ] || return 1
  done
  return 1
}

if ! install_packages; then
  echo "i386: SKIPPED: the i386 packages (${wanted[*]}) cannot be installed from the archive as it stands; no 32-bit build or test ran"
  [ "$mode" = "--library" ] && exit 3
  exit 0
fi

# A kernel without 32-bit support (no IA32 emulation) cannot run the
# programs: they then run under qemu's user-mode emulator.
emulator=()
probe=$(mktemp -d)
trap 'rm -rf "$probe"' EXIT
echo 'int main(void) { return 0; }' >"$probe/probe.c"
gcc -m32 "$probe/probe.c" -o "$probe/probe"
if ! "$probe/probe" 2>/dev/null; then
  if ! installed qemu-user; then
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends qemu-user >/dev/null
  fi
  emulator=(-DCMAKE_CROSSCOMPILING_EMULATOR=/usr/bin/qemu-i386)
  [ "$mode" = "--library" ] || echo "i386: this kernel runs no 32-bit code; the programs run under qemu-i386"
fi

jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/i386.cmake" "${emulator[@]}" \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=ON >/dev/null
if [ "$mode" = "--library" ]; then
  cmake --build "$build_dir" -j "$jobs" --target kelProfile >/dev/null
  exit 0
fi
cmake --build "$build_dir" -j "$jobs"
ctest --test-dir "$build_dir" -j "$jobs" --output-on-failure
bash scripts/abi.sh i386
