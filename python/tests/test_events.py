"""Notifications on the loop's thread, in order, through iterators and callbacks; bounded
queues; and an interpreter that exits with connections still open."""

import asyncio
import os
import subprocess
import sys
import textwrap
import threading
import time

import pytest

import tessel

PLAYER = "player:1:0"


async def test_notifications_reach_iterators_and_callbacks_in_order_on_the_loop(tessel_simulator):
    sim = tessel_simulator
    async with tessel.connect(sim.commands, sim.notifications) as server:
        assert sim.wait_for_subscriber()
        clips = server.notifications("ClipCreationFinished")
        everything = server.notifications()
        seen, threads = [], set()

        def faulty(event):
            raise RuntimeError("a callback that fails")

        def record(event):
            threads.add(threading.get_ident())
            seen.append(event)

        errors = []
        asyncio.get_running_loop().set_exception_handler(lambda loop, context: errors.append(context))
        server.on_notification(faulty)
        remove = server.on_notification(record, "ClipCommand")

        template = (await server.get_clips()).clips[0].to_dict()
        names = [f"made-{i}" for i in range(5)]
        for name in names:
            clip = dict(template, um_id="", name=name)
            await server.create_clips(clips=[{"source_id": template["um_id"], "clip": clip}])

        created = [await asyncio.wait_for(clips.__anext__(), 10) for _ in names]
        assert [event.clip.name for event in created] == names
        assert all(event.family == "ClipCommand" for event in created)
        assert [e.clip.name for e in seen if e.type_name == "ClipCreationFinished"] == names
        assert threads == {threading.get_ident()}
        assert len(errors) >= len(names)  # the faulty callback was reported each time
        first = await asyncio.wait_for(everything.__anext__(), 10)
        assert first.type_name in tessel.NOTIFICATION_TYPES

        remove()
        clips.close()
        assert [e async for e in clips] == created[len(created):]  # ended, nothing left


async def test_a_full_stream_drops_its_oldest_and_counts_them(tessel_simulator):
    sim = tessel_simulator
    async with tessel.connect(sim.commands, sim.notifications) as server:
        assert sim.wait_for_subscriber()
        stream = server.notifications("ChannelStatus", maxsize=2)
        clip = (await server.get_clips()).clips[0]
        for _ in range(5):
            await server.load_clips(players_parameters={PLAYER: {"clip": clip.um_id}})
        last = server.notifications("ChannelStatus")
        await server.go_idle(players=[PLAYER])
        marker = await asyncio.wait_for(last.__anext__(), 10)
        while marker.state.loaded_clip_um_id:
            marker = await asyncio.wait_for(last.__anext__(), 10)
        kept = [await stream.__anext__(), await stream.__anext__()]
        assert stream.dropped >= 4
        assert kept[-1] == marker  # the newest are kept
        assert server.dropped_notifications == 0


@pytest.mark.tessel_simulator(servers=1, players=8)
async def test_notifications_beyond_the_byte_bound_are_dropped_and_counted(tessel_simulator):
    sim = tessel_simulator
    async with tessel.connect(sim.commands, sim.notifications, notification_bytes=1) as server:
        assert sim.wait_for_subscriber()
        stream = server.notifications("PlayerStateChanged")
        clip = (await server.get_clips()).clips[0]
        players = [f"player:1:{n}" for n in range(8)]
        await server.load_clips(players_parameters={p: {"clip": clip.um_id} for p in players})
        # The loop is blocked (no await) while the eight notifications arrive.
        deadline = time.monotonic() + 30
        while server.dropped_notifications == 0 and time.monotonic() < deadline:
            time.sleep(0.01)
        received = 0
        while received + server.dropped_notifications < len(players):
            await asyncio.wait_for(stream.__anext__(), 10)
            received += 1
        assert server.dropped_notifications >= 1
        assert not stream._queue


@pytest.mark.parametrize("ending", ["loop still running", "loop stopped", "collected"])
def test_the_interpreter_exits_with_connections_open(ending):
    # Three connections with calls pending and notifications flowing. "loop still running": the
    # loop goes on in a daemon thread while the interpreter shuts down, so the library keeps
    # handing work to it; "loop stopped": nothing drains any more; "collected": the connections
    # were dropped without being closed.
    script = textwrap.dedent(f"""
        import asyncio, gc, threading, tessel
        ending = {ending!r}
        sim = tessel.Simulator(servers=1, clips=2)
        ready = threading.Event()
        keep = []
        async def ping_forever(server):
            while True:
                await server.ping()
        async def main():
            for _ in range(3):
                server = await tessel.connect(sim.commands, sim.notifications)
                server.on_notification(keep.append)
                keep.append(server)
                keep.extend(asyncio.ensure_future(ping_forever(server)) for _ in range(10))
            sim.wait_for_subscriber()
            await keep[0].start_recording(recorders=["recorder:1:4", "recorder:1:5"])
            if ending == "collected":
                keep.clear()
                gc.collect()
            ready.set()
            await asyncio.sleep(0.2 if ending != "loop still running" else 3600)
        if ending == "loop still running":
            threading.Thread(target=lambda: asyncio.run(main()), daemon=True).start()
            ready.wait(30)
            threading.Event().wait(0.3)
        else:
            asyncio.new_event_loop().run_until_complete(main())
        print("done", flush=True)
    """)
    result = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                            timeout=60, env=dict(os.environ))
    assert result.returncode == 0, result.stderr
    assert result.stdout.strip() == "done"
