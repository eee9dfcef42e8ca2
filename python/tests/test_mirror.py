"""The mirror on the loop: its changes in order, snapshots that agree with them, and the sync
state of a server that leaves the network and comes back."""

import asyncio
import threading

import pytest

import tessel

PLAYER = "player:1:0"


async def next_event(stream, matches, timeout=20):
    """The next event of `stream` for which `matches` holds; those before it are returned too."""
    seen = []
    while True:
        event = await asyncio.wait_for(stream.__anext__(), timeout)
        seen.append(event)
        if matches(event):
            return seen


async def test_changes_arrive_in_order_on_the_loop_and_the_snapshot_agrees(tessel_simulator):
    sim = tessel_simulator
    async with tessel.connect(sim.commands, sim.notifications) as server, \
            server.mirror() as mirror:
        assert await mirror.wait_live(20)
        players = mirror.events("PlayerChanged")
        threads = set()
        mirror.events().close()  # a closed stream is left alone by later changes

        before = mirror.snapshot()
        clip = next(iter(before.clips()))
        assert before.clip(clip.um_id) == clip and before.clip("no such clip") is None
        assert before.clip_count == sim.clip_count == len(before.clip_ids())
        assert set(before.sync_states.values()) == {"Live"}
        assert before.players[PLAYER].loaded_clip_um_id != clip.um_id

        await server.load_clips(players_parameters={PLAYER: {"clip": clip.um_id}})
        await server.play(players=[PLAYER], speed_num=1, speed_den=2)

        def mine(event):
            threads.add(threading.get_ident())
            return event.key == PLAYER

        loaded = await next_event(players, lambda e: mine(e) and
                                  e.after.loaded_clip_um_id == clip.um_id)
        playing = await next_event(players, lambda e: mine(e) and
                                   e.after.play_mode != loaded[-1].after.play_mode)
        assert threads == {threading.get_ident()}
        change = playing[-1]
        assert (change.type_name, change.source, change.change) == ("PlayerChanged", 0, "Updated")
        assert change.before.play_mode == loaded[-1].after.play_mode  # nothing between them
        assert change.after.loaded_clip_um_id == clip.um_id

        after = mirror.snapshot()
        assert after.players[PLAYER].play_mode == change.after.play_mode
        assert after.players[PLAYER].loaded_clip_um_id == clip.um_id
        assert before.players[PLAYER].loaded_clip_um_id != clip.um_id  # a snapshot stays put
        with pytest.raises((TypeError, AttributeError)):
            after.players[PLAYER] = None
        assert mirror.dropped_events == 0
        assert mirror.statistics()["notifications_applied"] >= 2


@pytest.mark.tessel_simulator(servers=2)
async def test_a_server_off_the_network_goes_lost_and_comes_back_live(tessel_simulator):
    sim = tessel_simulator
    async with tessel.mirror([(sim.commands, sim.notifications)]) as mirror:
        assert await mirror.wait_live(20)
        states = mirror.events("SyncStateChanged")
        assert sim.wait_for_subscriber()

        assert sim.drop_off_network(2)
        lost = await next_event(states, lambda e: e.server_id == 2 and e.after == "Lost")
        assert lost[-1].before == "Live"
        snapshot = mirror.snapshot()
        assert snapshot[0].sync_states == {1: "Live", 2: "Lost"}
        assert mirror.sync_states()[(0, 2)] == "Lost"

        assert sim.return_to_network(2)
        await next_event(states, lambda e: e.server_id == 2 and e.after == "Live")
        assert mirror.snapshot().sync_states[2] == "Live"
        assert await mirror.wait_live(20)

    remaining = [e async for e in states]  # closing the mirror ends its streams
    assert all(e.type_name == "SyncStateChanged" for e in remaining)
    with pytest.raises(RuntimeError):
        mirror.snapshot()
