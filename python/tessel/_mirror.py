"""The mirror: a live, self-healing copy of the servers, channels and catalogue behind one or
more endpoint pairs, read as snapshots and followed as change events.

The native mirror runs its own thread and connections. Its changes are written as text there and
handed to the event loop through the same queue as a connection's notifications; `_drain` turns
them into events on the loop's thread. Snapshots are read on the caller's thread, a part at a
time, with the GIL released while the native side writes them."""

from __future__ import annotations

import asyncio
import datetime
import functools
import json
import types
import weakref
from typing import (Any, Callable, Dict, Iterable, Iterator, List, Mapping, Optional, Sequence,
                    Tuple, Union)

from . import _tessel
from ._client import NotificationStream
from ._records import Record, from_json_value
from ._schema import FROM_JSON

SYNC_STATES = ("Syncing", "Live", "Stale", "Lost")
EVENT_KINDS = ("SyncStateChanged", "ServerChanged", "PlayerChanged", "RecorderChanged",
               "ClipChanged", "PlaylistChanged", "AnglesGroupChanged", "TrainChanged")
_NOTIFICATION = 2

_CHANGES = ("Added", "Updated", "Removed")


def _time(seconds: float) -> Optional[datetime.datetime]:
    """A confirmation time; None for the epoch (never confirmed)."""
    if seconds <= 0:
        return None
    return datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc)


def _record(type_name: str, value: Dict[str, Any]) -> Record:
    """A value of the library's JSON form as a Record named by its class."""
    return Record(type_name, {FROM_JSON.get(key, key): from_json_value(item)
                              for key, item in value.items()})


def _only(mapping: Dict[str, Any]) -> Any:
    return next(iter(mapping.values()))


# Each value crosses inside the listing reply of its kind (one JSON text per line): how many lines
# it takes and how to take it out again.
def _recorder(lines: List[str]) -> Record:
    state = _only(json.loads(lines[0])["recorderStates"])
    train = json.loads(lines[1])["trains"][0]
    return Record("MirroredRecorder", {
        "state": _record("RecorderState", state),
        "ranges": from_json_value(train.get("recordingRanges", [])),
        "is_loop_recording": bool(train.get("isLoopRecording", False))})


def _listed(field: str, type_name: str) -> Any:
    return lambda lines: _record(type_name, json.loads(lines[0])[field][0])


_CARRIED: Dict[str, Tuple[int, Callable[[List[str]], Record]]] = {
    "ServerChanged": (1, _listed("servers", "ServerInfo")),
    "PlayerChanged": (1, lambda lines: _record(
        "PlayerState", _only(json.loads(lines[0])["playerStates"]))),
    "RecorderChanged": (2, _recorder),
    "ClipChanged": (1, _listed("clips", "Clip")),
    "PlaylistChanged": (1, _listed("playlists", "Playlist")),
    "AnglesGroupChanged": (1, _listed("anglesGroups", "AnglesGroup")),
    "TrainChanged": (1, _listed("trains", "Train")),
}


def _carried(kind: str, text: str) -> Record:
    count, take = _CARRIED[kind]
    return take(text.split("\n", count - 1))


def _table(kind: str, entries: List[Tuple[str, str]]) -> Mapping[str, Record]:
    return types.MappingProxyType({key: _carried(kind, text) for key, text in entries})


class MirrorEvent(Record):
    """One change: `type_name` is its kind ("PlayerChanged", "SyncStateChanged", ...), `source`
    the index of its endpoint pair. Item changes have `key` (a server number, a channel such as
    "player:1:0", a clip's or a playlist's identifier), `change` ("Added", "Updated",
    "Removed") and `before`/`after` (None when added or removed); a sync state change has
    `server_id` (0 for the catalogue) and `before`/`after` as state names."""

    __slots__ = ()

    @property
    def family(self) -> str:
        return "Mirror"


def _event(kind: str, source: int, change: int, text: str) -> MirrorEvent:
    if kind == "SyncStateChanged":
        server, before, after = text.split("\n")
        return MirrorEvent(kind, {"source": source, "server_id": int(server), "before": before,
                                  "after": after})
    count, take = _CARRIED[kind]
    lines = text.split("\n", 2 * count)
    before, after = lines[:count], lines[count:2 * count]
    key: Union[int, str] = int(lines[-1]) if kind == "ServerChanged" else lines[-1]
    return MirrorEvent(kind, {"source": source, "key": key, "change": _CHANGES[change],
                              "before": take(before) if before[0] else None,
                              "after": take(after) if after[0] else None})


class SourceSnapshot:
    """One endpoint pair at one moment; read-only. Each table is read from the native snapshot
    the first time it is asked for, and the same moment is kept however long this lives."""

    def __init__(self, native: Any) -> None:
        self._native = native
        self.name: str = native.name
        self.catalogue_state: str = native.catalogue_state
        self.catalogue_confirmed_at = _time(native.catalogue_confirmed_at)

    @functools.cached_property
    def servers(self) -> Mapping[int, Record]:
        """MirroredServer by server number: `info` (ServerInfo), `state` (its sync state) and
        `confirmed_at` (when a listing last confirmed its channels; None when never)."""
        return types.MappingProxyType({
            number: Record("MirroredServer", {
                "info": _carried("ServerChanged", info), "state": state,
                "confirmed_at": _time(confirmed)})
            for number, state, confirmed, info in self._native.servers()})

    @property
    def sync_states(self) -> Dict[int, str]:
        """The sync state of each server, by number."""
        return {number: server.state for number, server in self.servers.items()}

    @functools.cached_property
    def players(self) -> Mapping[str, Record]:
        """PlayerState by channel ("player:1:0")."""
        return _table("PlayerChanged", self._native.players())

    @functools.cached_property
    def recorders(self) -> Mapping[str, Record]:
        """MirroredRecorder by channel: `state` (RecorderState), `ranges` and
        `is_loop_recording`."""
        return _table("RecorderChanged", self._native.recorders())

    @functools.cached_property
    def playlists(self) -> Mapping[str, Record]:
        """Playlist by its sequence's material identifier."""
        return _table("PlaylistChanged", self._native.playlists())

    @functools.cached_property
    def angles_groups(self) -> Mapping[str, Record]:
        return _table("AnglesGroupChanged", self._native.angles_groups())

    @functools.cached_property
    def trains(self) -> Mapping[str, Record]:
        """Train by its clip's material identifier."""
        return _table("TrainChanged", self._native.trains())

    def clip(self, um_id: str) -> Optional[Record]:
        """The clip of that material identifier, or None."""
        text = self._native.clip(um_id)
        return _carried("ClipChanged", text) if text else None

    def clip_ids(self) -> List[str]:
        """Every clip's material identifier, in no particular order."""
        return list(self._native.clip_ids())

    def clips(self) -> Iterator[Record]:
        """Every clip, one at a time (a large catalogue is never held twice)."""
        for um_id in self.clip_ids():
            clip = self.clip(um_id)
            if clip is not None:
                yield clip

    @property
    def clip_count(self) -> int:
        return int(self._native.clip_count())

    def __repr__(self) -> str:
        return (f"SourceSnapshot(name={self.name!r}, sync_states={self.sync_states!r}, "
                f"catalogue_state={self.catalogue_state!r}, clips={self.clip_count})")


class MirrorSnapshot(Sequence[SourceSnapshot]):
    """Every source at one moment, in the order they were given; `snapshot[0]` is the first.
    The attributes of a single-source mirror's one source are also readable here
    (`snapshot.players`)."""

    def __init__(self, sources: Iterable[SourceSnapshot]) -> None:
        self._sources = tuple(sources)

    def __getitem__(self, index: Any) -> Any:
        return self._sources[index]

    def __len__(self) -> int:
        return len(self._sources)

    def __getattr__(self, name: str) -> Any:
        if name.startswith("_"):
            raise AttributeError(name)
        return getattr(self._sources[0], name)

    def __repr__(self) -> str:
        return f"MirrorSnapshot({list(self._sources)!r})"


class MirrorEventStream(NotificationStream):
    """An async iterator over a mirror's changes, in the order the mirror made them. Bounded
    like a notification stream: when `maxsize` are unread the oldest is dropped and counted in
    `dropped`."""

    def _matches(self, event: Any) -> bool:
        return not self._names or event.type_name in self._names

    def close(self) -> None:
        super().close()
        self._server._listen()  # type: ignore[attr-defined]


class Mirror:
    """A mirror of the servers behind one or more endpoint pairs. Made by `tessel.mirror()` or
    `Server.mirror()`; use it as `async with` (or call `close()`). Every method must be called on
    the thread of the event loop it was made in."""

    def __init__(self, sources: Iterable[Union[str, Tuple[Any, ...], Mapping[str, Any]]], *,
                 channel_check: float = 1.0, catalogue_check: float = 30.0,
                 held_bytes: int = 4 << 20, listing_time_limit: float = 10.0,
                 time_limit: float = 5.0, event_bytes: int = 8 << 20,
                 event_queue: int = 10000) -> None:
        self._loop = asyncio.get_running_loop()
        self._streams: set[NotificationStream] = set()
        self._waiters: List[asyncio.Future[None]] = []
        self.event_queue = event_queue
        native_sources = [_source(index, source, time_limit)
                          for index, source in enumerate(sources)]
        if not native_sources:
            raise ValueError("a mirror needs at least one source")
        ref = weakref.ref(self)

        def drain() -> None:
            mirror = ref()
            if mirror is not None:
                mirror._drain()

        self._native = _tessel.Mirror(native_sources, channel_check, catalogue_check, held_bytes,
                                      listing_time_limit, event_bytes,
                                      functools.partial(self._loop.call_soon_threadsafe, drain))
        self._finalizer = weakref.finalize(self, self._native.close)

    def snapshot(self) -> MirrorSnapshot:
        """What the mirror holds now, as one consistent, read-only view of every source."""
        return MirrorSnapshot(SourceSnapshot(native) for native in self._native.snapshot())

    def sync_states(self) -> Dict[Tuple[int, int], str]:
        """The sync state of every server, by (source, server number), and of every source's
        catalogue, by (source, 0)."""
        states: Dict[Tuple[int, int], str] = {}
        for index, source in enumerate(self.snapshot()):
            states[(index, 0)] = source.catalogue_state
            for number, state in source.sync_states.items():
                states[(index, number)] = state
        return states

    async def wait_live(self, timeout: float = 10.0) -> bool:
        """Waits until every server and every catalogue is live, at most `timeout` seconds;
        whether they are."""
        deadline = self._loop.time() + timeout
        while True:
            states = self.sync_states()
            if len(states) > len(self) and all(s == "Live" for s in states.values()):
                return True
            remaining = deadline - self._loop.time()
            if remaining <= 0 or self._native.closed:
                return False
            waiter = self._loop.create_future()
            self._waiters.append(waiter)
            self._listen()
            try:
                # Woken by the next change; looked at again now and then in case that change
                # was dropped on its way to the loop.
                await asyncio.wait_for(waiter, min(remaining, 0.5))
            except asyncio.TimeoutError:
                pass

    def events(self, *kinds: str, maxsize: Optional[int] = None) -> MirrorEventStream:
        """An async iterator over the changes of the given kinds ("PlayerChanged",
        "SyncStateChanged", ...), all when none is given, from now on. Changes are only handed
        to the loop while a stream is open."""
        unknown = set(kinds) - set(EVENT_KINDS)
        if unknown:
            raise ValueError(f"no mirror event kind {sorted(unknown)}")
        stream = MirrorEventStream(self, frozenset(kinds),  # type: ignore[arg-type]
                                   maxsize or self.event_queue)
        self._streams.add(stream)
        self._listen()
        return stream

    def statistics(self) -> Dict[str, int]:
        """Counters since the mirror started: notifications applied and dropped, resyncs,
        verifications and the differences they found."""
        return dict(self._native.statistics())

    @property
    def dropped_events(self) -> int:
        """Changes dropped before they reached the loop, because those waiting for it already
        held `event_bytes`."""
        return int(self._native.dropped())

    def resync(self, source: int = 0) -> None:
        """Lists the source again now."""
        self._native.resync(source)

    def __len__(self) -> int:
        return len(self._native.snapshot())

    def close(self) -> None:
        """Stops the mirror's thread, closes its connections and ends every event stream."""
        self._finalizer()
        self._drain()
        for stream in list(self._streams):
            stream.close()
        self._wake()

    async def __aenter__(self) -> "Mirror":
        return self

    async def __aexit__(self, *exc: Any) -> None:
        self.close()

    def _wake(self) -> None:
        waiters, self._waiters = self._waiters, []
        for waiter in waiters:
            if not waiter.done():
                waiter.set_result(None)
        self._listen()

    def _listen(self) -> None:
        """Changes are written and handed over only while a stream or a waiter wants them."""
        if not self._native.closed:
            self._native.listen(bool(self._streams or self._waiters))

    def _drain(self) -> None:
        for kind, source, change, text, name in self._native.take():
            if kind != _NOTIFICATION:
                continue
            try:
                event = _event(name, source, change, text)
            except (ValueError, KeyError, IndexError) as error:
                self._loop.call_exception_handler({
                    "message": "tessel: could not read a mirror change", "exception": error})
                continue
            for stream in list(self._streams):
                if stream._matches(event):
                    stream._put(event)  # type: ignore[arg-type]
        self._wake()


def _source(index: int, source: Union[str, Tuple[Any, ...], Mapping[str, Any]],
            time_limit: float) -> Tuple[str, str, List[str], str, float]:
    """(name, commands, notifications, server key, time limit) from a command endpoint, a tuple
    (commands, notifications[, server_key]) or a mapping of `connect`'s arguments."""
    if isinstance(source, str):
        source = (source,)
    if isinstance(source, Mapping):
        options = dict(source)
    else:
        options = dict(zip(("commands", "notifications", "server_key"), source))
    notifications = options.get("notifications") or ()
    if isinstance(notifications, str):
        notifications = [notifications]
    return (options.get("name") or f"mirror-{index}", options["commands"], list(notifications),
            options.get("server_key") or "", float(options.get("time_limit", time_limit)))


def mirror(sources: Union[str, Tuple[Any, ...], Mapping[str, Any],
                          Iterable[Union[str, Tuple[Any, ...], Mapping[str, Any]]]],
           **options: Any) -> Mirror:
    """A mirror over one source or a list of them. A source is a command endpoint, a tuple
    (commands, notifications[, server_key]) or a mapping of `connect`'s arguments. Must be
    called with an event loop running; see `Mirror` for the options."""
    if isinstance(sources, (str, tuple, Mapping)):
        sources = [sources]  # type: ignore[list-item]
    return Mirror(sources, **options)  # type: ignore[arg-type]
