"""Writes the type stubs of the tessel package from the message tables of the native module it
was built with: one class per reply, notification and value class, with typed fields, and a
typed method per command on `Server` and `SyncServer`.

    PYTHONPATH=<build>/python python3 genstubs.py <build>/python/tessel/__init__.pyi
"""

from __future__ import annotations

import sys
from typing import Any, List, Tuple

from tessel._schema import CLASSES, COMMANDS, FAMILIES, NOTIFICATIONS, REPLIES, snake


def reply_class(name: str) -> str:
    return name if name.endswith("Reply") else name + "Reply"


def out_type(t: Tuple[Any, ...]) -> str:
    kind = t[0]
    if kind in ("int", "bool", "str"):
        return kind
    if kind == "text":
        return "Union[str, Dict[str, str]]"
    if kind == "class":
        return reply_class(t[1]) if t[1] in REPLIES or reply_class(t[1]) in REPLIES else t[1]
    if kind == "optional":
        return f"Optional[{out_type(t[1])}]"
    if kind == "list":
        return f"List[{out_type(t[1])}]"
    if kind == "map":
        return f"Dict[str, {out_type(t[2])}]"
    raise ValueError(t)


def in_type(t: Tuple[Any, ...]) -> str:
    kind = t[0]
    if kind in ("int", "bool", "str"):
        return kind
    if kind == "text":
        return "Union[str, Mapping[str, str]]"
    if kind == "class":
        return f"Union[{out_type(t)}, Mapping[str, Any]]"
    if kind == "optional":
        return f"Optional[{in_type(t[1])}]"
    if kind == "list":
        return f"Iterable[{in_type(t[1])}]"
    if kind == "map":
        key = "Union[str, int]" if t[1][0] == "int" else "str"
        return f"Mapping[{key}, {in_type(t[2])}]"
    raise ValueError(t)


def record_class(name: str, base: str, fields: List[Tuple[str, Any]], doc: str) -> List[str]:
    lines = [f"class {name}({base}):", f'    """{doc}"""']
    for field, t in fields:
        lines.append(f"    @property\n    def {snake(field)}(self) -> {out_type(t)}: ...")
    if not fields:
        lines.append("    ...")
    return lines + [""]


def parameters(fields: List[Tuple[str, Any]]) -> str:
    return "".join(f", {snake(field)}: {in_type(t)} = ..." for field, t in fields)


def methods(is_async: bool) -> List[str]:
    prefix = "async def" if is_async else "def"
    lines = []
    for command in COMMANDS.values():
        reply = reply_class(command.reply)
        latest = ", latest: bool = ..." if command.continuous and is_async else ""
        lines.append(f"    {prefix} {command.method}(self, *, timeout: Optional[float] = ...{latest}"
                     f"{parameters(command.fields)}) -> {reply}:")
        lines.append(f'        """Sends {command.name}; answered by {command.reply}."""')
    for command in COMMANDS.values():
        reply = reply_class(command.reply)
        lines.append("    @overload")
        lines.append(f"    {prefix} call(self, command: Literal[{command.name!r}], /, *, "
                     f"timeout: Optional[float] = ..., latest: bool = ..., **fields: Any) -> "
                     f"{reply}: ...")
    lines.append("    @overload")
    lines.append(f"    {prefix} call(self, command: str, /, *, timeout: Optional[float] = ..., "
                 "latest: bool = ..., **fields: Any) -> Record: ...")
    return lines


HEADER = '''"""The Tessel replay-server client for asyncio (type stubs written from the message tables)."""

import datetime
from typing import (Any, AsyncIterator, Callable, Dict, Iterable, Iterator, List, Literal,
                    Mapping, Optional, Sequence, Tuple, Union, overload)

__version__: str

CommandName = Literal[{commands}]
NotificationName = Literal[{notifications}]

COMMAND_NAMES: Tuple[str, ...]
NOTIFICATION_TYPES: Tuple[str, ...]
NOTIFICATION_FAMILIES: Tuple[str, ...]

class TesselError(Exception): ...
class NotSent(TesselError): ...
class LinkLost(TesselError): ...
class TimedOut(TesselError, TimeoutError): ...
class Cancelled(TesselError): ...
class BadReply(TesselError): ...
class ServerFailure(TesselError):
    message: str
    reply: Record
    code: Optional[int]
    reason: Optional[int]
    def __init__(self, message: str, reply: Any, code: Optional[int] = ...,
                 reason: Optional[int] = ...) -> None: ...

class Record:
    """A reply, a notification or a value inside them; read-only."""
    @property
    def type_name(self) -> Optional[str]: ...
    def to_dict(self) -> Dict[str, Any]: ...
    def to_json(self) -> str: ...

class Notification(Record):
    @property
    def type_name(self) -> str: ...
    @property
    def family(self) -> str: ...

class NotificationStream:
    dropped: int
    def close(self) -> None: ...
    def __aiter__(self) -> NotificationStream: ...
    async def __anext__(self) -> Notification: ...
    async def __aenter__(self) -> NotificationStream: ...
    async def __aexit__(self, *exc: Any) -> None: ...

class Simulator:
    commands: str
    notifications: str
    public_key: Optional[str]
    def __init__(self, servers: int = ..., clips: int = ..., seed: int = ..., *,
                 players: int = ..., recorders: int = ..., playlists: int = ...,
                 angles_groups: int = ..., part_size: int = ..., encrypted: bool = ...) -> None: ...
    def faults(self, *, reply_delay: float = ..., reply_jitter: float = ...,
               drop_fraction: float = ..., malformed_fraction: float = ...,
               duplicate_fraction: float = ..., silent: bool = ...) -> None: ...
    def restart(self) -> None: ...
    def drop_off_network(self, server: int) -> bool: ...
    def return_to_network(self, server: int) -> bool: ...
    def add_server(self) -> int: ...
    def remove_server(self, server: int) -> bool: ...
    def wait_for_subscriber(self, topic: str = ..., timeout: float = ...) -> bool: ...
    @property
    def statistics(self) -> Dict[str, int]: ...
    @property
    def clip_count(self) -> int: ...
    def stop(self) -> None: ...
    def __enter__(self) -> Simulator: ...
    def __exit__(self, *exc: Any) -> None: ...

'''

SERVER = '''class Server:
    time_limit: float
    state: str
    notification_queue: int
    def __init__(self, commands: str, notifications: Union[str, Iterable[str], None] = ...,
                 server_key: Optional[str] = ..., *, name: str = ..., time_limit: float = ...,
                 topics: Iterable[str] = ..., notification_bytes: int = ...,
                 notification_queue: int = ...) -> None: ...
    async def wait_connected(self, timeout: Optional[float] = ...) -> bool: ...
    @property
    def dropped_notifications(self) -> int: ...
    async def close(self) -> None: ...
    def close_now(self) -> None: ...
    async def __aenter__(self) -> Server: ...
    async def __aexit__(self, *exc: Any) -> None: ...
    def stream(self, command: CommandName, /, *, timeout: Optional[float] = ...,
               **fields: Any) -> AsyncIterator[Record]: ...
    def notifications(self, *names: NotificationName,
                      maxsize: Optional[int] = ...) -> NotificationStream: ...
    def on_notification(self, callback: Callable[[Notification], Any],
                        *names: NotificationName) -> Callable[[], None]: ...
    def mirror(self, *, channel_check: float = ..., catalogue_check: float = ...,
               held_bytes: int = ..., listing_time_limit: float = ..., time_limit: float = ...,
               event_bytes: int = ..., event_queue: int = ...) -> Mirror: ...
'''

SYNC = '''class SyncServer:
    def __init__(self, commands: str, notifications: Union[str, Iterable[str], None] = ...,
                 server_key: Optional[str] = ..., **options: Any) -> None: ...
    def notifications(self, timeout: float) -> Iterator[Notification]: ...
    @property
    def state(self) -> str: ...
    def close(self) -> None: ...
    def __enter__(self) -> SyncServer: ...
    def __exit__(self, *exc: Any) -> None: ...
'''

MIRROR = '''
SyncStateName = Literal["Syncing", "Live", "Stale", "Lost"]
MirrorEventKind = Literal["SyncStateChanged", "ServerChanged", "PlayerChanged",
                          "RecorderChanged", "ClipChanged", "PlaylistChanged",
                          "AnglesGroupChanged", "TrainChanged"]

class MirroredServer(Record):
    @property
    def info(self) -> ServerInfo: ...
    @property
    def state(self) -> SyncStateName: ...
    @property
    def confirmed_at(self) -> Optional[datetime.datetime]: ...

class MirroredRecorder(Record):
    @property
    def state(self) -> RecorderState: ...
    @property
    def ranges(self) -> List[RecordingRange]: ...
    @property
    def is_loop_recording(self) -> bool: ...

class MirrorEvent(Record):
    @property
    def type_name(self) -> MirrorEventKind: ...
    @property
    def family(self) -> str: ...
    @property
    def source(self) -> int: ...
    @property
    def key(self) -> Union[int, str]: ...
    @property
    def change(self) -> Literal["Added", "Updated", "Removed"]: ...
    @property
    def server_id(self) -> int: ...
    @property
    def before(self) -> Any: ...
    @property
    def after(self) -> Any: ...

class MirrorEventStream:
    dropped: int
    def close(self) -> None: ...
    def __aiter__(self) -> MirrorEventStream: ...
    async def __anext__(self) -> MirrorEvent: ...
    async def __aenter__(self) -> MirrorEventStream: ...
    async def __aexit__(self, *exc: Any) -> None: ...

class SourceSnapshot:
    name: str
    catalogue_state: SyncStateName
    catalogue_confirmed_at: Optional[datetime.datetime]
    @property
    def servers(self) -> Mapping[int, MirroredServer]: ...
    @property
    def sync_states(self) -> Dict[int, SyncStateName]: ...
    @property
    def players(self) -> Mapping[str, PlayerState]: ...
    @property
    def recorders(self) -> Mapping[str, MirroredRecorder]: ...
    @property
    def playlists(self) -> Mapping[str, Playlist]: ...
    @property
    def angles_groups(self) -> Mapping[str, AnglesGroup]: ...
    @property
    def trains(self) -> Mapping[str, Train]: ...
    def clip(self, um_id: str) -> Optional[Clip]: ...
    def clip_ids(self) -> List[str]: ...
    def clips(self) -> Iterator[Clip]: ...
    @property
    def clip_count(self) -> int: ...

class MirrorSnapshot(Sequence[SourceSnapshot], SourceSnapshot):
    @overload
    def __getitem__(self, index: int) -> SourceSnapshot: ...
    @overload
    def __getitem__(self, index: slice) -> Sequence[SourceSnapshot]: ...
    def __len__(self) -> int: ...

MirrorSource = Union[str, Tuple[str, Union[str, Iterable[str], None]],
                     Tuple[str, Union[str, Iterable[str], None], Optional[str]],
                     Mapping[str, Any]]

class Mirror:
    event_queue: int
    def __init__(self, sources: Iterable[MirrorSource], *, channel_check: float = ...,
                 catalogue_check: float = ..., held_bytes: int = ...,
                 listing_time_limit: float = ..., time_limit: float = ...,
                 event_bytes: int = ..., event_queue: int = ...) -> None: ...
    def snapshot(self) -> MirrorSnapshot: ...
    def sync_states(self) -> Dict[Tuple[int, int], SyncStateName]: ...
    async def wait_live(self, timeout: float = ...) -> bool: ...
    def events(self, *kinds: MirrorEventKind, maxsize: Optional[int] = ...) -> MirrorEventStream: ...
    def statistics(self) -> Dict[str, int]: ...
    @property
    def dropped_events(self) -> int: ...
    def resync(self, source: int = ...) -> None: ...
    def __len__(self) -> int: ...
    def close(self) -> None: ...
    async def __aenter__(self) -> Mirror: ...
    async def __aexit__(self, *exc: Any) -> None: ...

def mirror(sources: Union[MirrorSource, Iterable[MirrorSource]], *, channel_check: float = ...,
           catalogue_check: float = ..., held_bytes: int = ..., listing_time_limit: float = ...,
           time_limit: float = ..., event_bytes: int = ..., event_queue: int = ...) -> Mirror: ...
'''

FOOTER = '''
class connect:
    def __init__(self, commands: str, notifications: Union[str, Iterable[str], None] = ...,
                 server_key: Optional[str] = ..., *, name: str = ..., time_limit: float = ...,
                 topics: Iterable[str] = ..., notification_bytes: int = ...,
                 notification_queue: int = ...) -> None: ...
    def __await__(self) -> Any: ...
    async def __aenter__(self) -> Server: ...
    async def __aexit__(self, *exc: Any) -> None: ...

def connect_sync(commands: str, notifications: Union[str, Iterable[str], None] = ...,
                 server_key: Optional[str] = ..., *, name: str = ..., time_limit: float = ...,
                 topics: Iterable[str] = ..., notification_bytes: int = ...,
                 notification_queue: int = ...) -> SyncServer: ...
'''


def main() -> None:
    out: List[str] = [HEADER.format(
        commands=", ".join(repr(name) for name in COMMANDS),
        notifications=", ".join(repr(name) for name in list(NOTIFICATIONS) + FAMILIES))]
    replies = {reply_class(name) for name in REPLIES}
    for name, fields in sorted(CLASSES.items()):
        if reply_class(name) not in replies and name not in replies:
            out += record_class(name, "Record", fields, f"A {name} value.")
    for name, (_, fields) in REPLIES.items():
        out += record_class(reply_class(name), "Record", fields, f"The reply {name}.")
    for name, (family, fields) in NOTIFICATIONS.items():
        out += record_class(name, "Notification", fields, f"The {family} notification {name}.")
    out.append(SERVER + "\n".join(methods(True)) + "\n")
    out.append(SYNC + "\n".join(methods(False)) + "\n")
    out.append(MIRROR)
    out.append(FOOTER)
    with open(sys.argv[1], "w", encoding="utf-8") as stub:
        stub.write("\n".join(out))


if __name__ == "__main__":
    main()
