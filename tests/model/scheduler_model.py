#!/usr/bin/env python3
"""Plays a scenario against the model of the scheduler agent and writes its transcript.

    scheduler_model.py FILE      (`-` for standard input; the zone is TZ's)

A slow, plain second implementation of what `vexalink play` does, for comparing the two line by line.
On bad input: one line `FILE:LINE: what is wrong` on standard error, exit status 2.
"""

import json
import re
import sys
from typing import Callable, List, Optional, TextIO

import clib
import conditions
from agent import INTERFACE_ID, Agent
from xmltree import Node, parse, serialise

_TIME_TEXT = re.compile(r"(\d{4})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)", re.ASCII)


class BadInput(Exception):
    """What is wrong with an input line."""


class Host:
    """The controller's side: a clock that stands still, and a record of every operation called."""

    def __init__(self, write: Callable[[dict], None]):
        self.write = write
        self.now = 0
        self.agent: Optional[Agent] = None
        self.last_timer = 0
        self.answers = {"RegisterQuery": 1, "RegisterBinding": 0, "CreateBindMessage": True,
                        "VmRegisterListener": []}

    def _call(self, operation: str, **values) -> None:
        self.write({"call": operation, **values})

    def assert_write(self, file: str, line: int) -> None:
        self._call("AssertWrite", file=file, line=line)

    def register_query(self, iid: str) -> int:
        result = self.answers["RegisterQuery"]
        self._call("RegisterQuery", iid=iid, result=result)
        return result

    def unregister_query(self, iid: str) -> None:
        self._call("UnregisterQuery", iid=iid)

    def add_timer(self, interval: int, second: int) -> int:
        self.last_timer += 1
        self._call("AddTimer", interval=interval, second=second, result=self.last_timer)
        return self.last_timer

    def kill_timer(self, timer: int) -> None:
        self._call("KillTimer", timer=timer)

    def vm_register_listener(self, device: int, variable: int) -> None:
        self._call("VmRegisterListener", device=device, variable=variable)
        for known in self.answers["VmRegisterListener"]:
            if (known["device"], known["variable"]) == (device, variable):
                self.agent.on_variable_changed(device, variable, known["value"])

    def vm_unregister_listener(self, device: int, variable: int) -> None:
        self._call("VmUnregisterListener", device=device, variable=variable)

    def register_binding(self, event_id: int, name: str) -> int:
        result = self.answers["RegisterBinding"]
        self._call("RegisterBinding", id=event_id, type=1, name=name, result=result)
        return result

    def register_binding_class(self, event_id: int, class_name: str) -> None:
        self._call("RegisterBindingClass", id=event_id, **{"class": class_name})

    def unregister_binding(self, event_id: int) -> None:
        self._call("UnregisterBinding", id=event_id)

    def fire_event(self, event_id: int) -> None:
        self._call("FireEvent", event=event_id)

    def create_bind_message(self) -> bool:
        self._call("CreateBindMessage")
        return self.answers["CreateBindMessage"] is not None

    def send_bound_call(self, binding: int, command: str) -> None:
        self._call("SendBoundCall", binding=binding, command=command, argument=1)

    def con_send_data_to_ui(self, node: Node) -> None:
        self._call("ConSendDataToUI", xml=serialise(node))

    def dm_invalidate_state(self) -> None:
        self._call("DmInvalidateState")

    def em_remove_by_owner(self, owner: int, kind: int) -> None:
        self._call("EmRemoveByOwner", owner=owner, kind=kind)

    def log_message(self, text: str) -> None:
        self._call("LogMessage", level=7, text=text)


# Reading keys -----------------------------------------------------------------------------------------

def _is_integer(value) -> bool:
    return isinstance(value, int) and not isinstance(value, bool) and -2**63 <= value < 2**63


def _is_text(value) -> bool:
    return isinstance(value, str)


def _take(action: dict, key: str, fits: Callable, what: str, **default):
    if key not in action and "default" in default:
        return default["default"]
    value = action.get(key)
    if not fits(value):
        raise BadInput(f'"{key}" is {json.dumps(value)}; give {what}')
    return value


def _integer(action: dict, key: str, **default) -> int:
    return _take(action, key, _is_integer, "an integer", **default)


def _text(action: dict, key: str, **default) -> str:
    return _take(action, key, _is_text, "a text", **default)


def _instant(action: dict, key: str) -> int:
    what = "seconds since the epoch or YYYY-MM-DDTHH:MM:SS"
    value = _take(action, key, lambda v: _is_integer(v) or _is_text(v), what)
    if _is_integer(value):
        return value
    match = _TIME_TEXT.fullmatch(value)
    if not match:
        raise BadInput(f'"{key}" is {json.dumps(value)}; give {what}')
    return clib.make_time(*(int(field) for field in match.groups()), -1)


def _params(action: dict) -> dict:
    def fits(value):
        return isinstance(value, dict) and all(_is_text(text) for text in value.values())

    return _take(action, "params", fits, "an object of texts", default={})


def _arguments(action: dict, types: tuple) -> list:
    def fits(value):
        return isinstance(value, list) and len(value) == len(types) and all(
            _is_text(item) if kind is str else _is_integer(item) or (kind is float and isinstance(item, float))
            for item, kind in zip(value, types))

    return _take(action, "args", fits, f"a list of {len(types)} fitting values",
                 **({} if types else {"default": []}))


def _xml(action: dict, key: str) -> Optional[Node]:
    text = _take(action, key, lambda value: value is None or _is_text(value), "XML", default=None)
    if text is None:
        return None
    node = parse(text)
    if node is None:
        raise BadInput(f'"{key}" is not well-formed XML')
    return node


# Actions ----------------------------------------------------------------------------------------------

class Player:
    """Carries out actions one by one."""

    _INTERFACE = {
        "GetDeviceId": (Agent.get_device_id, ()),
        "AddDailyEvent": (Agent.add_daily_event, (str, int, int)),
        "AddEveryXDaysEvent": (Agent.add_every_x_days_event, (str, int, int)),
        "AddDaysOfWeekEvent": (Agent.add_days_of_week_event, (str, int, int)),
        "DoesEventExist": (Agent.does_event_exist, (int,)),
        "GetEventIdByDescription": (Agent.get_event_id_by_description, (str,)),
        "DeleteEvent": (Agent.delete_event, (int,)),
    }

    def __init__(self, write: Callable[[dict], None]):
        self.host = Host(write)
        self.write = write

    def play(self, action: dict) -> None:
        name = action.get("do")
        handler = getattr(self, "_do_" + name, None) if _is_text(name) else None
        if handler is None:
            raise BadInput(f'"do" is {json.dumps(name)}; that is no action')
        self.write({"done": name, **(handler(action) or {})})

    def _agent(self) -> Agent:
        if self.host.agent is None:
            raise BadInput("there is no agent; create one first")
        return self.host.agent

    def _timer(self) -> int:
        return self.host.agent.timer_id

    def _do_clock(self, action):
        self.host.now = _instant(action, "at")
        return {"now": self.host.now}

    def _do_seed(self, action):
        clib.srand(_integer(action, "value"))

    def _do_create(self, _action):
        if self.host.agent is not None:
            raise BadInput("there is an agent already")
        self.host.agent = Agent(self.host)

    def _do_initialize(self, action):
        agent = self._agent()
        _xml(action, "config")
        return {"result": agent.initialize(_xml(action, "persisted"))}

    def _do_tick(self, action):
        agent = self._agent()
        agent.on_timer_expired(_integer(action, "timer", default=self._timer()))

    def _do_run(self, action):
        agent = self._agent()
        until = _instant(action, "until")
        step = _integer(action, "step", default=1)
        if step < 1:
            raise BadInput(f'"step" is {step}; give 1 or more')
        ticks = 0
        while self.host.now + step <= until:
            self.host.now += step
            agent.on_timer_expired(self._timer())
            ticks += 1
        self.host.now = until
        return {"ticks": ticks}

    def _do_variable(self, action):
        self._agent().on_variable_changed(_integer(action, "device"), _integer(action, "variable"),
                                          _text(action, "value"))

    def _do_command(self, action):
        return {"result": self._agent().execute_command(_text(action, "name"), _params(action))}

    def _do_request(self, action):
        reply = self._agent().ui_request(_text(action, "name"), _params(action))
        return {"reply": None if reply is None else serialise(reply)}

    def _do_condition(self, action):
        return {"result": conditions.test_condition(self._agent(), _text(action, "name"), _params(action))}

    def _do_persist(self, _action):
        return {"state": serialise(self._agent().get_persist_state())}

    def _do_interface(self, action):
        agent = self._agent()
        operation, types = _take(self._INTERFACE, _text(action, "call"), lambda value: value is not None,
                                 "an operation of the interface")
        return {"result": operation(agent, *_arguments(action, types))}

    def _do_query(self, action):
        self._agent()
        return {"found": _text(action, "iid") == INTERFACE_ID}

    def _do_compare(self, action):
        function, types = _take(conditions.COMPARISONS, _text(action, "call"), lambda value: value is not None,
                                "a comparison function")
        arguments = [clib.int32(argument) if kind is int else argument
                     for argument, kind in zip(_arguments(action, types), types)]
        return {"result": function(self.host.now, *arguments)}

    def _do_host(self, action):
        operation = _text(action, "call")
        fits = {
            "RegisterQuery": _is_integer,
            "RegisterBinding": _is_integer,
            "CreateBindMessage": lambda value: value is None or value is True,
            "VmRegisterListener": lambda value: isinstance(value, list) and all(
                isinstance(item, dict) and _is_integer(item.get("device")) and _is_integer(item.get("variable"))
                and _is_text(item.get("value")) for item in value),
        }.get(operation)
        if fits is None:
            raise BadInput(f'"call" is {json.dumps(operation)}; its answer cannot be set')
        if "result" not in action:
            raise BadInput('"result" is missing')
        self.host.answers[operation] = _take(action, "result", fits, "an answer that fits")

    def _do_destroy(self, _action):
        self._agent().destroy()
        self.host.agent = None


def play_lines(lines, name: str, output: TextIO, errors: TextIO) -> int:
    """Plays the lines of a scenario; the exit status."""
    def write(line: dict) -> None:
        output.write(json.dumps(line, ensure_ascii=False) + "\n")

    player = Player(write)
    for number, line in enumerate(lines, start=1):
        if not line.strip() or line.startswith("#"):
            continue
        try:
            action = json.loads(line)
            if not isinstance(action, dict):
                raise BadInput("the line is no JSON object")
            player.play(action)
        except json.JSONDecodeError as error:
            errors.write(f"{name}:{number}: not valid JSON: {error.msg}\n")
            return 2
        except BadInput as error:
            errors.write(f"{name}:{number}: {error}\n")
            return 2
    return 0


def main(arguments: List[str]) -> int:
    if len(arguments) != 1:
        print("usage: scheduler_model.py FILE", file=sys.stderr)
        return 2
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    name = arguments[0]
    if name == "-":
        sys.stdin.reconfigure(encoding="utf-8", newline="\n")
        return play_lines(sys.stdin, name, sys.stdout, sys.stderr)
    with open(name, encoding="utf-8", newline="\n") as lines:
        return play_lines(lines, name, sys.stdout, sys.stderr)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
