#!/usr/bin/env bash
# Installs the Debian packages Qlex needs to build, run and test. Idempotent: when nothing is
# missing it touches nothing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config ccache
  libsdl1.2-dev libsdl-image1.2-dev libglew-dev libglu1-mesa-dev mesa-common-dev libgl1-mesa-dri
  libx11-dev libboost-dev libfreetype-dev fonts-dejavu-core
  libgtest-dev libgmock-dev libbenchmark-dev libbox2d-dev
  xvfb xauth xdotool xclip python3
  desktop-file-utils shared-mime-info xdg-utils libfile-mimeinfo-perl libglib2.0-bin
)

missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
  sudo=()
elif command -v sudo >/dev/null 2>&1; then
  sudo=(sudo)
else
  echo "Qlex needs these Debian packages; install them as root:" >&2
  echo "  apt-get install ${missing[*]}" >&2
  exit 1
fi

echo "Installing: ${missing[*]}"
"${sudo[@]}" apt-get update -q
DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
