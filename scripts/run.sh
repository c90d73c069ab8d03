#!/usr/bin/env bash
# Sets up the machine, builds Qlex, installs the runnable tree into QLEX_HOME (keeping the user's
# scenes and configuration) and starts the program there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

build="$root/build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)"

home="${QLEX_HOME:-$HOME/.local/share/qlex}"
mkdir -p "$home"
# Programs and our own data are replaced; files the user made or changed are kept.
cp -f "$build/stage/qlex" "$build/stage/qlex-cli" "$home/" 2>/dev/null || true
(cd "$build/stage" && find . -type f ! -name qlex ! -name qlex-cli) | while read -r f; do
  dest="$home/$f"
  mkdir -p "$(dirname "$dest")"
  case "$f" in
    ./scenes/*|./config*.cfg|./autoexec.cfg) [ -e "$dest" ] || cp "$build/stage/$f" "$dest" ;;
    *) cp -f "$build/stage/$f" "$dest" ;;
  esac
done
exec "$home/qlex" "$@"
