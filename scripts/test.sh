#!/usr/bin/env bash
# Sets everything up and runs all tests: a plain build (with the benchmark
# built, not run) and an AddressSanitizer + UndefinedBehaviorSanitizer build,
# both with warnings as errors; a ThreadSanitizer build of the threads test;
# the interface compared with its ABI baseline;
# a 32-bit x86 build with all its tests, the host's own architecture; a
# build and the tests against GNU libiconv; the macOS cross-build (one
# universal, signed dylib) and the musl one; then a short run of every fuzz
# target.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh --tests
jobs=$(nproc 2>/dev/null || echo 2)

cmake -S . -B build/plain -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=ON -DKELPROFILE_BENCH=ON
cmake --build build/plain -j "$jobs"
ctest --test-dir build/plain -j "$jobs" --output-on-failure
bash scripts/abi.sh x86_64

cmake -S . -B build/sanitize -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=ON -DKELPROFILE_SANITIZE=ON
cmake --build build/sanitize -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build/sanitize -j "$jobs" --output-on-failure

# What runs on threads, under ThreadSanitizer: the stress test of every
# family on several threads beside another libxml2 user.
cmake -S . -B build/tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=ON -DKELPROFILE_TSAN=ON
cmake --build build/tsan -j "$jobs" --target threads_test
TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
  ctest --test-dir build/tsan -R '^Threads\.' --output-on-failure

bash scripts/i386.sh

# The converter macOS ships up to macOS 13: GNU libiconv, built from the npm
# registry's copy, the tests run against it, and every example's and
# fixture's records and saved files compared with the glibc build's.
bash scripts/libiconv.sh build/plain

# The host's platform: the library and the tool cross-compiled for macOS
# (x86-64 and arm64) and checked as the host loads them; and compiled for
# musl.
bash scripts/cross.sh build/plain/libkelProfile.so

# A short run of every fuzz target (30 s each), with clang and libFuzzer.
bash scripts/fuzz.sh 30
