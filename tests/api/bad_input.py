"""Requests that have to be refused: what is wrong with each, and where."""


def event(**fields):
    """A good event with other fields."""
    body = {"description": "New", "start": "2030-03-01",
            "time": {"base": "clock", "at": "07:30"}, **fields}
    return {name: value for name, value in body.items() if value is not ...}


def time(**fields):
    return event(time=fields)


def repeat(**fields):
    return event(repeat=fields)


def hook(**fields):
    return {"actions": [{"hook": {"url": "http://127.0.0.1:9/", **fields}}]}


def nested(depth):
    return b'{"description":' + b"[" * depth + b"]" * depth + b"}"


#: Events that are refused: why, the body, and a pointer that has to be in the answer.
EVENTS = [
    ("no object", [], ""),
    ("a text", "Porch", ""),
    ("null", None, ""),
    ("no description", event(description=...), "/description"),
    ("null for a description", event(description=None), "/description"),
    ("a number for a description", event(description=7), "/description"),
    ("an empty description", event(description=""), "/description"),
    ("blanks for a description", event(description="   "), "/description"),
    ("201 characters", event(description="x" * 201), "/description"),
    ("a line end in the description", event(description="a\nb"), "/description"),
    ("a zero in the description", event(description="a\0b"), "/description"),
    ("an escape in the description", event(description="a\x1b[2Jb"), "/description"),
    ("a C1 control in the description", event(description="a\x9bb"), "/description"),
    ("no character of XML", event(description="a\uffff"), "/description"),
    ("a description that is never kept", event(description="hostcore_mediascan_event"),
     "/description"),
    ("no time", event(time=...), "/time"),
    ("a text for a time", event(time="07:30"), "/time"),
    ("a time without a base", time(at="07:30"), "/time/base"),
    ("an unknown base", time(base="moon", minutes=1), "/time/base"),
    ("a clock without a time", time(base="clock"), "/time/at"),
    ("24:00", time(base="clock", at="24:00"), "/time/at"),
    ("7:30", time(base="clock", at="7:30"), "/time/at"),
    ("seconds", time(base="clock", at="07:30:00"), "/time/at"),
    ("other digits", time(base="clock", at="०७:३०"), "/time/at"),
    ("at and minutes that differ", time(base="clock", at="07:30", minutes=1), "/time/minutes"),
    ("minutes before the day before", time(base="clock", minutes=-1441), "/time/minutes"),
    ("minutes after two days", time(base="clock", minutes=2881), "/time/minutes"),
    ("half a minute", time(base="sunset", minutes=0.5), "/time/minutes"),
    ("minutes in a text", time(base="sunset", minutes="5"), "/time/minutes"),
    ("true for minutes", time(base="sunset", minutes=True), "/time/minutes"),
    ("more than a day after sunset", time(base="sunset", minutes=1441), "/time/minutes"),
    ("minutes beyond every type", time(base="sunset", minutes=10 ** 30), "/time/minutes"),
    ("at with the sun", time(base="sunset", at="07:30"), "/time/at"),
    ("a spread below nothing", time(base="sunset", spread=-1), "/time/spread"),
    ("a spread beyond half a day", time(base="sunset", spread=721), "/time/spread"),
    ("31 February", event(start="2030-02-31"), "/start"),
    ("29 February of a common year", event(start="2030-02-29"), "/start"),
    ("29 February of 2100", event(start="2100-02-29"), "/start"),
    ("month 13", event(start="2030-13-01"), "/start"),
    ("day 0", event(start="2030-01-00"), "/start"),
    ("a day before the calendar", event(start="1970-01-01"), "/start"),
    ("year 10000", event(start="10000-01-01"), "/start"),
    ("a moment for a day", event(start="2030-01-01T00:00:00Z"), "/start"),
    ("a day with blanks", event(start=" 2030-01-01"), "/start"),
    ("a number for a day", event(start=20300101), "/start"),
    ("a list for a repeat", event(repeat=[]), "/repeat"),
    ("a repeat without a unit", repeat(every=2), "/repeat/unit"),
    ("an hour for a unit", repeat(unit="hour"), "/repeat/unit"),
    ("every 0 days", repeat(unit="day", every=0), "/repeat/every"),
    ("every -1 days", repeat(unit="day", every=-1), "/repeat/every"),
    ("every 1000001 days", repeat(unit="day", every=1000001), "/repeat/every"),
    ("every 1.5 days", repeat(unit="day", every=1.5), "/repeat/every"),
    ("a week without days", repeat(unit="week"), "/repeat/on"),
    ("no days", repeat(unit="week", on=[]), "/repeat/on"),
    ("a day by its full name", repeat(unit="week", on=["monday"]), "/repeat/on/0"),
    ("a day twice", repeat(unit="week", on=["mon", "tue", "mon"]), "/repeat/on/2"),
    ("a day by number", repeat(unit="week", on=[1]), "/repeat/on/0"),
    ("days of a month by weekday", repeat(unit="month", on=["mon"]), "/repeat/on"),
    ("nth of weeks", repeat(unit="week", on=["mon"], nth={"week": 1, "weekday": "mon"}),
     "/repeat/nth"),
    ("a fifth week", repeat(unit="month", nth={"week": 5, "weekday": "mon"}), "/repeat/nth/week"),
    ("week 0", repeat(unit="month", nth={"week": 0, "weekday": "mon"}), "/repeat/nth/week"),
    ("the first by name", repeat(unit="month", nth={"week": "first", "weekday": "mon"}),
     "/repeat/nth/week"),
    ("nth without a weekday", repeat(unit="year", nth={"week": 1}), "/repeat/nth/weekday"),
    ("an end before the start", repeat(unit="day", until="2030-02-28"), "/repeat/until"),
    ("an end that is no day", repeat(unit="day", until="2030-02-30"), "/repeat/until"),
    ("an id", event(id=7), "/id"),
    ("an unknown field", event(colour="red"), "/colour"),
    ("an unknown field in the time", time(base="sunset", offset=5), "/time/offset"),
    ("an unknown field in the repeat", repeat(unit="day", times=3), "/repeat/times"),
    ("what only answers hold", event(next=None), "/next"),
    ("what the scheduler calls it", event(randomize=5), "/randomize"),
    ("programming with an unknown field", event(programming={"on": True}), "/programming/on"),
    ("programming that is a list", event(programming=[]), "/programming"),
]

#: Programming that is refused.
PROGRAMMING = [
    ("enabled by a number", {"enabled": 1}, "/enabled"),
    ("paused until never", {"paused_until": "never"}, "/paused_until"),
    ("paused until 31 April", {"paused_until": "2030-04-31"}, "/paused_until"),
    ("an unknown policy", {"catch_up": {"policy": "sometimes"}}, "/catch_up/policy"),
    ("within 0 minutes", {"catch_up": {"policy": "within", "minutes": 0}}, "/catch_up/minutes"),
    ("51 actions", {"actions": [{"command": {"argv": ["/bin/true"]}}] * 51}, "/actions"),
    ("an action that does nothing", {"actions": [{}]}, "/actions/0"),
    ("an action that does two things",
     {"actions": [{"command": {"argv": ["/bin/true"]},
                   "variable": {"device": 1, "variable": 2, "value": ""}}]}, "/actions/0"),
    ("a file's URL", hook(url="file:///etc/passwd"), "/actions/0/hook/url"),
    ("no URL", hook(url="hub.local"), "/actions/0/hook/url"),
    ("a header with a line end", hook(headers={"X": "a\r\nY: b"}), "/actions/0/hook/headers/X"),
    ("a header of a wrong name", hook(headers={"X Y": "a"}), "/actions/0/hook/headers/X Y"),
    ("a method of its own", hook(method="BREW"), "/actions/0/hook/method"),
    ("an unknown placeholder", hook(body="{colour}"), "/actions/0/hook/body"),
    ("a hook that waits forever", hook(timeout=301), "/actions/0/hook/timeout"),
    ("no program", {"actions": [{"command": {"argv": []}}]}, "/actions/0/command/argv"),
    ("a program that is no text", {"actions": [{"command": {"argv": [1]}}]},
     "/actions/0/command/argv/0"),
    ("a zero in an argument", {"actions": [{"command": {"argv": ["/bin/echo", "a\0b"]}}]},
     "/actions/0/command/argv/1"),
    ("a delay beyond a day",
     {"actions": [{"delay": 86401, "command": {"argv": ["/bin/true"]}}]}, "/actions/0/delay"),
    ("an unknown trigger", {"actions": [{"on": "pull", "command": {"argv": ["/bin/true"]}}]},
     "/actions/0/on"),
    ("a condition of no kind", {"actions": [{"if": {}, "command": {"argv": ["/bin/true"]}}]},
     "/actions/0/if/kind"),
    ("midnight compared", {"actions": [{"if": {"kind": "time", "is": "eq", "time": "00:00"},
                                        "command": {"argv": ["/bin/true"]}}]},
     "/actions/0/if/time"),
]

#: Other requests whose fields are wrong: method, target, body, pointer.
FIELDS = [
    ("PUT", "/events/1", event(start=...), "/start"),
    ("PUT", "/events/1", event(id=2), "/id"),
    ("PUT", "/events/1", event(programming={}), "/programming"),
    ("PATCH", "/events/1", {"description": None}, "/description"),
    ("PATCH", "/events/1", {"time": {"at": "25:00"}}, "/time/at"),
    ("PATCH", "/events/1", {"repeat": {"unit": "week"}}, "/repeat/on"),
    ("PATCH", "/events/1", [1], ""),
    ("PATCH", "/events/1", {"start": "2031-02-29"}, "/start"),
    ("POST", "/events/1/duplicate", {}, "/description"),
    ("POST", "/events/1/duplicate", {"description": "Copy", "id": 3}, "/id"),
    ("POST", "/events/1/press", {"button": "pull"}, "/button"),
    ("POST", "/events/1/press", {"knob": "push"}, "/knob"),
    ("POST", "/preview", event(id=99), "/id"),
    ("POST", "/actions/test", {}, "/action"),
    ("POST", "/actions/test", {"action": {"command": {"argv": ["/bin/true"]}}, "event": 99},
     "/event"),
    ("POST", "/conditions/test", {"condition": {"kind": "weekday", "is": "between", "from": "fri",
                                                "to": "mon"}}, "/condition/to"),
    ("POST", "/conditions/test", {"condition": {"kind": "day", "is": "eq", "days": [32]}},
     "/condition/days/0"),
    ("POST", "/conditions/test", {"condition": {"kind": "leap", "is": "eq"}}, "/condition/is"),
    ("PATCH", "/project", {"name": ""}, "/name"),
    ("PATCH", "/project", {"name": "x" * 201}, "/name"),
    ("PATCH", "/project", {"place": {"latitude": 90.0001}}, "/place/latitude"),
    ("PATCH", "/project", {"place": {"longitude": "13"}}, "/place/longitude"),
    ("PATCH", "/project", {"place": None}, "/place"),
    ("PATCH", "/project", {"away_until": "tomorrow"}, "/away_until"),
    ("PATCH", "/project", {"timezone": "UTC"}, "/timezone"),
    ("PUT", "/variables/1/2001", {"value": 1}, "/value"),
    ("PUT", "/variables/1/2001", {"value": "x" * 1001}, "/value"),
]

#: Texts that are no JSON, for POST /events.
TEXTS = [
    ("nothing", b""),
    ("half an object", b'{"description":"x"'),
    ("two documents", b'{} {}'),
    ("a comma at the end", b'{"description":"x",}'),
    ("single quotes", b"{'description':'x'}"),
    ("a comment", b'{/* */"description":"x"}'),
    ("NaN", b'{"time":{"minutes":NaN}}'),
    ("Infinity", b'{"time":{"minutes":Infinity}}'),
    ("a number beyond double", b'{"time":{"minutes":1e999}}'),
    ("a number with a leading zero", b'{"time":{"minutes":007}}'),
    ("hexadecimal", b'{"time":{"minutes":0x10}}'),
    ("a duplicate key", b'{"description":"a","description":"b","time":{"base":"sunset"}}'),
    ("a duplicate key inside",
     b'{"description":"a","time":{"base":"sunset","minutes":1,"minutes":2}}'),
    ("a duplicate key that is written otherwise",
     b'{"description":"a","\\u0064escription":"b","time":{"base":"sunset"}}'),
    ("bytes that are no UTF-8", b'{"description":"a\xff","time":{"base":"sunset"}}'),
    ("an overlong form", b'{"description":"\xc0\xaf","time":{"base":"sunset"}}'),
    ("half a surrogate", b'{"description":"\\ud800","time":{"base":"sunset"}}'),
    ("a surrogate in UTF-8", b'{"description":"\xed\xa0\x80","time":{"base":"sunset"}}'),
    ("UTF-16", '{"description":"x","time":{"base":"sunset"}}'.encode("utf-16")),
    ("Latin-1", '{"description":"Tür","time":{"base":"sunset"}}'.encode("latin-1")),
    ("a raw line end in a text", b'{"description":"a\nb","time":{"base":"sunset"}}'),
    ("a zero byte", b'{"description":"x"}\0'),
    ("seventeen levels", nested(16)),
    ("a hundred thousand levels", nested(100000)),
    ("XML", b"<event/>"),
]

#: XML that is no schedule, for an import and its preview.
SCHEDULES = [
    ("no end", b"<event_data><events>"),
    ("another root", b"<song/>"),
    ("a document type", b'<!DOCTYPE a [<!ENTITY b "c">]><events>&b;</events>'),
    ("a file from the disk",
     b'<!DOCTYPE a [<!ENTITY b SYSTEM "file:///etc/passwd">]><events>&b;</events>'),
    ("bytes that are no UTF-8", b"<events>\xff</events>"),
    ("a zero", b"<events>\0</events>"),
    ("three hundred levels", b"<events>" + b"<a>" * 300 + b"</a>" * 300 + b"</events>"),
    ("JSON", b"{}"),
]

#: Targets that are refused: method, target, status.
TARGETS = [
    ("GET", "/events/0", 404), ("GET", "/events/-1", 404), ("GET", "/events/01", 404),
    ("GET", "/events/1x", 404), ("GET", "/events/99999999999999999999", 404),
    ("GET", "/events/2", 404), ("PUT", "/events/2", 404), ("DELETE", "/events/2", 404),
    ("GET", "/events/", 404), ("GET", "/event", 404), ("GET", "/EVENTS", 404),
    ("GET", "/events/1/programming/x", 404), ("GET", "/project/backups/0", 404),
    ("GET", "/project/backups/2", 404), ("POST", "/project/backups/2/restore", 404),
    ("POST", "/events/2/restore", 404), ("POST", "/events/2/run", 404),
    ("DELETE", "/events", 405), ("POST", "/status", 405), ("PUT", "/preview", 405),
    ("PATCH", "/today", 405), ("DELETE", "/project", 405), ("GET", "/preview", 405),
    ("GET", "/events?limit=-1", 400), ("GET", "/events?limit=1e3", 400),
    ("GET", "/events?limit=", 400), ("GET", "/events?offset=x", 400),
    ("GET", "/events?sort=id", 400), ("GET", "/events?q=a&q=b", 400),
    ("GET", "/events?limit=99999999999999999999", 400), ("GET", "/events/1?full=1", 400),
    ("GET", "/occurrences?from=2030-02-30", 400),
    ("GET", "/occurrences?from=2030-01-02&to=2030-01-01", 400),
    ("GET", "/occurrences?from=2030-01-01&to=2041-01-01", 400),
    ("GET", "/occurrences?limit=10001", 400), ("GET", "/occurrences?event=2", 404),
    ("GET", "/sun?date=today", 400), ("GET", "/sun?date=", 400), ("GET", "/sun/year?year=0", 400),
    ("GET", "/sun/year?year=2030.5", 400), ("GET", "/journal?kind=fires", 400),
    ("GET", "/journal?from=2030-01-02&to=2030-01-01", 400),
    ("GET", "/journal?from=2030-01-01T00:00:00", 400), ("GET", "/journal?before=0", 400),
    ("GET", "/journal?limit=1001", 400), ("GET", "/journal?event=one", 400),
    ("GET", "/project/export?format=json", 400), ("PUT", "/variables/x/1", 404),
    ("PUT", "/variables/1/-1", 404), ("GET", "/events?q=%ff", 400), ("GET", "/events?q=%zz", 400),
    ("GET", "/events?q=%00", 400),
]

#: Requests that are refused before they are one: why, the bytes, the statuses that will do.
RAW = [
    ("no host", b"GET /api/v1/events HTTP/1.1\r\n\r\n", (400,)),
    ("two hosts", b"GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\nHost: evil\r\n\r\n", (400,)),
    ("a foreign host", b"GET /api/v1/events HTTP/1.1\r\nHost: evil.example\r\n\r\n", (403, 421)),
    ("a foreign page", b"DELETE /api/v1/events/1 HTTP/1.1\r\nHost: localhost\r\n"
                       b"Origin: http://evil.example\r\n\r\n", (403,)),
    ("two lengths", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                    b"Content-Type: application/json\r\nContent-Length: 2\r\n"
                    b"Content-Length: 3\r\n\r\n{}x", (400,)),
    ("a length and chunks", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                            b"Content-Type: application/json\r\nContent-Length: 6\r\n"
                            b"Transfer-Encoding: chunked\r\n\r\n0\r\n\r\nX", (400,)),
    ("a length that is none", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                              b"Content-Length: 2x\r\n\r\n{}", (400,)),
    ("a negative length", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                          b"Content-Length: -2\r\n\r\n{}", (400,)),
    ("a length beyond every type", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                                   b"Content-Length: 99999999999999999999\r\n\r\n{}", (400, 413)),
    ("a body that is too long", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                                b"Content-Type: application/json\r\n"
                                b"Content-Length: 1048577\r\n\r\n", (413,)),
    ("chunks that are none", b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                             b"Content-Type: application/json\r\n"
                             b"Transfer-Encoding: chunked\r\n\r\nzz\r\n{}\r\n0\r\n\r\n", (400,)),
    ("a blank before the colon", b"GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                                 b"Content-Length : 2\r\n\r\n", (400,)),
    ("a folded header", b"GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\nX: a\r\n b\r\n\r\n",
     (400,)),
    ("a header with a zero", b"GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\nX: a\0b\r\n\r\n",
     (400,)),
    ("a header without a colon", b"GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\nX\r\n\r\n",
     (400,)),
    ("a very long header", b"GET /api/v1/events HTTP/1.1\r\nHost: localhost\r\nX: "
                           + b"a" * 100000 + b"\r\n\r\n", (400, 431)),
    ("a very long path", b"GET /api/v1/" + b"a" * 100000 + b" HTTP/1.1\r\nHost: localhost\r\n\r\n",
     (400, 414, 431)),
    ("no version", b"GET /api/v1/events\r\n\r\n", (400,)),
    ("half a percent", b"GET /api/v1/events/%3 HTTP/1.1\r\nHost: localhost\r\n\r\n", (400, 404)),
    ("a zero in the path", b"GET /api/v1/events/1%00 HTTP/1.1\r\nHost: localhost\r\n\r\n",
     (400, 404)),
    ("a way out", b"GET /api/v1/../../etc/passwd HTTP/1.1\r\nHost: localhost\r\n\r\n", (400, 404)),
    ("a blank in the target", b"GET /api/v1/events/1 x HTTP/1.1\r\nHost: localhost\r\n\r\n",
     (400,)),
]
