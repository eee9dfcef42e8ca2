"""The asyncio client: one server, its calls, its notifications and its link state.

Everything here runs on the event loop's thread. The native connection's threads never call into
Python except to schedule `_drain` with `loop.call_soon_threadsafe`; `_drain` then takes what
happened (calls ended, parts, notifications, state changes) in one batch."""

from __future__ import annotations

import asyncio
import collections
import functools
import json
import weakref
from typing import (TYPE_CHECKING, Any, AsyncIterator, Awaitable, Callable, Deque, Dict,
                    Iterable, List, Optional, Set, Union)

from . import _tessel
from ._errors import BadReply, Cancelled, LinkLost, NotSent, ServerFailure, TimedOut
from ._records import Notification, Record, record_from_json, to_json_fields
from ._schema import COMMANDS, FAMILIES, NOTIFICATIONS

if TYPE_CHECKING:
    from ._mirror import Mirror

_OUTCOMES = dict(_tessel.OUTCOMES)
_ERRORS = {"NotSent": NotSent, "LinkLost": LinkLost, "TimedOut": TimedOut,
           "Cancelled": Cancelled, "BadReply": BadReply}
_DONE, _PART, _NOTIFICATION, _STATE = 0, 1, 2, 3


def _failure(reply: Record) -> Optional[ServerFailure]:
    """The failure a reply reports, if any."""
    if reply.type_name in ("FailureReply", "UnknownCommandReply"):
        return ServerFailure(f"{reply.type_name}: {reply.message}", reply)
    statuses = []
    fields = reply._fields
    if isinstance(fields.get("status"), Record):
        statuses.append((fields.get("group_guid"), fields["status"]))
    for result in fields.get("results") or ():
        if isinstance(result, Record) and isinstance(result._fields.get("status"), Record):
            item = next((v for k, v in result._fields.items() if k != "status"), None)
            if isinstance(item, Record):  # a clip or playlist: named by its identifier
                item = item._fields.get("um_id", item._fields.get("name"))
            statuses.append((item, result.status))
    for item, status in statuses:
        if status.code != 0:
            return ServerFailure(f"{reply.type_name}: {item}: status ({status.code}, "
                                 f"{status.reason})", reply, status.code, status.reason)
    return None


class NotificationStream:
    """An async iterator over the notifications of some types or families, in the order they
    arrived. Holds at most `maxsize` not yet read: when full, the oldest is dropped and counted
    in `dropped`. Stop it with `close()` (or leave its `async with`/`async for`)."""

    def __init__(self, server: "Server", names: frozenset[str], maxsize: int) -> None:
        self._server = server
        self._names = names
        self._queue: Deque[Notification] = collections.deque()
        self._maxsize = maxsize
        self._waiter: Optional[asyncio.Future[None]] = None
        self._closed = False
        self.dropped = 0

    def _matches(self, event: Notification) -> bool:
        return not self._names or event.type_name in self._names or event.family in self._names

    def _put(self, event: Notification) -> None:
        if len(self._queue) >= self._maxsize:
            self._queue.popleft()
            self.dropped += 1
        self._queue.append(event)
        self._wake()

    def _wake(self) -> None:
        if self._waiter is not None and not self._waiter.done():
            self._waiter.set_result(None)

    def close(self) -> None:
        self._closed = True
        self._server._streams.discard(self)
        self._wake()

    def __aiter__(self) -> "NotificationStream":
        return self

    async def __anext__(self) -> Notification:
        while not self._queue:
            if self._closed:
                raise StopAsyncIteration
            self._waiter = self._server._loop.create_future()
            try:
                await self._waiter
            finally:
                self._waiter = None
        return self._queue.popleft()

    async def __aenter__(self) -> "NotificationStream":
        return self

    async def __aexit__(self, *exc: Any) -> None:
        self.close()


class _Call:
    __slots__ = ("future", "parts")

    def __init__(self, future: "asyncio.Future[Record]",
                 parts: Optional["asyncio.Queue[Any]"] = None) -> None:
        self.future = future
        self.parts = parts


class Server:
    """One replay server. Made by `connect()`; use it as `async with`. Every method must be
    called on the thread of the event loop it was made in."""

    def __init__(self, commands: str, notifications: Union[str, Iterable[str], None] = None,
                 server_key: Optional[str] = None, *, name: str = "tessel",
                 time_limit: float = 5.0, topics: Iterable[str] = (),
                 notification_bytes: int = 8 << 20, notification_queue: int = 1000) -> None:
        self._loop = asyncio.get_running_loop()
        self.time_limit = time_limit
        self.state = "Connecting"
        self.notification_queue = notification_queue
        self._calls: Dict[int, _Call] = {}
        self._streams: Set[NotificationStream] = set()
        self._callbacks: List[tuple[frozenset[str], Callable[[Notification], Any]]] = []
        self._state_waiters: List[asyncio.Future[None]] = []
        if isinstance(notifications, str):
            notifications = [notifications]
        self._endpoints = {"name": name, "commands": commands,
                           "notifications": list(notifications or ()), "server_key": server_key}
        ref = weakref.ref(self)

        def drain() -> None:
            server = ref()
            if server is not None:
                server._drain()

        self._native = _tessel.Connection(
            name, commands, list(notifications or ()), list(topics), server_key or "",
            time_limit, notification_bytes, functools.partial(self._loop.call_soon_threadsafe,
                                                              drain))
        # Closes the native connection when this object goes away or the interpreter exits,
        # whichever comes first, so that no library thread outlives the interpreter.
        self._finalizer = weakref.finalize(self, self._native.close)

    # --- link ---------------------------------------------------------------------------------

    async def wait_connected(self, timeout: Optional[float] = None) -> bool:
        """Waits until the command link is connected, at most `timeout` seconds (default: the
        time limit); whether it is."""
        deadline = self._loop.time() + (self.time_limit if timeout is None else timeout)
        while self.state != "Connected":
            remaining = deadline - self._loop.time()
            if remaining <= 0 or self._native.closed:
                return False
            waiter = self._loop.create_future()
            self._state_waiters.append(waiter)
            try:
                await asyncio.wait_for(waiter, remaining)
            except asyncio.TimeoutError:
                return False
        return True

    @property
    def dropped_notifications(self) -> int:
        """Notifications dropped before they reached the loop, because those waiting for it
        already held `notification_bytes`."""
        return int(self._native.dropped())

    async def close(self) -> None:
        """Ends every pending call with `Cancelled`, closes the links and ends every
        notification stream. Waits for the library's threads (a few milliseconds)."""
        self.close_now()

    def close_now(self) -> None:
        self._finalizer()
        self._drain()
        for call in list(self._calls.values()):
            if not call.future.done():
                call.future.set_exception(Cancelled("the connection is closed"))
        self._calls.clear()
        for stream in list(self._streams):
            stream.close()

    async def __aenter__(self) -> "Server":
        return self

    async def __aexit__(self, *exc: Any) -> None:
        await self.close()

    def mirror(self, **options: Any) -> "Mirror":
        """A mirror of the servers behind this server's endpoints (see `tessel.Mirror` for the
        options). It makes connections of its own; closing this server does not close it."""
        from ._mirror import Mirror
        options.setdefault("time_limit", self.time_limit)
        return Mirror([self._endpoints], **options)

    # --- calls --------------------------------------------------------------------------------

    async def call(self, command: str, /, *, timeout: Optional[float] = None,
                   latest: bool = False, **fields: Any) -> Record:
        """Sends `command` ("PlayCommand") with `fields` (snake_case or camelCase) and returns
        its reply. Raises the outcome's exception (`NotSent`, `LinkLost`, `TimedOut`,
        `Cancelled`, `BadReply`), `ServerFailure` when the server says it failed, `ValueError`
        for parameters that do not fit the command. A listing that comes in parts is joined.
        With `latest` (dial only) the call goes through the latest-value lane. Cancelling the
        awaiting task cancels the call."""
        call = _Call(self._loop.create_future())
        number = self._send(command, fields, timeout, False, latest)
        self._calls[number] = call
        try:
            return await call.future
        except asyncio.CancelledError:
            self._native.cancel(number)
            raise

    async def stream(self, command: str, /, *, timeout: Optional[float] = None,
                     **fields: Any) -> AsyncIterator[Record]:
        """Like `call`, but yields a reply that comes in parts one part at a time, then the
        final message; the parts are not joined, so a long listing need not be held whole."""
        call = _Call(self._loop.create_future(), asyncio.Queue())
        number = self._send(command, fields, timeout, True, False)
        self._calls[number] = call
        assert call.parts is not None
        try:
            while True:
                part = await call.parts.get()
                if part is None:
                    break
                yield part
            yield await call.future
        finally:
            if not call.future.done():
                self._native.cancel(number)

    def _send(self, command: str, fields: Dict[str, Any], timeout: Optional[float],
              stream: bool, latest: bool) -> int:
        if command not in COMMANDS:
            raise ValueError(f"no command {command!r}")
        text = json.dumps(to_json_fields(fields))
        limit = self.time_limit if timeout is None else timeout
        return int(self._native.send(command, text, limit, stream, latest))

    # --- notifications ------------------------------------------------------------------------

    def notifications(self, *names: str, maxsize: Optional[int] = None) -> NotificationStream:
        """An async iterator over the notifications of the given types ("PlayerStateChanged")
        or families ("ChannelStatus"); all of them when none is given."""
        stream = NotificationStream(self, _check_names(names),
                                    maxsize or self.notification_queue)
        self._streams.add(stream)
        return stream

    def on_notification(self, callback: Callable[[Notification], Any],
                        *names: str) -> Callable[[], None]:
        """Calls `callback(event)` on the loop's thread for each notification of the given
        types or families (all when none). An exception it raises is logged and delivery goes
        on; a coroutine it returns is run as a task. Returns a function that removes it."""
        entry = (_check_names(names), callback)
        self._callbacks.append(entry)

        def remove() -> None:
            if entry in self._callbacks:
                self._callbacks.remove(entry)

        return remove

    # --- delivery -----------------------------------------------------------------------------

    def _drain(self) -> None:
        for item in self._native.take():
            try:
                self._handle(*item)
            except Exception as error:  # one bad item must not lose the rest of the batch
                self._loop.call_exception_handler({
                    "message": "tessel: could not deliver what the library reported",
                    "exception": error})

    def _handle(self, kind: int, number: int, code: int, text: str, note: str) -> None:
        if kind == _DONE:
            self._finish(number, code, text, note)
        elif kind == _PART:
            call = self._calls.get(number)
            if call is not None and call.parts is not None:
                call.parts.put_nowait(record_from_json(text))
        elif kind == _NOTIFICATION:
            self._deliver(record_from_json(text, note))  # type: ignore[arg-type]
        else:
            self.state = text
            waiters, self._state_waiters = self._state_waiters, []
            for waiter in waiters:
                if not waiter.done():
                    waiter.set_result(None)

    def _finish(self, number: int, code: int, text: str, reason: str) -> None:
        call = self._calls.pop(number, None)
        if call is None:
            return
        if call.parts is not None:
            call.parts.put_nowait(None)
        if call.future.done():  # the awaiting task was cancelled
            return
        outcome = _OUTCOMES[code]
        if outcome != "Replied":
            call.future.set_exception(_ERRORS[outcome](reason or outcome))
            return
        try:
            reply = record_from_json(text)
        except (ValueError, KeyError) as error:
            call.future.set_exception(BadReply(f"the reply's JSON could not be read: {error}"))
            return
        failure = _failure(reply)
        if failure is not None:
            call.future.set_exception(failure)
        else:
            call.future.set_result(reply)

    def _deliver(self, event: Notification) -> None:
        for stream in list(self._streams):
            if stream._matches(event):
                stream._put(event)
        for names, callback in list(self._callbacks):
            if names and event.type_name not in names and event.family not in names:
                continue
            try:
                result = callback(event)
                if asyncio.iscoroutine(result):
                    self._loop.create_task(result)
            except Exception as error:  # a faulty callback must not stop the others
                self._loop.call_exception_handler({
                    "message": f"tessel: notification callback {callback!r} raised",
                    "exception": error})


def _check_names(names: Iterable[str]) -> frozenset[str]:
    chosen = frozenset(names)
    unknown = chosen - set(NOTIFICATIONS) - set(FAMILIES)
    if unknown:
        raise ValueError(f"no notification type or family {sorted(unknown)}")
    return chosen


def _named(command: str) -> Callable[..., Awaitable[Record]]:
    async def method(self: Server, *, timeout: Optional[float] = None, latest: bool = False,
                     **fields: Any) -> Record:
        return await self.call(command, timeout=timeout, latest=latest, **fields)

    method.__name__ = COMMANDS[command].method
    method.__doc__ = f"Sends {command}; see `Server.call`."
    return method


for _command in COMMANDS.values():
    if hasattr(Server, _command.method):
        raise RuntimeError(f"the method of {_command.name} hides Server.{_command.method}")
    setattr(Server, _command.method, _named(_command.name))


class connect:
    """`async with tessel.connect(commands, notifications, server_key) as server:` makes a
    `Server`, waits until its command link is connected (at most its time limit; `TimedOut`
    when it is not) and closes it at the end. `await tessel.connect(...)` gives the connected
    server without the `async with`."""

    def __init__(self, commands: str, notifications: Union[str, Iterable[str], None] = None,
                 server_key: Optional[str] = None, **options: Any) -> None:
        self._args = (commands, notifications, server_key)
        self._options = options
        self._server: Optional[Server] = None

    async def _open(self) -> Server:
        server = Server(*self._args, **self._options)
        if not await server.wait_connected():
            server.close_now()
            raise TimedOut(f"no server at {self._args[0]} within {server.time_limit} s")
        return server

    def __await__(self) -> Any:
        return self._open().__await__()

    async def __aenter__(self) -> Server:
        self._server = await self._open()
        return self._server

    async def __aexit__(self, *exc: Any) -> None:
        if self._server is not None:
            await self._server.close()
