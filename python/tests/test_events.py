"""Notifications on the loop's thread, in order, through iterators and callbacks; bounded
queues; and an interpreter that exits with connections still open."""

import asyncio
import os
import subprocess
import sys
import textwrap
import threading

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


@pytest.mark.parametrize("ending", ["open connections", "collected connections", "closed loop"])
def test_the_interpreter_exits_with_connections_open(ending):
    script = textwrap.dedent(f"""
        import asyncio, gc, tessel
        sim = tessel.Simulator(servers=1, clips=2)
        sim.faults(silent=True)
        keep = []
        async def main():
            for _ in range(3):
                server = await tessel.connect(sim.commands, sim.notifications)
                keep.append(asyncio.ensure_future(server.ping(timeout=60)))
                keep.append(server)
            await asyncio.sleep(0.05)
            if {ending!r} == "collected connections":
                keep.clear()
                gc.collect()
        if {ending!r} == "closed loop":
            asyncio.run(main())
        else:
            loop = asyncio.new_event_loop()
            loop.run_until_complete(main())
        print("done", flush=True)
    """)
    result = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                            timeout=60, env=dict(os.environ))
    assert result.returncode == 0, result.stderr
    assert result.stdout.strip() == "done"
