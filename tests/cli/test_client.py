"""What the commands send, what they make of the answers, and how they end, against a server that
answers as it is told to."""

import json
import os
import re
import subprocess
import tempfile
import unittest

from client import PROGRAM, environment, run
from fake_controller import Answer, FakeController, problem

PROJECT = {"id": "x", "name": "House", "away_until": None, "now": "2026-11-21T16:04:00+01:00",
           "version": "1.0.0", "events": 2, "timezone": {"name": "Europe/Berlin"},
           "place": {"latitude": 52.5, "longitude": 13.4, "guessed": False}}
PLAIN = {"enabled": True, "paused_until": None, "skip_next": False,
         "catch_up": {"policy": "within", "minutes": 10}, "actions": []}


def event(number=7, description="Porch", **more):
    return {"id": number, "description": description, "start": "2026-11-20",
            "time": {"base": "sunset", "minutes": -30, "spread": 10},
            "repeat": {"unit": "week", "every": 2, "on": ["mon", "fri"], "until": "2027-03-31"},
            "next": "2026-12-04T15:23:00+01:00",
            "programming": {"enabled": True, "paused_until": None, "skip_next": False,
                            "actions": 1}} | more


def events(*all_events):
    return {"events": list(all_events), "total": len(all_events)}


PREVIEW = {"event": event(), "sentence": "30 minutes before sunset, every second week",
           "occurrences": [{"date": "2026-12-04", "time": "2026-12-04T15:23:00+01:00"},
                           {"date": "2026-12-14", "time": "2026-12-14T15:22:00+01:00"}],
           "warnings": [{"code": "past-midnight", "text": "it may lead over midnight"}]}


class ClientTest(unittest.TestCase):
    def serve(self, routes):
        controller = FakeController({"GET /project": PROJECT} | routes)
        self.addCleanup(controller.close)
        return controller

    def ends(self, result, status):
        self.assertEqual(result.status, status, result)
        if status in (0, 10):
            return
        self.assertEqual(result.out, "", result)
        self.assertTrue(result.err.startswith("vexalink: "), result)


class WhatIsSent(ClientTest):
    def test_add_sends_the_whole_event_with_its_programming(self):
        house = self.serve({"POST /events": Answer(event(), 201), "POST /preview": PREVIEW})
        result = run("add", "Porch", "--at", "sunset-30", "--every", "2 weeks on mon,fri",
                     "--until", "2027-03-31", "--start", "tomorrow", "--spread", "10",
                     "--hook", "http://hub/x", "--method", "PUT", "--header", "X-Key: abc",
                     "--header", "X-Other: d", "--body", "{event}", "--timeout", "30", "--retries",
                     "0", "--if", "time is night", "--on", "push", "--delay", "5m",
                     "--catch-up", "2h", "--disabled", url=house.url)
        self.ends(result, 0)
        sent = next(r for r in house.requests if r.path == "/api/v1/events")
        self.assertEqual(sent.headers["content-type"], "application/json")
        self.assertRegex(sent.headers["vexalink-actor"], "^cli:.+")
        self.assertEqual(sent.json, {
            "description": "Porch", "start": "2026-11-22",
            "time": {"base": "sunset", "minutes": -30, "spread": 10},
            "repeat": {"unit": "week", "every": 2, "on": ["mon", "fri"], "until": "2027-03-31"},
            "programming": {
                "enabled": False, "catch_up": {"policy": "within", "minutes": 120},
                "actions": [{"on": "push", "delay": 300, "if": {"kind": "time", "is": "night"},
                             "hook": {"url": "http://hub/x", "method": "PUT",
                                      "headers": {"X-Key": "abc", "X-Other": "d"},
                                      "body": "{event}", "timeout": 30, "retries": 0}}]}})
        self.assertEqual(result.out,
                         'added event 7 "Porch"\n'
                         "30 minutes before sunset, every second week\n"
                         "next: Fri 2026-12-04 15:23\n"
                         "warning: it may lead over midnight\n")

    def test_add_leaves_out_what_is_not_given(self):
        house = self.serve({"POST /events": Answer(event(), 201), "POST /preview": PREVIEW})
        result = run("add", "x", "--at", "7am", "--run", "say 'it is  dark' {event}", url=house.url)
        self.ends(result, 0)
        self.assertEqual(house.requests[0].json, {
            "description": "x", "time": {"base": "clock", "minutes": 420}, "repeat": None,
            "programming": {"actions": [{"command": {"argv": ["say", "it is  dark", "{event}"]}}]}})

    def test_add_tells_what_no_shell_will_read(self):
        house = self.serve({"POST /events": Answer(event(), 201), "POST /preview": PREVIEW})
        result = run("add", "x", "--at", "7am", "--run", "date > /tmp/x", url=house.url)
        self.ends(result, 0)
        self.assertIn('note: ">" is passed as it is, no shell reads it', result.err)

    def test_a_dry_run_adds_nothing(self):
        house = self.serve({"POST /preview": PREVIEW})
        result = run("add", "Porch", "--at", "sunset-30", "--run", "true", "--dry-run",
                     url=house.url)
        self.ends(result, 0)
        self.assertEqual([r.path for r in house.requests], ["/api/v1/preview"])
        self.assertEqual(result.out.splitlines()[1:3],
                         ["next: Fri 2026-12-04 15:23", "next: Mon 2026-12-14 15:22"])
        self.assertEqual(result.out.splitlines()[-1], "action: run true")

    def test_modify_sends_only_what_is_given(self):
        rows = [
            (["--at", "07:30"], {"time": {"base": "clock", "minutes": 450, "at": None}}),
            (["--spread", "0"], {"time": {"spread": 0}}),
            (["--description", "New"], {"description": "New"}),
            (["--until", "never"], {"repeat": {"until": None}}),
            (["--until", "tomorrow"], {"repeat": {"until": "2026-11-22"}}),
            (["--start", "2026-12-01"], {"start": "2026-12-01"}),
            (["--every", "month on the last fri"],
             {"repeat": {"unit": "month", "every": 1, "nth": {"week": "last", "weekday": "fri"},
                         "on": None}}),
            (["--every", "3 days"],
             {"repeat": {"unit": "day", "every": 3, "on": None, "nth": None}}),
            (["--every", "once"], {"repeat": None}),
        ]
        for options, patch in rows:
            with self.subTest(options=options):
                house = self.serve({"GET /events/7": event(), "PATCH /events/7": event(),
                                    "POST /preview": PREVIEW})
                result = run("modify", "7", *options, url=house.url)
                self.ends(result, 0)
                sent = [r for r in house.requests if r.method == "PATCH"]
                self.assertEqual([r.json for r in sent], [patch])
                self.assertEqual(sent[0].headers["content-type"], "application/merge-patch+json")

    def test_modify_changes_the_only_action(self):
        action = {"on": "event", "delay": 60, "if": {"kind": "leap"},
                  "hook": {"method": "POST", "url": "http://a/", "headers": {"A": "b"}}}
        rows = [
            (["--delay", "0"], action | {"delay": 0}),
            (["--if", "none"], {"on": "event", "delay": 60, "hook": action["hook"]}),
            (["--header", "C: d"],
             action | {"hook": action["hook"] | {"headers": {"A": "b", "C": "d"}}}),
            (["--run", "true"], {"on": "event", "delay": 60, "if": {"kind": "leap"},
                                 "command": {"argv": ["true"]}}),
        ]
        for options, changed in rows:
            with self.subTest(options=options):
                house = self.serve({
                    "GET /events/7": event(), "POST /preview": PREVIEW,
                    "GET /events/7/programming": Answer(PLAIN | {"actions": [action]},
                                                        headers={"ETag": '"p1"'}),
                    "PATCH /events/7/programming": PLAIN})
                self.ends(run("modify", "7", *options, url=house.url), 0)
                sent = [r for r in house.requests if r.method == "PATCH"]
                self.assertEqual([r.json for r in sent], [{"actions": [changed]}])
                self.assertEqual(sent[0].headers["if-match"], '"p1"')

    def test_modify_does_not_guess_among_several_actions(self):
        house = self.serve({"GET /events/7": event(),
                            "GET /events/7/programming": PLAIN | {"actions": [{}, {}]}})
        result = run("modify", "7", "--delay", "5", url=house.url)
        self.ends(result, 2)
        self.assertIn('event 7 "Porch" has 2 actions; change them one by one', result.err)

    def test_modify_says_where_it_has_stopped(self):
        house = self.serve({"GET /events/7": event(), "PATCH /events/7": event(),
                            "PATCH /events/7/programming": problem(422, "invalid", "no")})
        result = run("modify", "7", "--at", "noon", "--catch-up", "always", url=house.url)
        self.ends(result, 4)
        self.assertIn("the event is changed, but not what it does: ", result.err)

    def test_versions_are_shown_and_sent(self):
        house = self.serve({
            "GET /events/7": Answer(event(), headers={"ETag": '"e1"'}),
            "GET /events/7/programming": Answer(PLAIN, headers={"ETag": '"p1"'}),
            "DELETE /events/7": Answer(b"", 204)})
        shown = json.loads(run("show", "7", "--json", url=house.url).out)
        self.assertEqual((shown["version"], shown["programming_version"]), ('"e1"', '"p1"'))
        self.ends(run("delete", "7", "--if-match", '"e1"', url=house.url), 0)
        self.assertEqual(house.requests[-1].headers["if-match"], '"e1"')
        self.assertEqual(house.requests[-1].body, b"")

    def test_actions_are_added_changed_and_removed_where_nobody_else_has_changed_them(self):
        first, second = {"on": "event", "hook": {"url": "http://a/"}}, {"variable": {
            "device": 1, "variable": 2, "value": "x"}}
        new = {"command": {"argv": ["true"]}}
        rows = [
            (["--run", "true"], [first, second, new]),
            (["--remove", "1"], [second]),
            (["--change", "1", "--delay", "5"], [first | {"delay": 5}, second]),
            (["--change", "2", "--set", "1.2=y"],
             [first, {"variable": {"device": 1, "variable": 2, "value": "y"}}]),
        ]
        for options, expected in rows:
            with self.subTest(options=options):
                house = self.serve({
                    "GET /events/7": event(),
                    "GET /events/7/programming": Answer(PLAIN | {"actions": [first, second]},
                                                        headers={"ETag": '"p1"'}),
                    "PATCH /events/7/programming": PLAIN})
                self.ends(run("actions", "7", *options, url=house.url), 0)
                self.assertEqual(house.requests[-1].json, {"actions": expected})
                self.assertEqual(house.requests[-1].headers["if-match"], '"p1"')

    def test_actions_are_replaced_from_what_json_shows(self):
        house = self.serve({"GET /events/7": event(), "GET /events/7/programming": PLAIN,
                            "PUT /events/7/programming": PLAIN})
        shown = run("actions", "7", "--json", url=house.url)
        self.ends(run("actions", "7", "--replace", "-", url=house.url, stdin=shown.out), 0)
        self.assertEqual(house.requests[-1].json, PLAIN)
        result = run("actions", "7", "--replace", "-", url=house.url, stdin="{")
        self.ends(result, 2)
        self.assertIn('--replace "-": it is no JSON', result.err)

    def test_one_action_is_tried(self):
        outcome = {"outcome": "failed", "detail": "500", "output": "a\n\x1b[2Jb\n",
                   "milliseconds": 12}
        action = {"hook": {"url": "http://a/"}}
        house = self.serve({"GET /events/7": event(),
                            "GET /events/7/programming": PLAIN | {"actions": [action]},
                            "POST /actions/test": outcome})
        result = run("actions", "7", "--test", "1", url=house.url)
        self.assertEqual(result.status, 1)
        self.assertEqual(result.out, "failed: 500 (12 ms)\n  a\n  \\x1b[2Jb\n")
        self.assertEqual(house.requests[-1].json, {"action": action, "event": 7})
        result = run("actions", "7", "--test", "2", url=house.url)
        self.ends(result, 2)
        self.assertIn('there is no action 2: event 7 "Porch" has the actions 1 to 1', result.err)

    def test_holding_back(self):
        rows = [
            (["enable", "7"], {"enabled": True}), (["disable", "7"], {"enabled": False}),
            (["pause", "7", "--until", "tomorrow"], {"paused_until": "2026-11-22"}),
            (["resume", "7"], {"paused_until": None}), (["skip", "7"], {"skip_next": True}),
            (["skip", "7", "--undo"], {"skip_next": False}),
        ]
        for arguments, patch in rows:
            with self.subTest(arguments=arguments):
                house = self.serve({"GET /events/7": event(), "PATCH /events/7/programming": PLAIN})
                result = run(*arguments, url=house.url)
                self.ends(result, 0)
                self.assertEqual(house.requests[-1].json, patch)
                self.assertIn('event 7 "Porch"', result.out)

    def test_a_pause_ends_on_a_day_to_come(self):
        for day in ("today", "2020-12-24"):
            house = self.serve({"GET /events/7": event(), "PATCH /events/7/programming": PLAIN})
            result = run("pause", "7", "--until", day, url=house.url)
            self.ends(result, 2)
            self.assertIn("has begun, give a later one", result.err)
            self.assertNotIn("PATCH", [request.method for request in house.requests])

    def test_several_are_found_before_the_first_is_changed(self):
        house = self.serve({"GET /events/7": event()})
        self.ends(run("disable", "7", "8", url=house.url), 5)
        self.assertEqual({r.method for r in house.requests}, {"GET"})

    def test_being_away(self):
        away = PROJECT | {"away_until": "2026-12-27"}
        house = self.serve({"GET /project": [PROJECT, PROJECT, away], "PATCH /project": away})
        self.assertEqual(run("away", url=house.url).out, "the house is not away\n")
        result = run("away", "tomorrow", url=house.url)
        self.assertEqual(result.out, "the house is away: nothing is done before Sun 2026-12-27 begins\n")
        self.assertEqual(house.requests[-2].json, {"away_until": "2026-11-22"})
        house.routes["GET /project"] = PROJECT
        self.ends(run("away", "off", url=house.url), 0)
        self.assertEqual(house.requests[-2].json, {"away_until": None})

    def test_running_and_pressing(self):
        house = self.serve({"GET /events/7": event(),
                            "POST /events/7/run": Answer({"journal": 812}, 202),
                            "POST /events/7/press": Answer({"journal": 813}, 202)})
        self.assertEqual(run("run", "7", url=house.url).out,
                         'ran event 7 "Porch", row 812 of the journal\n')
        self.assertEqual(house.requests[-1].body, b"")
        self.ends(run("press", "7", url=house.url), 0)
        self.assertEqual(house.requests[-1].body, b"")
        self.ends(run("press", "7", "--button", "click", url=house.url), 0)
        self.assertEqual(house.requests[-1].json, {"button": "click"})


class WhatIsShown(ClientTest):
    def test_a_list_is_aligned_and_harmless(self):
        house = self.serve({"GET /events": events(
            event(), event(12, "玄関の灯", time={"base": "clock", "at": "07:30", "minutes": 450},
                           repeat=None, next=None),
            event(13, "\x1b[2J\u202eevil\n", programming={"enabled": False, "actions": 0}))})
        result = run("list", url=house.url)
        self.ends(result, 0)
        self.assertEqual(result.out.splitlines(), [
            "ID  DESCRIPTION          TIME           "
            "REPEATS                                    NEXT                  DOES",
            " 7  Porch                sunset-30 ±10  "
            "every 2 weeks on mon,fri until 2027-03-31  Fri 2026-12-04 15:23  1 action",
            "12  玄関の灯             07:30          "
            "once on 2026-11-20                         never                 1 action",
            "13  \\x1b[2J\\u202eevil\\n  sunset-30 ±10  "
            "every 2 weeks on mon,fri until 2027-03-31  Fri 2026-12-04 15:23  "
            "disabled, no actions"])

    def test_colours_come_when_they_are_asked_for(self):
        house = self.serve({"GET /events": events(event())})
        self.assertNotIn("\x1b", run("list", url=house.url).out)
        self.assertIn("\x1b[1m", run("list", "--color", "always", url=house.url).out)
        self.assertNotIn("\x1b", run("list", "--color", "never", url=house.url).out)
        self.assertEqual(run("list", "--color", "blue", url=house.url).status, 2)

    def test_a_long_list_comes_in_pages(self):
        many = [event(i, f"e{i}") for i in range(1, 2501)]

        def page(request):
            query = dict(part.split("=") for part in request.path.partition("?")[2].split("&"))
            begin = int(query["offset"])
            return {"events": many[begin:begin + int(query["limit"])], "total": len(many)}

        house = self.serve({"GET /events": page})
        answer = json.loads(run("list", "--json", url=house.url).out)
        self.assertEqual([e["id"] for e in answer["events"]], list(range(1, 2501)))

    def test_json_is_the_answer_in_its_order(self):
        house = self.serve({"GET /events": events(event())})
        result = run("list", "--json", url=house.url)
        self.assertEqual(json.dumps(json.loads(result.out)), json.dumps(events(event())))

    def test_all_of_an_event_is_shown(self):
        house = self.serve({
            "GET /events/7": event(),
            "GET /events/7/programming": PLAIN | {"skip_next": True, "actions": [
                {"on": "event", "delay": 0, "command": {"argv": ["say", "it is dark"]}}]}})
        result = run("show", "7", url=house.url)
        self.assertEqual(result.out,
                         'event 7 "Porch"\n'
                         "time        sunset-30 ±10\n"
                         "repeats     every 2 weeks on mon,fri until 2027-03-31\n"
                         "start       Fri 2026-11-20\n"
                         "next        Fri 2026-12-04 15:23\n"
                         "state       enabled, skips the next\n"
                         "catches up  10m\n"
                         "action 1    run say 'it is dark'\n")

    def test_what_comes_next_is_looked_for_further_and_further(self):
        def today(number, state, planned, due):
            return {"event": number, "description": f"e{number}", "base": "clock", "state": state,
                    "planned": f"2026-11-21T{planned}:00+01:00", "reason": "",
                    "due": due and f"2026-11-21T{due}:00+01:00", "drawn": None, "journal": 0}

        def occurrences(request):
            found = []
            if re.search("to=([0-9-]+)", request.path).group(1) > "2027":
                found.append({"event": 9, "description": "Bins", "date": "2027-05-01",
                              "time": "2027-05-01T07:00:00+02:00", "base": "clock"})
            return {"occurrences": found, "truncated": False}

        spread = {"base": "clock", "minutes": 0, "spread": 90}
        house = self.serve({
            "GET /occurrences": occurrences,
            "GET /today": {"date": "2026-11-21", "occurrences": [
                today(1, "fired", "17:00", "16:01"), today(2, "pending", "17:30", "18:50"),
                today(3, "pending", "18:00", "18:00"), today(4, "pending", "19:00", None)]},
            "GET /events": events(
                event(2, time=spread), event(3), event(4, time=spread),
                event(9, "Bins", programming={"enabled": False, "actions": 1}))})
        result = run("next", "-n", "4", url=house.url)
        self.assertEqual(result.out.splitlines(), [
            "WHEN                  ID  DESCRIPTION  BY",
            "Sat 2026-11-21 18:00   3  e3           clock",
            "Sat 2026-11-21 18:50   2  e2           clock  planned Sat 2026-11-21 17:30",
            "Sat 2026-11-21 19:00   4  e4           clock  ±1h30",
            "Sat 2027-05-01 07:00   9  Bins         clock  ±10, disabled, 1 action"])
        self.assertEqual([re.search("from=(.*)&to=(.*)&limit=(.*)", r.path).groups()
                          for r in house.requests if "/occurrences" in r.path],
                         [("2026-11-22", "2026-11-23", "1"), ("2026-11-22", "2026-12-22", "1"),
                          ("2026-11-22", "2027-11-22", "1")])
        result = run("next", "-n", "1", "--json", url=house.url)
        self.assertEqual([o["event"] for o in json.loads(result.out)["occurrences"]], [3])

    def test_what_comes_next_of_one_event(self):
        house = self.serve({"GET /events/7": event(), "GET /events": events(event()),
                            "GET /today": {"date": "2026-11-21", "occurrences": []},
                            "GET /occurrences": {"occurrences": [], "truncated": False}})
        result = run("next", "7", url=house.url)
        self.assertEqual(result.out, "nothing comes in the next ten years\n")
        self.assertTrue(all("&event=7" in r.path for r in house.requests
                            if "/occurrences" in r.path))

    def test_occurrences_have_their_days(self):
        house = self.serve({"GET /occurrences": {"occurrences": [], "truncated": True}})
        result = run("occurrences", url=house.url)
        self.assertIn("from=2026-11-21&to=2026-12-21&limit=1000", house.requests[-1].path)
        self.assertIn("note: there are more", result.err)
        run("occurrences", "--from", "tomorrow", "--to", "2027-01-01", url=house.url)
        self.assertIn("from=2026-11-22&to=2027-01-01", house.requests[-1].path)

    def test_the_sun_may_stay_where_it_is(self):
        house = self.serve({"GET /sun": {
            "date": "2026-12-21", "sunrise": "2026-12-21T10:00:00+01:00",
            "sunset": "2026-12-21T12:00:00+01:00", "polar": "night",
            "place": {"latitude": 78.2, "longitude": 15.6}}})
        result = run("sun", "2026-12-21", url=house.url)
        self.assertIn("sunrise  10:00\n", result.out)
        self.assertIn("the sun does not rise; the times are those of the nearest day", result.out)
        self.assertEqual(house.requests[-1].path, "/api/v1/sun?date=2026-12-21")

    def test_a_condition_ends_with_its_result(self):
        answer = {"result": True, "text": "the time is between 22:00 and 02:00",
                  "because": "it is 23:10", "xml": "<condition/>", "name": "IF_TIME"}
        house = self.serve({"POST /conditions/test": answer})
        result = run("test", "time", "between", "22:00", "and", "02:00", url=house.url)
        self.ends(result, 0)
        self.assertEqual(result.out, "holds: the time is between 22:00 and 02:00 (now it is 23:10)\n")
        self.assertEqual(house.requests[-1].json, {"condition": {
            "kind": "time", "is": "between", "from": "22:00", "to": "02:00"}})
        house.routes["POST /conditions/test"] = answer | {"result": False}
        self.ends(run("test", "leap", url=house.url), 10)
        self.ends(run("test", "--json", "leap", url=house.url), 10)

    def test_the_journal_comes_in_pages_the_newest_last(self):
        rows = [{"id": i, "at": f"2026-11-21T16:{i % 60:02}:00+01:00", "kind": "fired", "event": 7,
                 "description": "Porch", "reason": "timer"} for i in range(1300, 0, -1)]

        def page(request):
            query = dict(p.split("=") for p in request.path.partition("?")[2].split("&"))
            older = [r for r in rows if r["id"] < int(query.get("before", 9999))]
            found = older[:int(query["limit"])]
            more = len(older) > len(found)
            return {"rows": found, "next": found[-1]["id"] if more else None}

        house = self.serve({"GET /journal": page})
        everything = json.loads(run("journal", "--all", "--json", url=house.url).out)
        self.assertEqual([r["id"] for r in everything["rows"]], list(range(1300, 0, -1)))
        self.assertIsNone(everything["next"])
        few = json.loads(run("history", "-n", "3", "--json", url=house.url).out)
        self.assertEqual(([r["id"] for r in few["rows"]], few["next"]), ([1300, 1299, 1298], 1298))
        shown = run("journal", "-n", "2", url=house.url).out.splitlines()
        self.assertEqual(shown[1], "Sat 2026-11-21 16:39:00  fired  7 \"Porch\"  timer")
        self.assertIn("16:40:00", shown[2])
        turned = run("journal", "-n", "2", "-r", url=house.url).out.splitlines()
        self.assertEqual(turned[1:], shown[:0:-1])

    def test_the_journal_is_asked_for_what_is_wanted(self):
        house = self.serve({"GET /journal": {"rows": [], "next": None}, "GET /events/7": event()})
        result = run("journal", "7", "--kind", "held", "--kind", "missed", "--from", "yesterday",
                     "--to", "today", "--search", "a&b", url=house.url)
        self.assertEqual(result.out, "the journal has no such rows\n")
        self.assertEqual(house.requests[-1].path,
                         "/api/v1/journal?kind=held&kind=missed&event=7&from=2026-11-20"
                         "&to=2026-11-21&q=a%26b&limit=50")


class WhichEvent(ClientTest):
    HOUSE = events(event(7, "Porch"), event(8, "Porch lamp"), event(9, "porch gate"))

    def find(self, name, *found, command="run"):
        house = self.serve({
            "GET /events": {"events": list(found), "total": len(found)},
            "GET /events/7": event(), "POST /events/7/run": Answer({"journal": 1}, 202),
            "POST /events/8/run": Answer({"journal": 1}, 202), "DELETE /events/7": Answer(b"", 204)})
        return run(command, name, url=house.url)

    def test_is_named_by_its_id_or_description(self):
        for name, found in [("7", []), ("Porch", self.HOUSE["events"]), ("PORCH", [event()]),
                            ("orc", [event()])]:
            with self.subTest(name=name):
                self.ends(self.find(name, *found), 0)

    def test_may_be_called_by_a_number(self):
        house = self.serve({"GET /events": events(event(8, "2026"), event(9, "x 2026")),
                            "POST /events/8/run": Answer({"journal": 1}, 202)})
        self.ends(run("run", "2026", url=house.url), 0)
        house.routes["GET /events"] = events(event(9, "x 2026"))
        result = run("run", "2026", url=house.url)
        self.ends(result, 5)
        self.assertIn('no event is called just "2026"; there is 9 "x 2026"', result.err)

    def test_is_not_guessed(self):
        result = self.find("gate lamp porch", event(8, "Porch lamp"), event(9, "porch gate"))
        self.ends(result, 5)
        self.assertIn('"gate lamp porch" may mean 8 "Porch lamp", 9 "porch gate"; give the id',
                      result.err)
        result = self.find("porch", event(7, "PORCH"), event(8, "Porch"))
        self.ends(result, 5)

    def test_is_not_deleted_by_a_part_of_its_name(self):
        result = self.find("orc", event(), command="delete")
        self.ends(result, 5)
        self.assertIn('no event is called just "orc"; there is 7 "Porch"', result.err)
        result = self.find("porch", event(), command="delete")
        self.ends(result, 0)
        self.assertIn('deleted event 7 "Porch"; "vexalink restore 7" brings it back', result.out)

    def test_may_not_be_there(self):
        for name, found in [("99", []), ("none", []), ("", self.HOUSE["events"])]:
            with self.subTest(name=name):
                self.ends(self.find(name, *found), 5)


class HowItEnds(ClientTest):
    def test_refusals_have_a_status_of_their_own(self):
        rows = [
            (problem(422, "invalid", "/time is 0"), 4, "the controller refuses: /time is 0"),
            (problem(401, "unauthorized", "a token is missing"), 4, "give a token by --token-file"),
            (problem(403, "forbidden", "no"), 4, "refuses: no"),
            (problem(412, "precondition-failed", "another version"), 4, "another version"),
            (problem(503, "not-saved", "the disk is full"), 6, "not saved yet: the disk is full"),
            (problem(503, "not-ready", "not yet"), 1, "the controller fails: not yet"),
            (Answer(b"<h1>Bad Gateway</h1>", 502, "text/html"), 1, "is no controller of this kind"),
            (Answer(b"<h1>Hello</h1>", 200, "text/html"), 1, "it sends no JSON; is --url right?"),
            (Answer(b"[]"), 1, "it sends no JSON"),
            (Answer(b'{"events": 7, "total": 1}'), 1, "something that this program does not know"),
            (Answer(b'{"events": [{"id": 1}], "total": 1}'), 1, "does not know"),
            (Answer(b'{"a": ' * 100000), 1, "it sends no JSON"),
            (problem(422, "invalid", "a\x1b[2J\n"), 4, "refuses: a\\x1b[2J\\n"),
        ]
        for answer, status, message in rows:
            with self.subTest(message=message):
                house = self.serve({"GET /events": answer})
                result = run("list", url=house.url)
                self.ends(result, status)
                self.assertIn(message, result.err)

    def test_nobody_at_home(self):
        house = FakeController({})
        house.close()
        for command in (["list"], ["watch"], ["status", "--json"]):
            result = run(*command, url=house.url)
            self.ends(result, 3)
            self.assertIn(f"no controller answers at {house.url}: ", result.err)
            self.assertIn('start one with "vexalink serve"', result.err)

    def test_an_answer_that_breaks_off(self):
        def broken(_, handler):
            handler.send_response(200)
            handler.send_header("Content-Length", "100")
            handler.end_headers()
            handler.wfile.write(b'{"events"')
            handler.close_connection = True

        house = self.serve({"GET /events": broken})
        result = run("list", url=house.url)
        self.ends(result, 3)
        self.assertIn("does not answer to the end", result.err)

    def test_a_wrong_command_line(self):
        house = self.serve({})
        rows = [
            (["add", "x"], "--at"),
            (["add", "x", "--at", "7"], '--at "7": "7" is no time'),
            (["add", "x", "--at", "noon", "--until", "tomorrow"], "give --every too"),
            (["add", "x", "--at", "noon", "--delay", "5"], "nothing says what is to be done"),
            (["add", "x", "--at", "noon", "--header", "A: b"], "--header is for web hooks"),
            (["add", "x", "--at", "noon", "--run", "true", "--method", "PUT"], "give --hook too"),
            (["add", "x", "--at", "noon", "--set", "1.2=3", "--timeout", "5"],
             "--timeout is for --hook and --run"),
            (["add", "x", "--at", "noon", "--run", "a", "--hook", "b"], "excludes"),
            (["modify", "7"], "nothing is given to change"),
            (["modify", "7", "--at", "noon", "--delay", "5", "--if-match", "x"], "is one version"),
            (["actions", "--run", "true"], "an event is missing"),
            (["actions", "7", "--remove", "1", "--test", "1"], "do one thing at a time"),
            (["actions", "7", "--change", "1"], "nothing is given to change the action to"),
            (["delete", "7", "8", "--if-match", "x"], "several are named"),
            (["restore", "Porch"], "Porch"),
            (["next", "-n", "0"], "0"),
            (["list", "--url", "ftp://x"], "is neither http nor https"),
            (["list", "--token", "a b"], "holds no token"),
            (["occurrences", "--from", "someday"], "this is no day"),
            (["test", "moon", "is", "full"], '"moon" is no kind of condition'),
            (["add", b"\xff", "--at", "noon"], "bytes that are no UTF-8"),
        ]
        for arguments, message in rows:
            with self.subTest(arguments=arguments):
                result = run(*arguments, url=house.url)
                self.assertEqual(result.status, 2, result)
                self.assertIn(message, result.err)
                self.assertEqual(result.out, "")
        self.assertEqual([r for r in house.requests if r.method != "GET"], [])

    def test_a_wrong_text_is_shown_with_a_mark(self):
        result = run("add", "x", "--at", "noon", "--every", "2 weeks on mom")
        self.assertEqual(result.err,
                         'vexalink: --every "2 weeks on mom": "mom" is no day of the week; give sun, '
                         "mon, tue, wed, thu, fri or sat\n"
                         "  2 weeks on mom\n"
                         "             ^~~\n")

    def test_an_output_that_cannot_be_written(self):
        house = self.serve({"GET /events": events(event())})
        with open("/dev/full", "w", encoding="ascii") as full:
            done = subprocess.run([PROGRAM, "list"], env=environment(VEXALINK_URL=house.url),
                                  stdout=full, stderr=subprocess.PIPE, check=False, timeout=60)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"standard output could not be written", done.stderr)

    def test_the_token_is_sent_and_never_told(self):
        house = self.serve({"GET /events": problem(403, "forbidden", "no")})
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "token")
            with open(file, "w", encoding="ascii") as out:
                out.write("from-file\n")
            rows = [(["--token", "given"], {}, "given"), ([], {"VEXALINK_TOKEN": "env"}, "env"),
                    (["--token-file", file], {"VEXALINK_TOKEN": "env"}, "from-file")]
            for options, settings, token in rows:
                with self.subTest(token=token):
                    result = run("list", *options, url=house.url, env=settings)
                    self.ends(result, 4)
                    self.assertEqual(house.requests[-1].headers["authorization"],
                                     f"Bearer {token}")
                    self.assertNotIn(token, result.err)
        run("list", url=house.url)
        self.assertNotIn("authorization", house.requests[-1].headers)

    def test_a_proxy_does_not_stand_before_this_machine(self):
        house = self.serve({"GET /events": events()})
        self.ends(run("list", url=house.url, env={"http_proxy": "http://127.0.0.1:9",
                                                  "all_proxy": "http://127.0.0.1:9"}), 0)

    def test_redirects_are_not_followed(self):
        house = self.serve({"GET /events": Answer(b"", 302, headers={"Location": "/elsewhere"})})
        self.ends(run("list", url=house.url), 1)
        self.assertEqual(len(house.requests), 1)


if __name__ == "__main__":
    unittest.main()
