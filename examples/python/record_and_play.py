"""Records a clip, loads it on a player, plays it at half speed and prints the notifications,
then what a mirror of the server saw of the player.

    python3 record_and_play.py                      starts a simulator in this process
    python3 record_and_play.py tcp://host:5555 tcp://host:5556   drives that server
"""

import asyncio
import sys
from typing import Optional

import tessel

PLAYER, RECORDER = "player:1:0", "recorder:1:4"


def show(event: tessel.Notification) -> None:
    print(f"  {event.family}/{event.type_name}")


async def drive(commands: str, notifications: str, key: Optional[str]) -> None:
    async with tessel.connect(commands, notifications, server_key=key) as server, \
            server.mirror() as mirror:
        server.on_notification(show)
        if not await mirror.wait_live(10):
            print("the mirror is not live yet:", mirror.sync_states())
        changes = mirror.events("PlayerChanged")
        before = {clip.um_id for clip in (await server.get_clips()).clips}

        await server.start_recording(recorders=[RECORDER])
        await asyncio.sleep(1.0)  # one second of material
        await server.stop_recording(recorders=[RECORDER])

        clips = (await server.get_clips()).clips
        recorded = next(clip for clip in clips if clip.um_id not in before)
        print(f"recorded {recorded.name!r} ({recorded.um_id.strip()})")

        await server.load_clips(players_parameters={PLAYER: {"clip": recorded.um_id}})
        reply = await server.play(players=[PLAYER], speed_num=1, speed_den=2)
        print("play:", [(r.channel_guid, r.status.code) for r in reply.results])

        channels = await server.get_channels()
        print("channels:", len(channels.player_states), "players")
        await asyncio.sleep(0.5)  # let the last notifications arrive

        changes.close()
        async for change in changes:
            if change.key == PLAYER:
                print(f"  mirror: {PLAYER} {change.change}")
        snapshot = mirror.snapshot()
        player = snapshot.players.get(PLAYER)
        print("mirror:", snapshot.sync_states, "loaded", player and player.loaded_clip_um_id)


def main() -> None:
    if len(sys.argv) >= 3:
        asyncio.run(drive(sys.argv[1], sys.argv[2], None))
        return
    with tessel.Simulator(servers=1, clips=5) as sim:
        asyncio.run(drive(sim.commands, sim.notifications, sim.public_key))


if __name__ == "__main__":
    main()
