#!/usr/bin/env bash
# Builds the benchmarks (Release) and prints the median time per step of every case.
# Arguments go to the benchmark program, e.g. --benchmark_filter=Pyramid.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build"
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" --target physics_bench -j"$(nproc)" >/dev/null

json=$(mktemp)
trap 'rm -f "$json"' EXIT
"$build/bench/physics_bench" --benchmark_repetitions=5 --benchmark_report_aggregates_only=true \
  --benchmark_out="$json" --benchmark_out_format=json "$@" >/dev/null 2>&1

python3 - "$json" <<'PY'
import json, sys
data = json.load(open(sys.argv[1]))
scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
rows = [b for b in data["benchmarks"] if b.get("aggregate_name") == "median"]
print(f"{'case':<28}{'ms/step (wall)':>16}{'ms/step (cpu)':>15}{'contacts':>10}{'allocs/step':>13}{'us/particle':>13}")
for b in rows:
    f = scale[b["time_unit"]]
    name = b["run_name"]
    contacts = f"{b['contacts']:.0f}" if "contacts" in b else "-"
    allocs = f"{b['allocs/step']:.2f}" if "allocs/step" in b else "-"
    per = f"{b['cpu_time'] * f * 1000 / b['particles']:.3f}" if "particles" in b else "-"
    print(f"{name:<28}{b['real_time'] * f:>16.3f}{b['cpu_time'] * f:>15.3f}{contacts:>10}{allocs:>13}{per:>13}")
print("(Polygon_Construction rows are ms per polygon.)")
PY

# Our pyramids against Box2D 2.4's, in one run: the ratio holds whatever else the machine is doing.
if [ -x "$build/bench/peer_bench" ] || cmake --build "$build" --target peer_bench -j"$(nproc)" >/dev/null 2>&1; then
  peer=$(mktemp)
  "$build/bench/peer_bench" --benchmark_repetitions=3 --benchmark_report_aggregates_only=true \
    --benchmark_out="$peer" --benchmark_out_format=json >/dev/null 2>&1
  python3 - "$peer" <<'PY'
import json, sys
data = json.load(open(sys.argv[1]))
scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
cpu = {}
for b in data["benchmarks"]:
    if b.get("aggregate_name") == "median":
        cpu[b["run_name"]] = b["cpu_time"] * scale[b["time_unit"]]
print()
print(f"{'pyramid rows':<14}{'boxes':>7}{'ours ms':>10}{'Box2D@30':>10}{'ratio':>8}{'Box2D@8':>10}{'ratio':>8}")
for rows in (20, 50, 100):
    ours = cpu.get(f"Pyramid_Qlex/{rows}")
    b30 = cpu.get(f"Pyramid_Box2D/{rows}/30")
    b8 = cpu.get(f"Pyramid_Box2D/{rows}/8")
    if ours is None or b30 is None or b8 is None:
        continue
    print(f"{rows:<14}{rows * (rows + 1) // 2:>7}{ours:>10.3f}{b30:>10.3f}{ours / b30:>8.2f}{b8:>10.3f}{ours / b8:>8.2f}")
print("(CPU time per step; ratio is ours over Box2D's at 30 and at 8 velocity iterations.)")
PY
  rm -f "$peer"
fi
