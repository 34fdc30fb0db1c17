#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for SECONDS (default 30) with its
# seeds and dictionary. Exits non-zero when any target finds a crash, a
# broken check, a leak, a timeout or runs out of memory; the input that did
# it is copied into fuzz/regressions/<target>/, for the test suite to replay
# once it is committed.
#
#   bash scripts/fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-30}
build=build/fuzz
bash scripts/setup.sh --fuzz

start=$(date +%s)
CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKELPROFILE_FUZZ=ON -DKELPROFILE_TESTS=OFF >/dev/null
cmake --build "$build" -j "$(nproc 2>/dev/null || echo 2)" --target fuzzers
echo "fuzz build: $(($(date +%s) - start)) s"

# The example files each target starts from; a target not named here starts
# from every example. Its regression corpus is always added.
declare -A examples=(
  [profile]="examples/profiles"
  [temp_option]="examples/options"
  [option_group]="examples/options"
  [dvd_menu]="examples/dvd"
  [product]="examples/products"
  [customize]="examples/customize"
  [webplayer]="examples/webplayer"
  [json_write]="tests/data/write"
)

# The targets write and read their files in a folder of this run's own,
# removed at the end even after a crash. A memory file system when there is
# one: saves that rename over a file make a disk file system write through,
# which costs most of the executions.
scratch=/dev/shm
[ -d "$scratch" ] && [ -w "$scratch" ] || scratch="$PWD/$build"
TMPDIR=$(mktemp -d "$scratch/kelfuzz-run-XXXXXX")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

failed=()
for binary in "$build"/fuzz/*_fuzz; do
  target=$(basename "$binary" _fuzz)
  seeds="$build/seeds/$target"
  corpus="$build/corpus/$target"
  artifacts="$build/artifacts/$target"
  rm -rf "$seeds" "$artifacts"
  mkdir -p "$seeds" "$corpus" "$artifacts"
  find "${examples[$target]:-examples}" -type f -exec cp -t "$seeds" {} +
  if [ -d "fuzz/regressions/$target" ]; then
    find "fuzz/regressions/$target" -type f -exec cp -t "$seeds" {} +
  fi
  dict=()
  [ -f "fuzz/$target.dict" ] && dict=(-dict="fuzz/$target.dict")

  log="$build/$target.log"
  status=0
  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    "$binary" "${dict[@]}" -max_total_time="$seconds" -max_len=65536 -timeout=10 \
    -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$artifacts/" \
    "$corpus" "$seeds" >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  echo "$target: ${runs:-?} executions, exit status $status"
  if [ "$status" -ne 0 ]; then
    failed+=("$target")
    grep -E "ERROR|check failed|SUMMARY" "$log" | head -5 || true
    mkdir -p "fuzz/regressions/$target"
    for found in "$artifacts"/*; do
      [ -f "$found" ] || continue
      known=""
      for kept in "fuzz/regressions/$target"/*; do
        [ -f "$kept" ] && cmp -s "$found" "$kept" && known="$kept" && break
      done
      if [ -n "$known" ]; then
        echo "  already in the regression corpus: $known"
      else
        cp "$found" "fuzz/regressions/$target/"
        echo "  saved fuzz/regressions/$target/$(basename "$found")"
      fi
    done
    echo "  full log: $log"
  fi
done

if [ ${#failed[@]} -gt 0 ]; then
  echo "Findings in: ${failed[*]}. Commit the saved inputs once the library is fixed."
  exit 1
fi
echo "No findings."
