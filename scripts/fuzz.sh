#!/usr/bin/env bash
# Runs each fuzzer for five minutes (FUZZ_SECONDS to change it), not part of CI. An input that breaks a
# fuzzer is left in build-fuzz/<fuzzer>_artifacts/; copy it into the fuzzer's regression folder
# (tests/script/fuzz_regressions/ for the script fuzzer, tests/fuzz_regressions/<fuzzer>/ for the others),
# fix the fault, and the regression tests replay it from then on.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
command -v clang++ >/dev/null 2>&1 || { echo "The fuzzers need clang++ (apt-get install clang)" >&2; exit 1; }

seconds=${FUZZ_SECONDS:-300}
fuzz="$root/build-fuzz"
cmake -S "$root/fuzz" -B "$fuzz" -DCMAKE_CXX_COMPILER=clang++ >/dev/null
cmake --build "$fuzz" -j"$(nproc)"

failed=0
run() {
  local name=$1
  shift
  local seeds=()
  for dir in "$@"; do
    if [ -d "$dir" ]; then seeds+=("$dir"); fi
  done
  mkdir -p "$fuzz/${name}_corpus" "$fuzz/${name}_artifacts"
  echo "== $name: $seconds s"
  if ! "$fuzz/$name" "$fuzz/${name}_corpus" "${seeds[@]}" -max_total_time="$seconds" -detect_leaks=0 -timeout=60 \
      -rss_limit_mb=4096 -artifact_prefix="$fuzz/${name}_artifacts/" >"$fuzz/$name.log" 2>&1; then
    tail -n 40 "$fuzz/$name.log"
    echo "$name found a failing input: see $fuzz/${name}_artifacts/" >&2
    failed=1
  fi
}
run script_fuzzer "$root/tests/script/fuzz_regressions" "$root/tests/cli/cases"
run scene_fuzzer "$root/scenes" "$root/tests/cli/cases" "$root/tests/fuzz_regressions/scene_fuzzer"
run image_fuzzer "$root/tests/fuzz_regressions/image_fuzzer" "$root/build/stage/data/textures"
exit $failed
