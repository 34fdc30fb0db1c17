#!/usr/bin/env bash
# Builds the library, the tool and every test against GNU libiconv, the
# converter macOS ships up to macOS 13, instead of glibc's iconv, runs the
# tests, and checks that both converters give the same bytes: for every
# example (examples/**.xml) and every fixture (tests/data/**.xml), what
# `kelprofile show --json` prints and, for the four families with a writer,
# the file `kelprofile show --json FILE | kelprofile write - OUT` saves must
# be identical to what the reference build (glibc) gives.
#
#   bash scripts/libiconv.sh [REFERENCE_BUILD]
#
# REFERENCE_BUILD is a build folder of the project against glibc's iconv
# holding kelprofile (build/plain by default, which scripts/test.sh builds;
# built here when missing).
#
# GNU libiconv comes from the npm registry: the package "iconv" (node-iconv)
# carries GNU libiconv 1.15's lib/ folder, its converters and conversion
# tables, in deps/libiconv/lib (npm checks the tarball's integrity, and so
# does this script). Only its converter is built, as the static library
# build/libiconv/lib/libiconv.a with hidden names, so that the library's
# exports stay those of the glibc build. Its header renames the calls to
# libiconv_open, libiconv and libiconv_close, which never meet glibc's
# iconv in one process. When the registry cannot be reached, the step says
# so in one line and is skipped; under CI (CI=true) that is a failure.
set -euo pipefail
script=$(realpath "$0")
cd "$(dirname "$0")/.."
top=$PWD

reference=${1:-build/plain}
package=iconv@3.0.1
integrity=sha512-lJnFLxVc0d82R7GfU7a9RujKVUQ3Eee19tPKWZWBJtAEGRHVEyFzCtbNl3GPKuDnHBBRT4/nDS4Ru9AIDT72qA==
dir=$top/build/libiconv
build=$dir/build
jobs=$(nproc 2>/dev/null || echo 2)
started=$SECONDS

say() { printf 'libiconv: %s\n' "$@"; }
# A log's lines, each with the step's prefix.
show_log() { sed 's/^/libiconv:   /' "$@"; }
# The first line, then each further argument's lines below it.
fail() {
  say "FAILED: $1"
  shift
  local part
  for part in "$@"; do printf '%s\n' "$part" | show_log; done
  exit 1
}
skip() {
  if [ "${CI:-}" = true ]; then
    fail "$* (CI=true: the step must run)"
  fi
  say "SKIPPED: $*"
  exit 0
}

bash scripts/setup.sh --tests
bash scripts/setup.sh --npm >/dev/null || skip "npm cannot be installed, so GNU libiconv cannot be fetched"
mkdir -p "$dir"

# GNU libiconv's sources, as the npm package carries them.
src=$dir/package/deps/libiconv/lib
support=$dir/package/support
if [ ! -f "$dir/package/.fetched" ] || [ "$(cat "$dir/package/.fetched")" != "$package $integrity" ]; then
  rm -rf "$dir/package" "$dir/npm" && mkdir -p "$dir/npm"
  if ! tarball=$(cd "$dir/npm" && npm pack --silent --fetch-retries=1 "$package" 2>"$dir/npm/pack.log" | tail -n 1) ||
    [ ! -f "$dir/npm/$tarball" ]; then
    [ -s "$dir/npm/pack.log" ] && show_log "$dir/npm/pack.log"
    skip "$package cannot be fetched from the npm registry"
  fi
  # npm checked the tarball against the registry's record; this checks it
  # against the one this script was written for.
  got=sha512-$(node -e 'process.stdout.write(require("crypto").createHash("sha512")
    .update(require("fs").readFileSync(process.argv[1])).digest("base64"))' "$dir/npm/$tarball")
  [ "$got" = "$integrity" ] || fail "$package: the tarball's digest is $got, not $integrity"
  tar -xzf "$dir/npm/$tarball" -C "$dir" && rm -rf "$dir/npm"
  for f in "$src/iconv.c" "$src/gbk.h" "$src/ces_gbk.h" "$src/encodings.def" "$support/iconv.h" "$support/localcharset.c"; do
    [ -f "$f" ] || fail "$package holds no ${f#"$dir"/}"
  done
  echo "$package $integrity" >"$dir/package/.fetched"
fi

# The converter: lib/iconv.c holds every converter and table of the default
# configuration (no --enable-extra-encodings). The npm package ships the
# header it was generated with for node-gyp (const input buffer, version
# 1.14); the header here is that one configured as GNU libiconv's configure
# configures it on glibc and as macOS declares iconv: a `char **` input
# buffer, mbstate_t and wchar_t present, and the version of the sources.
lib=$dir/lib/libiconv.a
if [ ! -f "$lib" ] || [ "$lib" -ot "$script" ] || [ "$lib" -ot "$dir/package/.fetched" ]; then
  rm -rf "${dir:?}/include" "${dir:?}/lib" "${dir:?}/obj" && mkdir -p "$dir/include" "$dir/lib" "$dir/obj"
  sed -e 's/^#define _LIBICONV_VERSION 0x010E /#define _LIBICONV_VERSION 0x010F /' \
    -e 's/^extern size_t iconv (iconv_t cd, const char\* \* inbuf,/extern size_t iconv (iconv_t cd, char* * inbuf,/' \
    -e 's/^#if USE_MBSTATE_T$/#if 1/' -e 's/^#if BROKEN_WCHAR_H$/#if 0/' -e 's/^#if HAVE_WCHAR_T$/#if 1/' \
    "$support/iconv.h" >"$dir/include/iconv.h"
  if ! grep -q '^#define _LIBICONV_VERSION 0x010F ' "$dir/include/iconv.h" ||
    ! grep -q '^extern size_t iconv (iconv_t cd, char\* \* inbuf,' "$dir/include/iconv.h" ||
    grep -Eq '^#if (USE_MBSTATE_T|BROKEN_WCHAR_H|HAVE_WCHAR_T)$' "$dir/include/iconv.h"; then
    fail "$package: its iconv.h is not the one this script configures"
  fi
  cat >"$dir/obj/config.h" <<'EOF'
/* What GNU libiconv's configure finds on glibc. */
#define ICONV_CONST
#define HAVE_WCRTOMB 1
#define HAVE_MBRTOWC 1
#define HAVE_MBSINIT 1
#define USE_MBSTATE_T 1
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define WORDS_LITTLEENDIAN 1
#endif
EOF
  if ! {
    ${CC:-cc} -O2 -fPIC -fvisibility=hidden -I"$dir/include" -I"$dir/obj" -I"$src" -I"$support" \
      -c "$src/iconv.c" -o "$dir/obj/iconv.o" &&
      ${CC:-cc} -O2 -fPIC -fvisibility=hidden -I"$support" \
        -c "$support/localcharset.c" -o "$dir/obj/localcharset.o" &&
      ar rcs "$lib" "$dir/obj/iconv.o" "$dir/obj/localcharset.o"
  } >"$dir/obj/build.log" 2>&1; then
    show_log "$dir/obj/build.log"
    rm -f "$lib"
    fail "GNU libiconv does not build"
  fi
fi
say "GNU libiconv 1.15 from $package (deps/libiconv/lib): $(realpath --relative-to="$top" "$lib")"

# The reference: a build against glibc's iconv.
if [ ! -x "$reference/kelprofile" ]; then
  say "no $reference/kelprofile: building the reference (glibc) in build/libiconv/reference"
  reference=$dir/reference
  if ! { cmake -S . -B "$reference" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELPROFILE_TESTS=OFF &&
    cmake --build "$reference" -j "$jobs" --target kelprofile; } >"$dir/reference.log" 2>&1; then
    show_log "$dir/reference.log"
    fail "the reference build does not build"
  fi
fi
reference=$(realpath "$reference")
reference_name=$(realpath --relative-to="$top" "$reference")
newer=$(find src include tools CMakeLists.txt -newer "$reference/libkelProfile.so" -type f 2>/dev/null |
  head -n 3 | paste -sd ' ')
[ -z "$newer" ] ||
  say "warning: $reference_name is older than $newer; differences may come from the sources, not the converter"
# The reference's tool and library are copied, so that a rebuild of that
# folder while this runs does not change what the files are compared with.
copy=$dir/reference-copy
rm -rf "$copy" && mkdir -p "$copy"
cp -a "$reference/kelprofile" "$reference"/libkelProfile.so* "$copy/" ||
  fail "$reference_name: its kelprofile and libkelProfile.so cannot be copied"
reference_lib=$copy/libkelProfile.so
reference_calls=$(nm -D --undefined-only "$reference_lib") ||
  fail "$reference_name/libkelProfile.so cannot be read"
grep -Eq ' iconv_open(@|$)' <<<"$reference_calls" ||
  fail "$reference_name/libkelProfile.so does not use glibc's iconv, so it is no reference"

# The project against it. A file of CMake code, run at the end of the
# configure, records what FindIconv decided.
cat >"$dir/iconv-found.cmake" <<'EOF'
function(kelprofile_record_iconv)
  file(WRITE "${CMAKE_BINARY_DIR}/iconv-found.txt"
    "built_in=${Iconv_IS_BUILT_IN}\nlibraries=${Iconv_LIBRARIES}\ninclude_dirs=${Iconv_INCLUDE_DIRS}\nversion=${Iconv_VERSION}\n")
endfunction()
cmake_language(DEFER CALL kelprofile_record_iconv)
EOF
rm -f "$build/iconv-found.txt"
if ! cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=ON \
  -DIconv_INCLUDE_DIR="$dir/include" -DIconv_LIBRARY="$lib" \
  -DCMAKE_PROJECT_INCLUDE="$dir/iconv-found.cmake" >"$dir/configure.log" 2>&1; then
  show_log "$dir/configure.log"
  fail "the project does not configure against GNU libiconv"
fi
found=$(cat "$build/iconv-found.txt" 2>/dev/null || true)
want=$(printf 'built_in=FALSE\nlibraries=%s\ninclude_dirs=%s\nversion=1.15' "$lib" "$dir/include")
[ "$found" = "$want" ] || fail "FindIconv did not take GNU libiconv:" "$found"
say "configured: FindIconv takes GNU libiconv $(sed -n 's/^version=//p' "$build/iconv-found.txt") (Iconv_IS_BUILT_IN false)"

build_started=$SECONDS
if ! cmake --build "$build" -j "$jobs" >"$dir/build.log" 2>&1; then
  show_log "$dir/build.log"
  fail "the project does not build against GNU libiconv"
fi
say "built in $((SECONDS - build_started)) s: $(realpath --relative-to="$top" "$build")"

# The library converts with GNU libiconv and with nothing else, and exports
# what the glibc build exports.
library=$build/libkelProfile.so
problems=()
symbols=$(nm "$library")
glibc_calls=$(nm -D --undefined-only "$library" | awk '{ print $2 }' | grep -E '^iconv(_open|_close)?(@|$)' | tr '\n' ' ' || true)
[ -z "$glibc_calls" ] || problems+=("it calls glibc's iconv: $glibc_calls")
for name in libiconv_open libiconv libiconv_close; do
  grep -Eq " t $name\$" <<<"$symbols" || problems+=("it does not hold GNU libiconv's $name")
done
grep -q ' gbkext1_2uni_page81$' <<<"$symbols" || problems+=("it does not hold GNU libiconv's GBK tables")
exports_diff=$(diff <(nm -D --defined-only "$reference_lib" | awk '{ print $3 }' | sort -u) \
  <(nm -D --defined-only "$library" | awk '{ print $3 }' | sort -u) | grep '^[<>]' || true)
[ -z "$exports_diff" ] || problems+=("its exports differ from the reference's:" "$exports_diff")
[ ${#problems[@]} -eq 0 ] || fail "$(realpath --relative-to="$top" "$library"):" "${problems[@]}"
say "libkelProfile.so links GNU libiconv statically (libiconv_open, its GBK tables), no glibc iconv; exports as the reference's"

failed=0
test_started=$SECONDS
if ctest --test-dir "$build" -j "$jobs" --output-on-failure >"$dir/ctest.log" 2>&1; then
  say "ctest: $(grep -E 'tests passed' "$dir/ctest.log" | tail -n 1) ($((SECONDS - test_started)) s)"
else
  # Each failing test's output, its first 60 lines, then ctest's summary.
  awk -v max=60 -v logfile="build/libiconv/ctest.log" '
    function cut() { if (n > max) printf "... %d more lines in %s\n", n - max, logfile; n = 0 }
    /^ *[0-9]+\/[0-9]+ Test +#[0-9]+: / { cut(); failing = /\*\*\*/; if (failing) print; next }
    /^ *Start +[0-9]+: / { next }
    /^[0-9]+% tests passed/ { cut(); failing = 0; summary = 1 }
    summary { print; next }
    failing && ++n <= max { print }' "$dir/ctest.log" | show_log
  say "ctest: FAILED: $(grep -E 'tests passed' "$dir/ctest.log" | tail -n 1 || echo 'no summary')"
  failed=1
fi

# The byte-identical check. Each build runs its own tool from the top
# folder, so that the paths it prints are the same.
compare=$dir/compare
rm -rf "$compare" && mkdir -p "$compare/reference" "$compare/libiconv"
mapfile -t files < <(find examples tests/data -name '*.xml' -type f | LC_ALL=C sort)
# Each tool loads the library of its own folder.
tools=("reference=$copy" "libiconv=$build")

for entry in "${tools[@]}"; do
  folder=${entry#*=}
  loads=$(LD_LIBRARY_PATH=$folder${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} ldd "$folder/kelprofile" 2>&1 || true)
  grep -q "libkelProfile\.so[.0-9]* => $folder/libkelProfile" <<<"$loads" ||
    fail "$(realpath --relative-to="$top" "$folder")/kelprofile does not load the library beside it"
done

# show F, then the write of its JSON for the families that have a writer;
# what each prints and its status go into OUT.* beside the saved file.
run_tool() { # folder of the tool and its library, file, output base
  local folder=$1 file=$2 out=$3 family status
  local tool=("env" "LD_LIBRARY_PATH=$folder${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" "$folder/kelprofile")
  mkdir -p "$(dirname "$out")"
  status=0
  "${tool[@]}" show --json "$file" >"$out.show" 2>"$out.show.err" || status=$?
  echo "$status" >>"$out.show.err"
  family=$(sed -n 's/^    "family": "\(.*\)",$/\1/p' "$out.show" | head -n 1)
  case "$family" in
    "conversion profiles" | "temporary options" | "customizations" | "web-player projects")
      status=0
      "${tool[@]}" show --json "$file" 2>/dev/null | "${tool[@]}" write - "$out.saved" >"$out.write" 2>&1 || status=$?
      echo "$status" >>"$out.write"
      ;;
  esac
}

differ=()
saved=0
for file in "${files[@]}"; do
  for entry in "${tools[@]}"; do
    run_tool "${entry#*=}" "$file" "$compare/${entry%%=*}/$file"
  done
  a=$compare/reference/$file
  b=$compare/libiconv/$file
  [ -f "$a.write" ] && saved=$((saved + 1))
  what=()
  cmp -s "$a.show" "$b.show" && cmp -s "$a.show.err" "$b.show.err" || what+=("show --json")
  if [ -f "$a.write" ] || [ -f "$b.write" ]; then
    cmp -s "$a.write" "$b.write" 2>/dev/null || what+=("write's messages or status")
    if [ -f "$a.saved" ] || [ -f "$b.saved" ]; then
      cmp -s "$a.saved" "$b.saved" 2>/dev/null || what+=("saved file")
    fi
  fi
  if [ ${#what[@]} -gt 0 ]; then
    differ+=("$file")
    say "DIFFERS: $file: $(printf '%s, ' "${what[@]}" | sed 's/, $//')"
    for suffix in show show.err write saved; do
      [ -f "$a.$suffix" ] || [ -f "$b.$suffix" ] || continue
      diff -u --label "reference/$file.$suffix" --label "libiconv/$file.$suffix" \
        "$a.$suffix" "$b.$suffix" 2>/dev/null | head -n 40 | show_log || true
    done
  fi
done
say "${#files[@]} files compared (${saved} of them also saved), ${#differ[@]} differ"
[ ${#differ[@]} -eq 0 ] || failed=1

say "outputs of both builds: $(realpath --relative-to="$top" "$compare")"
if [ "$failed" -eq 0 ]; then
  say "ok ($((SECONDS - started)) s)"
else
  say "FAILED ($((SECONDS - started)) s)"
fi
exit $failed
