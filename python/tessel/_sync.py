"""A blocking wrapper of `Server` for scripts and the REPL: each call runs a private event
loop until it ends."""

from __future__ import annotations

import asyncio
from typing import Any, Iterable, Iterator, List, Optional, Union

from ._client import Server, connect
from ._records import Notification, Record
from ._schema import COMMANDS


class SyncServer:
    """`with tessel.connect_sync(commands) as server: server.ping()`. Not for use inside a
    running event loop; one thread at a time."""

    def __init__(self, commands: str, notifications: Union[str, Iterable[str], None] = None,
                 server_key: Optional[str] = None, **options: Any) -> None:
        self._loop = asyncio.new_event_loop()
        self._server: Server = self._loop.run_until_complete(
            connect(commands, notifications, server_key, **options)._open())
        self._events: List[Notification] = []
        self._stream = self._server.notifications()

    def call(self, command: str, /, *, timeout: Optional[float] = None, **fields: Any) -> Record:
        return self._loop.run_until_complete(self._server.call(command, timeout=timeout,
                                                               **fields))

    def notifications(self, timeout: float) -> Iterator[Notification]:
        """Yields the notifications that arrive within `timeout` seconds, in order."""
        deadline = self._loop.time() + timeout
        while True:
            remaining = deadline - self._loop.time()
            if remaining <= 0:
                return
            try:
                yield self._loop.run_until_complete(
                    asyncio.wait_for(self._stream.__anext__(), remaining))
            except asyncio.TimeoutError:
                return

    @property
    def state(self) -> str:
        return self._server.state

    def close(self) -> None:
        if not self._loop.is_closed():
            self._server.close_now()
            self._loop.close()

    def __enter__(self) -> "SyncServer":
        return self

    def __exit__(self, *exc: Any) -> None:
        self.close()


def _named(command: str) -> Any:
    def method(self: SyncServer, *, timeout: Optional[float] = None, **fields: Any) -> Record:
        return self.call(command, timeout=timeout, **fields)

    method.__name__ = COMMANDS[command].method
    return method


for _command in COMMANDS.values():
    setattr(SyncServer, _command.method, _named(_command.name))


def connect_sync(commands: str, notifications: Union[str, Iterable[str], None] = None,
                 server_key: Optional[str] = None, **options: Any) -> SyncServer:
    """A connected `SyncServer` (raises `TimedOut` when the server is not reached in time)."""
    return SyncServer(commands, notifications, server_key, **options)
