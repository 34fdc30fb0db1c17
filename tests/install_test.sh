#!/usr/bin/env bash
# Installs the built library into a temporary prefix and builds and runs a
# host project against it, found through CMake and through pkg-config.
# CMAKE_TOOLCHAIN_FILE, when set, is the library's target (cmake reads it
# from the environment); KELPROFILE_EMULATOR, when set, runs the programs.
set -euo pipefail
build_dir=$1
source_dir=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
cmake -S "$source_dir/tests/consumer" -B "$prefix/consumer" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$prefix/consumer" >/dev/null
for program in consumer consumer_pc; do
  LD_LIBRARY_PATH="$prefix/lib:$prefix/lib/$(ls "$prefix/lib" | grep -m1 -- '-linux-gnu' || true)" \
    ${KELPROFILE_EMULATOR:-} "$prefix/consumer/$program"
done
echo "install: 1 passed, 0 failed"
