"""The Tessel replay-server client for asyncio.

    async with tessel.connect(sim.commands, sim.notifications) as server:
        await server.play(players=["player:1:0"], speed_num=1, speed_den=2)

See docs/python.md."""

from ._client import NotificationStream, Server, connect
from ._errors import (BadReply, Cancelled, LinkLost, NotSent, ServerFailure, TesselError,
                      TimedOut)
from ._mirror import (Mirror, MirrorEvent, MirrorEventStream, MirrorSnapshot, SourceSnapshot,
                      mirror)
from ._records import Notification, Record
from ._schema import COMMANDS as _COMMANDS, FAMILIES as _FAMILIES, NOTIFICATIONS as _NOTES
from ._simulator import Simulator
from ._sync import SyncServer, connect_sync

__version__ = "0.1.0"

COMMAND_NAMES = tuple(_COMMANDS)
NOTIFICATION_TYPES = tuple(_NOTES)
NOTIFICATION_FAMILIES = tuple(_FAMILIES)

__all__ = [
    "BadReply", "Cancelled", "COMMAND_NAMES", "LinkLost", "Mirror", "MirrorEvent",
    "MirrorEventStream", "MirrorSnapshot", "SourceSnapshot", "mirror", "NOTIFICATION_FAMILIES",
    "NOTIFICATION_TYPES", "NotSent", "Notification", "NotificationStream", "Record", "Server",
    "ServerFailure", "Simulator", "SyncServer", "TesselError", "TimedOut", "connect",
    "connect_sync",
]
