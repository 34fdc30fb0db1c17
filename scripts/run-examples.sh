#!/usr/bin/env bash
# Sets everything up, builds the library and its tool, and runs the tool's
# main job on the example files shipped with the repository: every file is
# read, written back, read again and compared field by field.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake -S . -B build/tool -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELPROFILE_TESTS=OFF >/dev/null
cmake --build build/tool -j "$(nproc 2>/dev/null || echo 2)" --target kelprofile
build/tool/kelprofile check examples
