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

# The same tests once more, built with AddressSanitizer and UndefinedBehaviorSanitizer in a Debug build of
# their own: the first fault ends the test with its report. The benchmarks are left out. Floats converted
# to integers out of range are checked too (g++ leaves that out of "undefined"). The check of enum loads is
# off: the key numbering goes on past the last of SDL's keys for mouse buttons and joysticks, and every such
# key would count as a fault.
sanitized="$root/build-sanitize"
checks="address,undefined,float-cast-overflow"
sanitizers="-fsanitize=$checks -fno-sanitize=enum -fno-omit-frame-pointer -fno-sanitize-recover=all"
cmake -S "$root" -B "$sanitized" -DCMAKE_BUILD_TYPE=Debug -DQLEX_BUILD_BENCH=OFF \
  -DCMAKE_CXX_FLAGS="$sanitizers" -DCMAKE_C_FLAGS="$sanitizers" \
  -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=$checks" >/dev/null
cmake --build "$sanitized" -j"$(nproc)"
(
  cd "$sanitized"
  # The programs end with _exit, without static destructors, by design: what they hold then is no leak.
  export ASAN_OPTIONS="halt_on_error=1:detect_leaks=0"
  export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
  xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" \
    ctest --output-on-failure -j"$(nproc)" --timeout 900
)

# The script fuzzer: one minute of libFuzzer over the interpreter, where clang is installed. An input
# that breaks it is left in build-fuzz/artifacts/ and belongs in tests/script/fuzz_regressions/.
if command -v clang++ >/dev/null 2>&1; then
  fuzz="$root/build-fuzz"
  cmake -S "$root/fuzz" -B "$fuzz" -DCMAKE_CXX_COMPILER=clang++ >/dev/null
  cmake --build "$fuzz" -j"$(nproc)"
  mkdir -p "$fuzz/corpus" "$fuzz/artifacts"
  if ! "$fuzz/script_fuzzer" "$fuzz/corpus" "$root/tests/script/fuzz_regressions" "$root/tests/cli/cases" \
      -max_total_time=60 -detect_leaks=0 -timeout=60 -artifact_prefix="$fuzz/artifacts/" >"$fuzz/fuzz.log" 2>&1; then
    tail -n 60 "$fuzz/fuzz.log"
    echo "The script fuzzer found a failing input: see $fuzz/artifacts/" >&2
    exit 1
  fi
fi

# The scene fuzzer: half a minute of any text loaded as a scene, stepped, saved, undone and redone, from our
# sample scenes and the scene files of the cli cases.
if [ -x "${fuzz:-}/scene_fuzzer" ]; then
  mkdir -p "$fuzz/scene_corpus" "$fuzz/scene_artifacts"
  if ! "$fuzz/scene_fuzzer" "$fuzz/scene_corpus" "$root/scenes" "$root/tests/cli/cases" \
      -max_total_time=30 -detect_leaks=0 -timeout=60 -rss_limit_mb=4096 \
      -artifact_prefix="$fuzz/scene_artifacts/" >"$fuzz/scene_fuzz.log" 2>&1; then
    tail -n 60 "$fuzz/scene_fuzz.log"
    echo "The scene fuzzer found a failing input: see $fuzz/scene_artifacts/" >&2
    exit 1
  fi
fi
