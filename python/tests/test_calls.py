"""Calls: every command of the table through `call` and its named method, every outcome as its
exception, many calls at once from one loop, parts, cancellation."""

import asyncio
import json

import pytest

import tessel
from tessel._schema import COMMANDS

PLAYER, RECORDER = "player:1:0", "recorder:1:4"


def arguments(clip):
    """Parameters each command accepts; `clip` is a clip of the simulator (a Record)."""
    boundary = {"type": 0}
    return {
        "PlayCommand": dict(players=[PLAYER], speed_num=1, speed_den=2),
        "LiveCommand": dict(players={PLAYER: RECORDER}),
        "ChainCommand": dict(players={PLAYER: clip.um_id}, in_boundary=boundary),
        "DialCommand": dict(players=[PLAYER], velocity=3),
        "StepCommand": dict(players=[PLAYER], field_count=2),
        "SyncCommand": dict(source_player=PLAYER, players=["player:1:1"]),
        "LoadClipsCommand": dict(players_parameters={PLAYER: {"clip": clip.um_id}}),
        "LoadSequencesCommand": dict(players_parameters={PLAYER: {"sequence": "none"}}),
        "SetLoadBoundariesCommand": dict(players_parameters={PLAYER: {}}),
        "GoIdleCommand": dict(players=[PLAYER], set_black_screen=True),
        "StartRecordingCommand": dict(recorders=[RECORDER]),
        "StopRecordingCommand": dict(recorders=[RECORDER]),
        "SetMultiviewerDataCommand": dict(players_data_overrides={PLAYER: {"player_guid": PLAYER}}),
        "GetServersCommand": dict(server_range=0),
        "GetPlaylistsCommand": dict(element_mode=0, id_filter=None),
        "DeleteClipsCommand": dict(clips=["no-such-clip"]),
        "CreateClipsCommand": dict(clips=[{"source_id": "src", "clip": clip}]),
        "UpdateClipsCommand": dict(clips=[{"old_clip": clip, "new_clip": clip}]),
        "DeleteAnglesGroupCommand": dict(group_guid="no-such-group"),
        "UpdateAnglesGroupCommand": dict(group_guid="no-such-group", primary_angle=clip.um_id),
        "CreateAnglesGroupCommand": dict(creation_params={"clips": []}),
        "CreatePlaylistsCommand": dict(playlists=[]),
        "DeletePlaylistsCommand": dict(playlists=["no-such-playlist"]),
        "UpdatePlaylistsCommand": dict(params=[]),
    }


async def reply_or_failure(call):
    try:
        return await call
    except tessel.ServerFailure as failure:
        return failure.reply


@pytest.mark.parametrize("command", tessel.COMMAND_NAMES)
async def test_every_command_is_answered_through_call_and_its_method(tessel_simulator, command):
    async with tessel.connect(tessel_simulator.commands) as server:
        clip = (await server.get_clips()).clips[0]
        fields = arguments(clip).get(command, {})
        expected = COMMANDS[command].reply
        method = getattr(server, COMMANDS[command].method)
        for reply in [await reply_or_failure(server.call(command, **fields)),
                      await reply_or_failure(method(**fields))]:
            assert reply.type_name == expected
            # The record and its JSON agree, and the JSON is the library's own (camelCase).
            text = json.loads(reply.to_json())
            assert text["type"] == expected
            assert set(reply.to_dict()) == {tessel._schema.FROM_JSON[k] for k in text
                                            if k != "type"}
            with pytest.raises(AttributeError):
                reply.command_guid = "x"


@pytest.mark.tessel_simulator(servers=1, clips=5)
async def test_each_outcome_raises_its_own_exception(tessel_simulator):
    sim = tessel_simulator
    async with tessel.connect(sim.commands) as server:
        with pytest.raises(tessel.ServerFailure) as failure:
            await server.play(players=[PLAYER])  # nothing loaded
        assert (failure.value.code, failure.value.reason) == (1, 3)
        assert failure.value.reply.results[0].channel_guid == PLAYER

        with pytest.raises(ValueError):
            await server.play(players=[PLAYER], speed_num="fast")
        with pytest.raises(ValueError):
            await server.call("NoSuchCommand")
        with pytest.raises(ValueError):  # only dial has a latest-value lane
            await server.play(players=[PLAYER], latest=True)
        with pytest.raises(tessel.ServerFailure):
            await server.dial(players=[PLAYER], velocity=2, latest=True)

        sim.faults(malformed_fraction=1.0)
        with pytest.raises(tessel.BadReply):
            await server.ping()

        sim.faults(silent=True)
        with pytest.raises(tessel.TimedOut):
            await server.ping(timeout=0.2)

        # Ended by closing the connection while it waits.
        pending = asyncio.ensure_future(server.ping(timeout=30))
        await asyncio.sleep(0)
        await server.close()
        with pytest.raises(tessel.Cancelled):
            await pending
        with pytest.raises(RuntimeError):
            await server.ping()

    sim.faults(reply_delay=30)
    async with tessel.connect(sim.commands) as server:
        pending = asyncio.ensure_future(server.ping(timeout=60))
        await asyncio.wait_for(_until(lambda: sim.statistics["commands_received"] > 0), 30)
        sim.stop()
        with pytest.raises(tessel.LinkLost):
            await asyncio.wait_for(pending, 30)
        with pytest.raises(tessel.NotSent):
            await server.ping()


async def _until(condition):
    while not condition():
        await asyncio.sleep(0.01)


async def test_a_server_that_is_not_there_is_reported_at_connect():
    with tessel.Simulator(servers=1, clips=1) as sim:
        endpoint = sim.commands
    with pytest.raises(tessel.TimedOut):
        await tessel.connect(endpoint, time_limit=0.3)
    with pytest.raises(ValueError):
        await tessel.connect("not an endpoint")


async def test_a_thousand_concurrent_calls_from_one_loop_all_end(tessel_simulator):
    async with tessel.connect(tessel_simulator.commands) as server:
        replies = await asyncio.gather(*(server.ping(command_guid=f"ping-{i}")
                                         for i in range(1000)))
    assert [reply.command_guid for reply in replies] == [f"ping-{i}" for i in range(1000)]


@pytest.mark.tessel_simulator(servers=1, clips=25, part_size=10)
async def test_a_listing_is_joined_by_call_and_streamed_part_by_part(tessel_simulator):
    async with tessel.connect(tessel_simulator.commands) as server:
        joined = await server.get_clips()
        parts = [part async for part in server.stream("GetClipsCommand")]
    assert [len(part.clips) for part in parts] == [10, 10, 5]
    assert [c.um_id for p in parts for c in p.clips] == [c.um_id for c in joined.clips]


async def test_cancelling_the_awaiting_task_cancels_the_call(tessel_simulator):
    tessel_simulator.faults(silent=True)
    async with tessel.connect(tessel_simulator.commands) as server:
        task = asyncio.ensure_future(server.ping(timeout=60))
        await asyncio.sleep(0.05)
        task.cancel()
        with pytest.raises(asyncio.CancelledError):
            await task
        tessel_simulator.faults()
        assert (await server.ping()).type_name == "SuccessReply"
        assert not server._calls


def test_the_synchronous_wrapper_calls_and_reads_notifications(tessel_simulator):
    with tessel.connect_sync(tessel_simulator.commands, tessel_simulator.notifications) as server:
        assert tessel_simulator.wait_for_subscriber()
        clip = server.get_clips().clips[0]
        server.load_clips(players_parameters={PLAYER: {"clip": clip.um_id}})
        events = list(server.notifications(timeout=2))
    assert any(event.type_name == "PlayerStateChanged" for event in events)
