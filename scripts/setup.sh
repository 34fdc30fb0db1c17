#!/usr/bin/env bash
# Installs what building and testing kelProfile needs, from Debian's packages,
# when it is missing. Runs as root, or through sudo.
set -euo pipefail

# nlohmann-json3-dev: the JSON output of kelprofile show --json.
packages=(cmake ninja-build g++ pkg-config binutils libxml2-dev nlohmann-json3-dev)
if [ "${1:-}" = "--tests" ]; then
  # GoogleTest, Google Benchmark, and the DVD tools the authoring test drives.
  packages+=(libgtest-dev libbenchmark-dev dvdauthor ffmpeg)
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
