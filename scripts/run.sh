#!/usr/bin/env bash
# Sets up the machine, builds Qlex, installs the runnable tree into QLEX_HOME (keeping the user's
# scenes and configuration), makes it known to the desktop (menu entry, icon, scene file type) and starts
# the program there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

build="$root/build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)"

stage="$build/stage"
home="${QLEX_HOME:-$HOME/.local/share/qlex}"
mkdir -p "$home/scenes/qlexlets"
# Only what the build stages is installed; anything a run left in the staged tree (logs, configuration,
# autosaved scenes) stays there. Programs, icon and our data are replaced on every install.
for program in qlex qlex-cli; do
  if [ -f "$stage/$program" ]; then
    cp -f "$stage/$program" "$home/$program.new" && mv -f "$home/$program.new" "$home/$program"
  fi
done
cp -f "$stage/Qlex.bmp" "$home/"
[ -d "$stage/data" ] && cp -rf "$stage/data" "$home/"
# Sample scenes arrive once and are then the user's; the program's own scenes ("_AUTOSAVE.qlx" and the
# like) are never taken from the staged tree.
(cd "$stage" && find scenes -type f ! -name '_*') | while IFS= read -r f; do
  [ -e "$home/$f" ] || { mkdir -p "$home/$(dirname "$f")" && cp "$stage/$f" "$home/$f"; }
done
# The program runs without the desktop's entry, so a failure here is reported and passed by.
"$root/scripts/install-desktop.sh" "$stage" "$home/qlex" ||
  echo "run.sh: Qlex could not be added to the desktop's menu; it starts all the same" >&2
exec "$home/qlex" "$@"
