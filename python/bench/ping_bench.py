"""Measures the Python package against the C++ library in one run:

- 1,000 pings issued at once from one event loop, against the same burst sent through the C++
  `Connection` directly (no Python in the path), both to one simulator; best of `--rounds`;
- the CPU an idle connection (command and notification links open, the loop waiting) costs this
  process, with the simulator in another process.

    PYTHONPATH=build/default/python python3 python/bench/ping_bench.py [--rounds 10] [--idle 20]
"""

import argparse
import asyncio
import subprocess
import sys
import time

import tessel
from tessel import _tessel


async def python_burst(commands: str, count: int, rounds: int) -> float:
    async with tessel.connect(commands) as server:
        best = float("inf")
        for _ in range(rounds):
            start = time.perf_counter()
            await asyncio.gather(*(server.ping() for _ in range(count)))
            best = min(best, time.perf_counter() - start)
        return best


async def idle_cpu(commands: str, notifications: str, seconds: float) -> float:
    async with tessel.connect(commands, notifications):
        await asyncio.sleep(1.0)  # past the start
        cpu, wall = time.process_time(), time.perf_counter()
        await asyncio.sleep(seconds)
        return (time.process_time() - cpu) / (time.perf_counter() - wall)


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--count", type=int, default=1000)
    parser.add_argument("--rounds", type=int, default=10)
    parser.add_argument("--idle", type=float, default=20.0)
    args = parser.parse_args()

    with tessel.Simulator(servers=1, clips=1) as sim:
        cpp = min(_tessel.ping_burst(sim.commands, args.count) for _ in range(args.rounds))
        py = asyncio.run(python_burst(sim.commands, args.count, args.rounds))
    print(f"{args.count} concurrent pings: C++ Connection {cpp * 1e3:.1f} ms "
          f"({args.count / cpp:,.0f}/s), Python {py * 1e3:.1f} ms ({args.count / py:,.0f}/s), "
          f"ratio {cpp / py:.2f}")

    server = subprocess.Popen(
        [sys.executable, "-c",
         "import sys, time, tessel\n"
         "sim = tessel.Simulator(servers=1, clips=1)\n"
         "print(sim.commands, sim.notifications, flush=True)\n"
         "sys.stdin.read()\n"],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        assert server.stdout is not None
        commands, notifications = server.stdout.readline().split()
        share = asyncio.run(idle_cpu(commands, notifications, args.idle))
    finally:
        server.communicate("")
    print(f"idle connection: {share * 100:.3f} % of a core over {args.idle:.0f} s")


if __name__ == "__main__":
    main()
