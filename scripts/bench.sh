#!/usr/bin/env bash
# Builds the benchmarks in release mode, runs them all and prints the library/baseline ratios as a
# Markdown table, with the target each ratio is held to.
#
#   scripts/bench.sh                  build, run, print
#   scripts/bench.sh --table-only     print the table of the last run again
#
# Environment: KORVO_BENCH_REPETITIONS (default 5) repetitions of each benchmark, interleaved at
# random so that a burst of load elsewhere on the machine spreads over both sides of a ratio;
# medians are compared. KORVO_BENCH_OUT (default build/release/bench-results) keeps the JSON.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

repetitions=${KORVO_BENCH_REPETITIONS:-5}
out=${KORVO_BENCH_OUT:-build/release/bench-results}
programs=(serialization_bench command_bench connection_bench notification_bench idle_bench mirror_bench)

if [[ "${1:-}" != --table-only ]]; then
    cmake --preset release >/dev/null
    cmake --build --preset release -j "$(nproc)" --target "${programs[@]}" >&2
    mkdir -p "$out"
    for program in "${programs[@]}"; do
        args=(--benchmark_out="$out/$program.json" --benchmark_out_format=json)
        # The idle program sleeps five seconds per figure, the mirror's waits for servers: once
        # is enough.
        if [[ $program != idle_bench && $program != mirror_bench ]]; then
            args+=(--benchmark_repetitions="$repetitions" --benchmark_report_aggregates_only=true
                --benchmark_enable_random_interleaving=true)
        fi
        echo "== $program" >&2
        "build/release/bench/$program" "${args[@]}" >&2
    done
fi

python3 - "$out" <<'PYTHON'
import json, os, re, sys

out = sys.argv[1]
results = {}  # "<family>/<case>" -> {"Library": {...}, "Thrift": {...}, ...}
context = None
for name in sorted(os.listdir(out)):
    if not name.endswith(".json"):
        continue
    with open(os.path.join(out, name)) as f:
        data = json.load(f)
    context = context or data["context"]
    for run in data["benchmarks"]:
        if run.get("run_type") == "aggregate" and run.get("aggregate_name") != "median":
            continue
        if run.get("error_occurred"):
            print(f"error in {run['name']}: {run.get('error_message')}", file=sys.stderr)
            continue
        parts = [p for p in run["run_name"].split("/")
                 if not re.match(r"(real_time|manual_time|iterations:\d+|repeats:\d+)$", p)]
        results.setdefault("/".join(parts[:-1]), {})[parts[-1]] = run

def value(key, impl, metric):
    run = results.get(key, {}).get(impl)
    if run is None or metric not in run:
        return None
    return float(run[metric])

def ratio(a, b):
    return None if a is None or b is None or b == 0 else a / b

def fmt(x, digits=2):
    return "n/a" if x is None else f"{x:.{digits}f}"

rows = []  # figure, library, baseline, ratio, target, verdict
def row(figure, lib, base, r, target=None, ok=None, digits=2):
    verdict = "" if ok is None else ("met" if ok else "NOT MET")
    rows.append((figure, fmt(lib, digits), fmt(base, digits), fmt(r), target or "", verdict))

for key in sorted(k for k in results if k.split("/")[0] in ("Encode", "Decode")):
    # CPU time: these run on one thread, and the wall clock also counts the time other
    # processes held the core.
    lib, thrift, copy = (value(key, i, "cpu_time") for i in ("Library", "Thrift", "Memcpy"))
    row(f"{key} CPU time (ns): library / Thrift", lib, thrift, ratio(lib, thrift), digits=0)
    row(f"{key} CPU time (ns): library / memcpy", lib, copy, ratio(lib, copy), digits=0)
    la, ta = value(key, "Library", "allocs_per_record"), value(key, "Thrift", "allocs_per_record")
    row(f"{key} allocations per record: library / Thrift", la, ta, ratio(la, ta), digits=1)

for key in sorted(k for k in results if k.split("/")[0] in ("RoundTrip", "RoundTripSparse")):
    for metric in ("p50_us", "p99_us"):
        lib, zmq = value(key, "Library", metric), value(key, "Zmq", metric)
        r = ratio(lib, zmq)
        held = metric == "p50_us" and key.startswith("RoundTrip/")
        target, ok = ("<= 1.30", r is not None and r <= 1.3) if held else (None, None)
        row(f"{key} {metric}: library / ZeroMQ", lib, zmq, r, target, ok)

# Both clients taking turns in one benchmark: the same load falls on each side of the ratio.
for key in sorted(k for k in results if k.startswith("RoundTripPaired/")):
    for metric in ("p50_us", "p99_us"):
        lib, zmq = (value(key, "Both", side + "_" + metric) for side in ("Library", "Zmq"))
        r = ratio(lib, zmq)
        target, ok = ("<= 1.30", r is not None and r <= 1.3) if metric == "p50_us" else (None, None)
        row(f"{key} (taking turns) {metric}: library / ZeroMQ", lib, zmq, r, target, ok)

# Connection: typed calls completed by callbacks, against the bare DEALER in the same run.
for key in sorted(k for k in results if k.startswith("ConnectionRoundTripPaired/")):
    lib, zmq = (value(key, "Both", side + "_p50_us") for side in ("Library", "Zmq"))
    r = ratio(lib, zmq)
    row(f"{key} (taking turns) p50_us: Connection / ZeroMQ", lib, zmq, r, "<= 1.30",
        r is not None and r <= 1.3)
for key in sorted(k for k in results if k.startswith("ConnectionPipelined/")):
    lib, zmq = value(key, "Library", "items_per_second"), value(key, "Zmq", "items_per_second")
    r = ratio(lib, zmq)
    row(f"{key} in flight, requests/s: Connection with callbacks / ZeroMQ", lib, zmq, r,
        ">= 0.70", r is not None and r >= 0.7, digits=0)
for key in sorted(k for k in results if k.startswith("ConnectionDialLag/")):
    reply = value(key, "Library", "reply_us")
    for metric in ("lag_p50_us", "lag_p99_us"):
        lag = value(key, "Library", metric)
        ok = lag is not None and reply is not None and lag <= reply + 1000
        row(f"{key} {metric}: dial lane lag / server reply time (us)", lag, reply,
            ratio(lag, reply), "<= reply + 1 ms", ok, digits=0)

def inflight(key):
    return (key.split("/")[1], int(key.split("/")[2]))

for key in sorted((k for k in results if k.startswith("Pipelined/")), key=inflight):
    lib, zmq = value(key, "Library", "items_per_second"), value(key, "Zmq", "items_per_second")
    r = ratio(lib, zmq)
    row(f"{key} in flight, requests/s: library / ZeroMQ", lib, zmq, r, ">= 0.70",
        r is not None and r >= 0.7, digits=0)
    threads = value(key, "ZmqThreads", "items_per_second")
    row(f"{key} in flight, requests/s: library / ZeroMQ with a socket per thread", lib, threads,
        ratio(lib, threads), digits=0)

for key in sorted(k for k in results if k.startswith("Notify/")):
    lib, zmq = value(key, "Library", "items_per_second"), value(key, "Zmq", "items_per_second")
    r = ratio(lib, zmq)
    row(f"{key} notifications/s: library / ZeroMQ", lib, zmq, r, ">= 0.80",
        r is not None and r >= 0.8, digits=0)

# What each item cost the whole process (the peer included, alike on both sides): where a ratio
# misses its target, these show whether CPU, thread switches or allocations stand in the way.
def family_order(key):
    parts = key.split("/")
    count = int(parts[2]) if len(parts) > 2 and parts[2].isdigit() else 0
    return (("RoundTrip", "Pipelined", "Notify").index(parts[0]), parts[1], count)

for key in sorted((k for k in results if k.split("/")[0] in ("RoundTrip", "Pipelined", "Notify")),
                  key=family_order):
    for metric, label in (("cpu_us_per_item", "CPU us"), ("switches_per_item", "context switches"),
                          ("allocs_per_item", "allocations")):
        lib, base = value(key, "Library", metric), value(key, "Zmq", metric)
        if lib is not None:
            row(f"{key} {label} per item: library / ZeroMQ", lib, base, ratio(lib, base))

# The mirror: memory per clip against plain clips, snapshot time, convergence after faults.
for clips, run in sorted(results.get("MemoryPerClip", {}).items()):
    mirrored, plain = float(run["mirrored_bytes"]), float(run["clip_bytes"])
    r = ratio(mirrored, plain)
    row(f"Mirror: heap bytes per clip ({clips} clips): mirrored / plain Clip", mirrored, plain, r,
        "<= 1.50", r is not None and r <= 1.5, digits=0)
for clips, run in sorted(results.get("SnapshotTime", {}).items(), key=lambda kv: int(kv[0])):
    ns = float(run["real_time"])
    row(f"Mirror: snapshot of {clips} clips (ns)", ns, None, None, "< 1000 ns", ns < 1000, digits=0)
for clips, run in sorted(results.get("Convergence", {}).items(), key=lambda kv: int(kv[0])):
    for metric, target, limit in (("startup_s", None, None),
                                  ("silent_channel_s", "<= 2 s", 2.0),
                                  ("silent_clip_s", "<= 5 s (one catalogue check)", 5.0),
                                  ("restart_channels_s", "<= 1 s", 1.0),
                                  ("restart_all_s", None, None)):
        if metric in run:
            v = float(run[metric])
            row(f"Mirror of {clips} clips: {metric}", v, None, None, target,
                None if limit is None else v <= limit)

for key in sorted(k for k in results if k.startswith("Idle/")):
    cpu, base = value(key, "Library", "cpu_percent"), value(key, "Zmq", "cpu_percent")
    row(f"{key} idle CPU (% of a core)", cpu, base, ratio(cpu, base), "< 0.5 %",
        cpu is not None and cpu < 0.5, digits=3)
    stop, closing = value(key, "Library", "stop_ms"), value(key, "Zmq", "stop_ms")
    what = "Stop()" if "Command" in key else "destructor (stops it)"
    row(f"{key} {what} (ms)", stop, closing, ratio(stop, closing), "< 100 ms",
        stop is not None and stop < 100, digits=3)
    if "Command" in key:
        row(f"{key} destructor after Stop() (ms)", value(key, "Library", "destroy_ms"), None,
            None, digits=3)

if context:
    print(f"Machine: {context.get('host_name')}, {context.get('num_cpus')} CPUs at "
          f"{context.get('mhz_per_cpu')} MHz, load average {context.get('load_avg')}, "
          f"{context.get('date')}")
    print()
print("| figure | library | baseline | ratio | target | |")
print("|---|---:|---:|---:|---|---|")
for r in rows:
    print("| " + " | ".join(r) + " |")
PYTHON
