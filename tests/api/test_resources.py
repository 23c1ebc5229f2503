"""Every resource of a running controller, held against its description."""

import sqlite3
import time
import unittest
import xml.etree.ElementTree

import contract
import server

PORCH = {"description": "Porch", "start": "2030-03-01",
         "time": {"base": "sunset", "minutes": -30, "spread": 10},
         "repeat": {"unit": "week", "every": 2, "on": ["mon", "fri"], "until": "2037-03-31"}}


def named(name, **fields):
    return {"description": name, "start": "2030-03-01", "time": {"base": "clock", "at": "07:30"},
            **fields}


class Resources(unittest.TestCase):
    def setUp(self):
        self.house = server.Controller("--empty")
        self.addCleanup(self.house.close)

    def add(self, body, status=201):
        answer = self.house.post("/events", body)
        self.assertEqual(answer.status, status, answer)
        return answer.json

    def sent(self, operation, body):
        """A body that the description takes."""
        content = contract.DOCUMENT["paths"][operation[1]][operation[0]]["requestBody"]["content"]
        contract.check_schema(next(iter(content.values()))["schema"], body, str(operation))
        return body

    def test_an_event_from_its_creation_to_its_end(self):
        house = self.house
        made = house.post("/events", self.sent(("post", "/events"), PORCH))
        self.assertEqual(made.status, 201)
        self.assertEqual(made.headers["location"], "/api/v1/events/1")
        event = made.json
        self.assertEqual({k: event[k] for k in PORCH}, {**PORCH, "time": {**PORCH["time"]}})
        self.assertEqual(house.get("/events/1").json, event)
        self.assertEqual(house.get("/events").json, {"events": [event], "total": 1})

        changed = house.ask("PATCH", "/events/1", {"time": {"base": "clock", "at": "07:05"}},
                            {"If-Match": made.headers["etag"],
                             "Content-Type": "application/merge-patch+json"})
        self.assertEqual(changed.status, 200, changed)
        self.assertEqual(changed.json["time"]["minutes"], 425)
        late = house.ask("PATCH", "/events/1", {"start": "2030-04-01"},
                         {"If-Match": made.headers["etag"]})
        self.assertEqual(late.problem, "precondition-failed")
        put = house.ask("PUT", "/events/1",
                        self.sent(("put", "/events/{id}"), {**PORCH, "id": 1}))
        self.assertEqual(put.json, event)

        copy = house.post("/events/1/duplicate", {"description": "Porch 2"})
        self.assertEqual(copy.status, 201)
        self.assertEqual(house.ask("DELETE", "/events/1").status, 204)
        self.assertEqual(house.get("/events/1").problem, "not-found")
        self.assertEqual(house.post("/events/1/restore").json, event)
        self.assertEqual(house.post("/events/1/restore").problem, "not-found")
        self.assertEqual([e["id"] for e in house.get("/events?q=PORCH").json["events"]], [1, 2])

    def test_what_is_taken_is_told(self):
        self.add(PORCH)
        conflict = self.house.post("/events", PORCH)
        self.assertEqual((conflict.status, conflict.problem), (409, "conflict"))
        self.add(named("Gate"))
        self.house.ask("DELETE", "/events/1")
        self.house.ask("PATCH", "/events/2", {"description": "Porch"})
        self.assertEqual(self.house.post("/events/1/restore").problem, "conflict")

    def test_every_form_of_an_event_comes_back_as_it_was_given(self):
        times = [{"base": "clock", "at": "00:00"}, {"base": "clock", "minutes": -1440},
                 {"base": "clock", "minutes": 2880}, {"base": "sunrise"},
                 {"base": "sunset", "minutes": 1440, "spread": 720}]
        repeats = [None, {"unit": "day"}, {"unit": "day", "every": 1000000},
                   {"unit": "week", "on": ["sun", "sat"], "every": 3},
                   {"unit": "month", "until": "9999-12-31"},
                   {"unit": "month", "every": 2, "nth": {"week": "last", "weekday": "fri"}},
                   {"unit": "year", "nth": {"week": 1, "weekday": "fri"}}]
        for number, (at, repeat) in enumerate((t, r) for t in times for r in repeats):
            body = named(f"{number}", time=at, repeat=repeat)
            event = self.add(self.sent(("post", "/events"), body))
            for field, value in at.items():
                self.assertEqual(event["time"][field], value)
            for field, value in (repeat or {}).items():
                self.assertEqual(event["repeat"][field], value)
            if repeat is None:
                self.assertIsNone(event["repeat"])
            self.assertEqual(self.house.get(f"/events/{event['id']}").json, event)

    def test_texts_come_back_to_the_byte(self):
        names = ["Tür", "עברית", "\u202eabc\u202c", "a\u0301", "💡", "]]>", "<b>&amp;", '"\\',
                 " blanks ", "a\u2028b", "x" * 200, "ü" * 200, "%s%n", "'; DROP TABLE event; --"]
        for name in names:
            event = self.add(named(name))
            self.assertEqual(event["description"], name)
        self.house.kill()
        self.house.start()
        kept = [event["description"] for event in self.house.get("/events").json["events"]]
        self.assertEqual(kept, names)
        root = xml.etree.ElementTree.fromstring(self.house.export())
        self.assertEqual([e.findtext("description") for e in root.iter("event")], names)

    def test_what_was_answered_is_on_the_disk(self):
        for number in range(1, 6):
            made = self.add({**named(f"event {number}"), "programming": {"skip_next": True}})
            self.house.kill()
            self.house.start()
            self.assertEqual(self.house.get(f"/events/{number}").json, made)
        self.assertEqual(self.house.ask("DELETE", "/events/3").status, 204)
        self.house.kill()
        self.house.start()
        self.assertEqual(self.house.get("/events").json["total"], 4)

    def test_a_change_that_cannot_be_saved_is_told_and_saved_later(self):
        house = self.house
        self.add(named("Before"))
        other = sqlite3.connect(house.project, isolation_level=None)
        self.addCleanup(other.close)
        other.execute("BEGIN EXCLUSIVE")
        answer = house.post("/events", named("Meanwhile"))
        self.assertEqual((answer.status, answer.problem), (503, "not-saved"), answer)
        self.assertIs(answer.json["applied"], True)
        self.assertIs(house.get("/status").json["saving"]["ok"], False)
        self.assertEqual(house.get("/project").json["events"], 2)
        self.assertIn(b"Meanwhile", house.export())
        unread = house.get("/journal")
        self.assertEqual((unread.status, unread.problem), (503, "not-ready"), unread)
        other.execute("ROLLBACK")
        end = time.monotonic() + server.PATIENCE
        while not house.get("/status").json["saving"]["ok"]:
            self.assertLess(time.monotonic(), end, "it is not saved after all")
            time.sleep(0.05)
        house.kill()
        house.start()
        self.assertEqual(house.get("/events").json["total"], 2)

    def test_what_an_event_does(self):
        house = self.house
        self.add(PORCH)
        plain = house.get("/events/1/programming")
        programming = self.sent(("put", "/events/{id}/programming"), {
            "enabled": True, "paused_until": "2031-01-01", "skip_next": False,
            "catch_up": {"policy": "within", "minutes": 10080},
            "actions": [
                {"on": "event", "delay": 5, "if": {"kind": "time", "is": "night"},
                 "hook": {"method": "PUT", "url": "http://127.0.0.1:9/x?d={description}",
                          "headers": {"X-Key": "abc"}, "body": "{{\"e\": {event}}", "timeout": 1,
                          "retries": 0}},
                {"command": {"argv": ["/bin/echo", "{event}"]}},
                {"on": "click", "variable": {"device": 1, "variable": 2001, "value": "1"}}]})
        put = house.ask("PUT", "/events/1/programming", programming,
                        {"If-Match": plain.headers["etag"]})
        self.assertEqual(put.status, 200, put)
        self.assertEqual(house.get("/events/1/programming").json, put.json)
        self.sent(("put", "/events/{id}/programming"), put.json)
        self.assertEqual(house.ask("PUT", "/events/1/programming", put.json).json, put.json)
        patched = house.ask("PATCH", "/events/1/programming", {"paused_until": None})
        self.assertIsNone(patched.json["paused_until"])
        self.assertEqual(len(patched.json["actions"]), 3)
        self.assertEqual(house.get("/events/1").json["programming"]["actions"], 3)
        self.assertEqual(house.get("/events/1").json["id"], 1)

    def test_an_action_and_a_condition_are_tried(self):
        house = self.house
        tried = house.post("/actions/test", self.sent(("post", "/actions/test"), {
            "action": {"command": {"argv": ["/bin/sh", "-c", "echo it: {event}; exit 3"]}}}))
        self.assertEqual(tried.status, 200, tried)
        self.assertEqual(tried.json["outcome"], "failed")
        self.assertIn("3", tried.json["detail"])
        self.assertIn("it: ", tried.json["output"])
        self.assertEqual(house.get("/actions/running").json, {"actions": []})
        for condition in (
                {"kind": "time", "is": "between", "from": "22:00", "to": "02:00"},
                {"kind": "time", "is": "ge", "time": "00:01"}, {"kind": "time", "is": "day"},
                {"kind": "time", "is": "within", "minutes": 30, "side": "before", "of": "sunset"},
                {"kind": "weekday", "is": "between", "from": "mon", "to": "fri"},
                {"kind": "weekday", "is": "ne", "days": ["sat", "sun"]},
                {"kind": "day", "is": "eq", "days": [1, 31]},
                {"kind": "date", "is": "between", "from": "2026-01-01", "to": "2030-01-01"},
                {"kind": "date", "is": "lt", "date": "2030-01-01"},
                {"kind": "month", "is": "between", "from": 11, "to": 2},
                {"kind": "month", "is": "eq", "months": [6, 7]},
                {"kind": "year", "is": "gt", "year": 2025}, {"kind": "leap"}):
            body = self.sent(("post", "/conditions/test"), {"condition": condition})
            answer = house.post("/conditions/test", body)
            self.assertEqual(answer.status, 200, answer)
            self.assertTrue(answer.json["text"] and answer.json["because"], condition)
        always = {"kind": "year", "is": "between", "from": 1970, "to": 9999}
        self.assertIs(house.post("/conditions/test", {"condition": always}).json["result"], True)

    def test_a_preview_changes_nothing(self):
        before = self.house.export()
        answer = self.house.post("/preview", self.sent(("post", "/preview"), PORCH))
        self.assertEqual(len(answer.json["occurrences"]), 10)
        self.assertTrue(answer.json["sentence"].startswith("every 2 weeks on Monday and Friday"))
        past = self.house.post("/preview", named("x", start="2000-01-01")).json
        self.assertEqual([w["code"] for w in past["warnings"]], ["never-occurs"])
        self.assertEqual(self.house.export(), before)

    def test_when_events_come(self):
        house = self.house
        today = house.get("/today").json["date"]
        self.add({"description": "Daily", "time": {"base": "sunset"}, "repeat": {"unit": "day"}})
        self.add(named("Once", start=today))
        listed = house.get(f"/occurrences?from={today}&limit=3").json
        self.assertEqual(len(listed["occurrences"]), 3)
        self.assertIs(listed["truncated"], True)
        self.assertEqual(house.get("/occurrences?event=1").json["truncated"], False)
        year = house.get("/occurrences?from=2030-01-01&to=2030-12-31&event=1").json
        self.assertEqual([o["date"] for o in year["occurrences"]][:2], ["2030-01-01", "2030-01-02"])
        self.assertEqual(len(year["occurrences"]), 365)

    def test_the_sun(self):
        day = self.house.get("/sun?date=2030-06-21").json
        self.assertTrue(day["sunrise"].startswith("2030-06-21T04:4"), day)
        self.assertTrue(day["sunrise"].endswith("+02:00"), day)
        self.assertEqual(len(self.house.get("/sun/year?year=2028").json["days"]), 366)
        self.assertEqual(len(self.house.get("/sun/year").json["days"]) // 365, 1)

    def test_what_has_happened(self):
        house = self.house
        self.add(PORCH)
        self.add(named("Gate"))
        self.assertEqual(house.post("/events/1/run").status, 202)
        self.assertEqual(house.post("/events/1/press", {"button": "push"}).status, 202)
        self.assertEqual(house.post("/events/1/press").status, 202)
        rows = house.get("/journal").json["rows"]
        self.assertEqual({"change", "fired"} - {row["kind"] for row in rows}, set())
        self.assertEqual([row["id"] for row in rows], sorted((r["id"] for r in rows), reverse=True))
        changes = house.get("/journal?kind=change&kind=clock&event=2").json["rows"]
        self.assertEqual([(r["reason"], r["event"], r["actor"]) for r in changes],
                         [("added", 2, "local")])
        self.assertEqual(changes[0]["after"]["description"], "Gate")
        page = house.get("/journal?limit=1").json
        second = house.get(f"/journal?limit=1&before={page['next']}").json
        self.assertLess(second["rows"][0]["id"], page["rows"][0]["id"])
        self.assertEqual(house.get("/journal?from=2000-01-01&to=2000-12-31").json["rows"], [])
        self.assertEqual(house.get("/journal?q=no+such+text").json, {"rows": [], "next": None})
        named_actor = house.ask("PATCH", "/events/2", {"start": "2030-05-01"},
                                {"Vexalink-Actor": "cli:ada"})
        self.assertEqual(named_actor.status, 200)
        self.assertEqual(house.get("/journal?limit=1").json["rows"][0]["actor"], "cli:ada")

    def test_how_it_is(self):
        self.add({"description": "Daily", "time": {"base": "clock", "at": "12:00"},
                  "repeat": {"unit": "day"}})
        status = self.house.get("/status").json
        self.assertEqual(status["events"], 1)
        self.assertEqual(status["next"]["event"], 1)
        self.assertEqual(status["saving"], {"ok": True})

    def test_the_house(self):
        house = self.house
        before = house.get("/project")
        changed = house.ask("PATCH", "/project", self.sent(("patch", "/project"), {
            "name": "Haus am See", "place": {"latitude": -36.85, "longitude": 174.76},
            "away_until": "2099-01-01"}), {"If-Match": before.headers["etag"]})
        self.assertEqual(changed.status, 200, changed)
        self.assertEqual(changed.json["name"], "Haus am See")
        self.assertEqual(house.get("/sun?date=2030-06-21").json["place"],
                         {"latitude": -36.85, "longitude": 174.76})
        house.kill()
        house.start()
        self.assertEqual(house.get("/project").json["away_until"], "2099-01-01")
        cities = house.get("/project/cities")
        self.assertIn("Lisbon", [city["city"] for city in cities.json["cities"]])
        again = house.ask("GET", "/project/cities",
                          headers={"If-None-Match": cities.headers["etag"]})
        self.assertEqual(again.status, 304)

    def test_the_schedule_as_a_whole(self):
        house = self.house
        kind = {"Content-Type": "application/xml"}
        self.add(PORCH)
        exported = house.export()
        review = house.post("/project/import/preview", exported, headers=kind)
        self.assertEqual((review.json["kept"], review.json["dropped"]), (1, 0), review)
        self.assertEqual(house.post("/project/backups").status, 201)
        self.add(named("Gate"))
        self.assertEqual(house.post("/project/import", exported, headers=kind).status, 200)
        self.assertEqual(house.get("/events").json["total"], 1)
        self.assertEqual(house.export(), exported)
        odd = exported.replace(b"<frequency>2<", b"<frequency>9<")
        self.assertEqual(house.post("/project/import", odd, headers=kind).status, 200)
        self.assertIs(house.get("/events/1").json["odd"], True)
        self.assertIs(house.get("/events").json["events"][0]["odd"], True)
        twice = b"<events>" + 2 * (exported[exported.index(b"<event>"):
                                            exported.index(b"</events>")]) + b"</events>"
        refused = house.post("/project/import", twice, headers=kind)
        self.assertEqual((refused.status, refused.problem), (422, "invalid"))
        forced = house.post("/project/import?force=1", twice, headers=kind)
        self.assertEqual((forced.json["kept"], forced.json["dropped"]), (1, 1))
        backups = house.get("/project/backups").json["backups"]
        self.assertGreaterEqual(len(backups), 3)
        oldest = len(backups)
        self.assertIn(b"<event_data>", house.get(f"/project/backups/{oldest}").body)
        self.assertEqual(house.post(f"/project/backups/{oldest}/restore").status, 204)
        self.assertEqual(house.get("/project/backups/99").problem, "not-found")

    def test_the_variables(self):
        put = self.house.ask("PUT", "/variables/7/8", {"value": "line\nline"})
        self.assertEqual(put.status, 200, put)
        self.assertIn(put.json, self.house.get("/variables").json["variables"])

    def test_it_describes_itself(self):
        told = self.house.get("/openapi.json")
        self.assertEqual(told.json, contract.DOCUMENT)
        again = self.house.ask("GET", "/openapi.json",
                               headers={"If-None-Match": told.headers["etag"]})
        self.assertEqual((again.status, again.body), (304, b""))
        for name, schema in contract.DOCUMENT["components"]["schemas"].items():
            contract.jsonschema.Draft202012Validator.check_schema(schema)
            closed = [schema] if schema.get("type") == "object" else []
            for one in closed:
                self.assertIn("additionalProperties", one, name)

    def test_a_house_of_a_thousand_events(self):
        events = "".join(
            f"<event><eventid>{i}</eventid><description>Event {i}</description><start><offset>{i % 3}"
            f"</offset><offset_minutes>{i % 700}</offset_minutes><start_date><start_day>{i % 28 + 1}"
            "</start_day><start_month>1</start_month><start_year>2026</start_year></start_date>"
            f"</start><repeat><frequency>{i % 4 + 1}</frequency><rate>{i % 5 + 1}</rate><daymask>42"
            "</daymask></repeat></event>" for i in range(1, 1001))
        body = f"<events>{events}</events>".encode()
        took = self.house.post("/project/import", body, headers={"Content-Type": "application/xml"})
        self.assertEqual(took.json["kept"], 1000, took)
        begin = time.monotonic()
        listed = self.house.ask("GET", "/events", check=False)
        took = time.monotonic() - begin
        self.assertEqual(listed.json["total"], 1000)
        contract.check("GET", "/events", listed)
        print(f"1,000 events listed in {took * 1000:.1f} ms", flush=True)
        some = self.house.get("/events?offset=990&limit=20").json
        self.assertEqual([e["id"] for e in some["events"]], list(range(991, 1001)))


class Ending(unittest.TestCase):
    def test_ends_in_order_while_a_client_is_there(self):
        house = server.Controller("--empty")
        self.addCleanup(house.close)
        house.get("/events")
        self.assertEqual(house.stop(), 0, house.log())


def load_tests(loader, tests, pattern):
    """The last of all: whatever is described was seen."""
    suite = unittest.TestSuite()
    suite.addTests(tests)
    suite.addTest(WasSeen("test_every_operation_has_answered_well"))
    return suite


class WasSeen(unittest.TestCase):
    def test_every_operation_has_answered_well(self):
        missing = []
        for path, item in contract.DOCUMENT["paths"].items():
            if "servers" in item or path == "/stream":
                continue  # monitoring and the stream have tests of their own
            for method, operation in item.items():
                if method == "parameters":
                    continue
                for status in operation["responses"]:
                    if status[0] == "2" and f"{method} {path} {status}" not in contract.seen:
                        missing.append(f"{method} {path} {status}")
        self.assertEqual(missing, [])


if __name__ == "__main__":
    unittest.main()
