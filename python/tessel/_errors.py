"""The outcomes of a call other than a reply, as exceptions."""

from __future__ import annotations

from typing import Any, Optional


class TesselError(Exception):
    """Every outcome of a call that is not a successful reply."""


class NotSent(TesselError):
    """The command never reached the wire (link down, connection closed): it did not run, and
    sending it again is safe."""


class LinkLost(TesselError):
    """The command was sent, then the link dropped before the reply: it may or may not have run."""


class TimedOut(TesselError, TimeoutError):
    """The time limit passed; a late reply is dropped. The command may have run."""


class Cancelled(TesselError):
    """Cancelled by the application, replaced by a newer value in the latest-value lane, or ended
    by closing the connection. The command may have run."""


class BadReply(TesselError):
    """A reply came that cannot be decoded or is of a class the command cannot receive."""


class ServerFailure(TesselError):
    """The server answered, and said the command failed: a failure reply, an unknown command, or
    a result whose status code is not 0. `code` and `reason` are the status pair of the first
    failed result (None for a failure reply); `reply` is the whole reply."""

    def __init__(self, message: str, reply: Any, code: Optional[int] = None,
                 reason: Optional[int] = None) -> None:
        super().__init__(message)
        self.message = message
        self.reply = reply
        self.code = code
        self.reason = reason
