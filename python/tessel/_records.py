"""Replies and notifications as read-only objects with attribute access."""

from __future__ import annotations

import json
from typing import Any, Dict, Iterator, Optional

from ._schema import FIELDS, FROM_JSON, TO_JSON


class Record:
    """A reply, a notification or one of the values inside them. Fields are attributes in
    snake_case (`reply.command_guid`); `to_dict()` gives them as a dict, `to_json()` the JSON
    form of the C++ library (its camelCase keys)."""

    __slots__ = ("_type", "_fields")

    def __init__(self, type_name: Optional[str], fields: Dict[str, Any]) -> None:
        object.__setattr__(self, "_type", type_name)
        object.__setattr__(self, "_fields", fields)

    @property
    def type_name(self) -> Optional[str]:
        """The reply or notification type name ("SuccessReply"); None for a nested value."""
        return self._type

    def __getattr__(self, name: str) -> Any:
        try:
            return self._fields[name]
        except KeyError:
            raise AttributeError(f"{self._type or 'Record'} has no field {name!r}") from None

    def __setattr__(self, name: str, value: Any) -> None:
        raise AttributeError("a Record is read-only")

    def __dir__(self) -> Iterator[str]:
        return iter(list(self._fields) + ["type_name", "to_dict", "to_json"])

    def __eq__(self, other: object) -> bool:
        return (isinstance(other, Record) and self._type == other._type
                and self._fields == other._fields)

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        inner = ", ".join(f"{key}={value!r}" for key, value in self._fields.items())
        return f"{self._type or 'Record'}({inner})"

    def to_dict(self) -> Dict[str, Any]:
        return {key: _plain(value) for key, value in self._fields.items()}

    def to_json(self) -> str:
        value = _to_json_value(self)
        return json.dumps(value, ensure_ascii=False, separators=(",", ":"))


class Notification(Record):
    """A notification: a Record that also knows its family ("ChannelStatus", ...)."""

    __slots__ = ("_family",)

    def __init__(self, type_name: str, family: str, fields: Dict[str, Any]) -> None:
        super().__init__(type_name, fields)
        object.__setattr__(self, "_family", family)

    @property
    def family(self) -> str:
        return self._family


def _plain(value: Any) -> Any:
    if isinstance(value, Record):
        return value.to_dict()
    if isinstance(value, list):
        return [_plain(item) for item in value]
    if isinstance(value, dict):
        return {key: _plain(item) for key, item in value.items()}
    return value


def _to_json_value(value: Any) -> Any:
    if isinstance(value, Record):
        out: Dict[str, Any] = {"type": value._type} if value._type is not None else {}
        for key, item in value._fields.items():
            out[TO_JSON.get(key, key)] = _to_json_value(item)
        return out
    if isinstance(value, list):
        return [_to_json_value(item) for item in value]
    if isinstance(value, dict):
        return {key: _to_json_value(item) for key, item in value.items()}
    return value


def from_json_value(value: Any) -> Any:
    """A JSON value of the library with its objects as Records (maps stay dicts)."""
    if isinstance(value, dict):
        if value and all(key in FIELDS for key in value):
            return Record(None, {FROM_JSON[key]: from_json_value(item)
                                 for key, item in value.items()})
        return {key: from_json_value(item) for key, item in value.items()}
    if isinstance(value, list):
        return [from_json_value(item) for item in value]
    return value


def record_from_json(text: str, family: Optional[str] = None) -> Record:
    """A reply (or, with its family, a notification) from its JSON text."""
    value = json.loads(text)
    type_name = value.pop("type")
    fields = {FROM_JSON.get(key, key): from_json_value(item) for key, item in value.items()}
    if family is not None:
        return Notification(type_name, family, fields)
    return Record(type_name, fields)


def to_json_fields(fields: Dict[str, Any]) -> Dict[str, Any]:
    """Keyword arguments (snake_case or the library's own camelCase, values possibly Records)
    as the JSON object of a command's parameters."""
    return {TO_JSON.get(key, key): _input(value) for key, value in fields.items()}


def _input(value: Any) -> Any:
    if isinstance(value, Record):
        value = _to_json_value(value)
        value.pop("type", None)
        return value
    if isinstance(value, dict):
        return {TO_JSON.get(key, key) if isinstance(key, str) else str(key): _input(item)
                for key, item in value.items()}
    if isinstance(value, (list, tuple, set, frozenset)):
        return [_input(item) for item in value]
    return value
