#!/usr/bin/env bash
# Sets up the machine, builds Qlex and runs every test. Tests that need a window run under Xvfb
# with Mesa's software OpenGL. The server must not reset when its last client leaves: during a reset it
# refuses connections, and a test that opens a window just then would fail.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

build="$root/build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j"$(nproc)"

export LIBGL_ALWAYS_SOFTWARE=1
cd "$build"
xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" \
  ctest --output-on-failure -j"$(nproc)" --timeout 600
