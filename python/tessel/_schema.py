"""The command, reply and notification tables of the native library, and the names derived
from them: the method of each command and the Python spelling of each field."""

from __future__ import annotations

import re
from typing import Any, Dict, List, NamedTuple, Tuple

from . import _tessel

_RAW = _tessel.schema()


class Command(NamedTuple):
    name: str        # "PlayCommand", as on the wire
    method: str      # "play"
    reply: str       # the reply type name it answers with when it runs
    read_only: bool  # safe to send again after an unknown outcome
    continuous: bool # may use the latest-value lane
    fields: List[Tuple[str, Any]]


def snake(name: str) -> str:
    """speedNum -> speed_num"""
    return re.sub(r"(?<=[a-z])([A-Z])", r"_\1", name).lower()


def method_name(command: str) -> str:
    """PlayCommand -> play, StartRecordingCommand -> start_recording"""
    return snake(command[: -len("Command")] if command.endswith("Command") else command)


COMMANDS: Dict[str, Command] = {
    name: Command(name, method_name(name), reply, read_only, continuous, fields)
    for name, reply, read_only, continuous, fields in _RAW["commands"]
}
REPLIES: Dict[str, Tuple[bool, List[Tuple[str, Any]]]] = {
    name: (parts, fields) for name, parts, fields in _RAW["replies"]
}
NOTIFICATIONS: Dict[str, Tuple[str, List[Tuple[str, Any]]]] = {
    name: (family, fields) for name, family, fields in _RAW["notifications"]
}
FAMILIES = sorted({family for family, _ in NOTIFICATIONS.values()})
CLASSES: Dict[str, List[Tuple[str, Any]]] = dict(_RAW["classes"])


def _field_names() -> set[str]:
    names: set[str] = set()
    tables = [c.fields for c in COMMANDS.values()]
    tables += [fields for _, fields in REPLIES.values()]
    tables += [fields for _, fields in NOTIFICATIONS.values()]
    tables += list(CLASSES.values())
    for fields in tables:
        names.update(name for name, _ in fields)
    return names


# Only names the tables know are respelt, so that map keys (channels such as "player:1:0",
# numbers) pass through unchanged.
FIELDS = frozenset(_field_names())
TO_JSON = {snake(name): name for name in FIELDS}
FROM_JSON = {name: snake(name) for name in FIELDS}
if len(TO_JSON) != len(FIELDS):
    raise RuntimeError("two fields of the tables share one Python name")
