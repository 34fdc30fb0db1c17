#!/usr/bin/env bash
# The binary interface against its baseline: the ABI of the built library
# (exported functions with their parameters, and every record of the public
# header with its fields' types, offsets and sizes) is compared with the one
# committed in abi/, for x86-64 and for i386.
#
#   bash scripts/abi.sh [x86_64|i386]...            check (both by default)
#   bash scripts/abi.sh --update [x86_64|i386]...   rewrite the baselines
#
# Any difference fails the check, an added function included: the baseline
# must describe every export so that a later change to it is caught too.
# When the interface is meant to change, run --update and commit abi/.
set -euo pipefail
cd "$(dirname "$0")/.."

update=0
arches=()
for arg in "$@"; do
  case $arg in
    --update) update=1 ;;
    x86_64 | i386) arches+=("$arg") ;;
    *)
      echo "usage: scripts/abi.sh [--update] [x86_64|i386]..." >&2
      exit 2
      ;;
  esac
done
[ ${#arches[@]} -eq 0 ] && arches=(x86_64 i386)

if ! command -v abidw >/dev/null || ! command -v abidiff >/dev/null; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update -q >/dev/null 2>&1 || true
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends \
    abigail-tools >/dev/null
fi

# The library of an architecture, built with debug information (abidw reads
# it) in the build folder that scripts/test.sh or scripts/i386.sh uses.
# Prints nothing and fails with 3 when the i386 packages cannot be had.
build_library() {
  case $1 in
    x86_64)
      if [ ! -f build/plain/CMakeCache.txt ]; then
        cmake -S . -B build/plain -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
          -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=ON -DKELPROFILE_BENCH=ON >/dev/null
      fi
      cmake --build build/plain -j "$(nproc 2>/dev/null || echo 2)" --target kelProfile >/dev/null ||
        return 1
      echo build/plain/libkelProfile.so
      ;;
    i386)
      bash scripts/i386.sh --library >&2 || return $?
      echo build/i386/libkelProfile.so
      ;;
  esac
}

# All types are loaded, so that the records no exported function reaches yet
# are described too; locations are file names only and no build path is
# kept, so a dump does not depend on where the repository lies.
dump() {
  abidw --headers-dir include --load-all-types --no-corpus-path --no-comp-dir-path \
    --short-locs --type-id-style hash --out-file "$2" "$1"
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0
for arch in "${arches[@]}"; do
  baseline=abi/kelProfile-$arch.abi
  status=0
  library=$(build_library "$arch") || status=$?
  if [ "$status" -eq 3 ]; then
    echo "abi: $arch: SKIPPED (no $arch build here); $baseline was not checked"
    [ "$update" -eq 1 ] && failed=1
    continue
  fi
  [ "$status" -eq 0 ] || exit "$status"
  dump "$library" "$scratch/$arch.abi"

  if [ "$update" -eq 1 ]; then
    mkdir -p abi
    cp "$scratch/$arch.abi" "$baseline"
    echo "abi: $arch: wrote $baseline"
    continue
  fi
  if [ ! -f "$baseline" ]; then
    echo "abi: $arch: $baseline is missing; run bash scripts/abi.sh --update $arch"
    failed=1
    continue
  fi

  # Two comparisons: everything reachable from an exported function, with
  # nothing filtered (a change deep in a field's type counts, and so do the
  # changes abidiff calls harmless, such as a parameter losing its const);
  # then the types no export reaches, limited to those of the public header
  # and the fixed-width integer types its records use (the library's
  # internal types may change freely).
  reachable=0 unreachable=0
  abidiff --harmless "$baseline" "$scratch/$arch.abi" >"$scratch/reachable.txt" 2>&1 ||
    reachable=$?
  abidiff --harmless --non-reachable-types --suppressions abi/public-types.suppr \
    "$baseline" "$scratch/$arch.abi" >"$scratch/unreachable.txt" 2>&1 || unreachable=$?
  if [ "$reachable" -eq 0 ] && [ "$unreachable" -eq 0 ]; then
    echo "abi: $arch: the interface matches $baseline"
    continue
  fi
  failed=1
  cat "$scratch/reachable.txt"
  [ "$unreachable" -ne 0 ] && sed -n '/unreachable from any public interface:/,$p' "$scratch/unreachable.txt"
  # abidiff's status: 4 a change, 8 (with 4) an incompatible one, 1 or 2 an error.
  echo "abi: $arch: FAILED: the interface differs from $baseline (abidiff status $reachable/$unreachable;" \
    "4 = a change such as an added function, 12 = an incompatible change)." \
    "If the change is meant, run bash scripts/abi.sh --update and commit abi/."
done
exit "$failed"
