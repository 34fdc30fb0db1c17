#!/usr/bin/env bash
# Installs what building and testing kelProfile needs, from Debian's packages,
# when it is missing. Runs as root, or through sudo.
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config binutils libxml2-dev)
if [ "${1:-}" = "--tests" ]; then
  # GoogleTest, the DVD tools the authoring test drives, and the lxml the
  # benchmark compares with.
  packages+=(libgtest-dev dvdauthor ffmpeg python3-lxml)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -q
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
