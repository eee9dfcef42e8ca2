"""The replay-server simulator, in this process, on loopback ports of its own choosing."""

from __future__ import annotations

import weakref
from typing import Any, Dict, Optional

from . import _tessel


class Simulator:
    """A simulated replay server for tests: `servers` servers with players and recorders,
    `clips` seeded clips, repeatable from `seed`. Use it as a context manager (or call `stop()`);
    connect to `commands` and `notifications` (and `public_key` when made with
    `encrypted=True`)."""

    def __init__(self, servers: int = 2, clips: int = 50, seed: int = 1, *,
                 players: int = 4, recorders: int = 2, playlists: int = 3,
                 angles_groups: int = 3, part_size: int = 500,
                 encrypted: bool = False) -> None:
        self._native = _tessel.Simulator(servers, clips, seed, players, recorders, playlists,
                                         angles_groups, part_size, encrypted)
        self.commands: str = self._native.commands
        self.notifications: str = self._native.notifications
        self.public_key: Optional[str] = self._native.public_key or None
        # Stopped when collected or, at the latest, before the interpreter shuts down: its thread
        # must not outlive the process's static data.
        self._finalizer = weakref.finalize(self, self._native.stop)

    def faults(self, *, reply_delay: float = 0.0, reply_jitter: float = 0.0,
               drop_fraction: float = 0.0, malformed_fraction: float = 0.0,
               duplicate_fraction: float = 0.0, silent: bool = False) -> None:
        """Replaces the injected faults (all off by default) for the commands read from now on:
        delays in seconds, fractions between 0 and 1 drawn per command, `silent` to stop
        answering."""
        self._native.set_faults(reply_delay, reply_jitter, drop_fraction, malformed_fraction,
                                duplicate_fraction, silent)

    def restart(self) -> None:
        """Closes and binds both sockets again, as a server restart; replies not yet sent are
        lost, the model is kept."""
        self._native.restart()

    def drop_off_network(self, server: int) -> bool:
        return bool(self._native.drop_off_network(server))

    def return_to_network(self, server: int) -> bool:
        return bool(self._native.return_to_network(server))

    def add_server(self) -> int:
        return int(self._native.add_server())

    def remove_server(self, server: int) -> bool:
        return bool(self._native.remove_server(server))

    def wait_for_subscriber(self, topic: str = "", timeout: float = 10.0) -> bool:
        """Waits until a subscriber has subscribed to a topic that `topic` begins with, so that
        what is published next reaches it."""
        return bool(self._native.wait_for_subscriber(topic, timeout))

    @property
    def statistics(self) -> Dict[str, int]:
        return dict(self._native.statistics())

    @property
    def clip_count(self) -> int:
        return int(self._native.clip_count())

    def stop(self) -> None:
        self._finalizer()

    def __enter__(self) -> "Simulator":
        return self

    def __exit__(self, *exc: Any) -> None:
        self.stop()
