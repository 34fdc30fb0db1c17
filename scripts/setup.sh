#!/usr/bin/env bash
# Installs what building and testing kelProfile needs, from Debian's packages,
# when it is missing. Runs as root, or through sudo.
set -euo pipefail

# nlohmann-json3-dev: the JSON output of kelprofile show --json;
# go-md2man: kelprofile's man page, made from its manual (docs/tool.md).
packages=(cmake ninja-build g++ pkg-config binutils libxml2-dev nlohmann-json3-dev go-md2man)
for option in "$@"; do
  case "$option" in
    # GoogleTest, the DVD tools the authoring test drives, the lxml the
    # benchmark compares with, jq for the manual's examples, and groff to
    # render the man page.
    --tests) packages+=(libgtest-dev dvdauthor ffmpeg python3-lxml jq groff-base) ;;
    # clang with libFuzzer and the sanitizer runtimes, for scripts/fuzz.sh.
    --fuzz) packages+=(clang libclang-rt-14-dev) ;;
    # LLVM's tools read the Mach-O files of the macOS cross-build
    # (scripts/cross.sh).
    --cross) packages+=(llvm) ;;
    # npm, for what comes from the npm registry (Zig, GNU libiconv's
    # sources), only where there is none: the development machines have npm
    # with their Node.js, and Debian's npm would fight with that one.
    --npm) command -v npm >/dev/null || packages+=(npm) ;;
  esac
done

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}"
# With the i386 architecture added (scripts/i386.sh), one index out of sync
# on the mirror makes the update fail while every other index is fresh.
$sudo apt-get update -q || echo "apt-get update reported errors; going on with the indexes it has"
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
