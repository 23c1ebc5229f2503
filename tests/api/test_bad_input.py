"""Whatever is wrong with a request is refused with a reason, and nothing changes."""

import json
import re
import unittest

import contract
import server
from bad_input import (EVENTS, FIELDS, PROGRAMMING, RAW, SCHEDULES, TARGETS, TEXTS, event)

XML = {"Content-Type": "application/xml"}
JSON = {"Content-Type": "application/json"}


class BadInput(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.house = server.Controller("--empty")
        made = cls.house.post("/events", {**event(description="Porch"),
                                          "programming": {"actions": [
                                              {"command": {"argv": ["/bin/true"]}}]}})
        assert made.status == 201, made

    @classmethod
    def tearDownClass(cls):
        status = cls.house.stop()
        log = cls.house.log()
        cls.house.close()
        assert status == 0, log

    def kept(self):
        get = self.house.get
        return (get("/project/export").body, get("/events").body,
                get("/events/1/programming").body, get("/variables").body,
                get("/project/backups").body, get("/journal").json["rows"][0]["id"])

    def setUp(self):
        self.before = self.kept()

    def tearDown(self):
        self.assertEqual(self.kept(), self.before)

    def refused(self, answer, status, pointer=None):
        self.assertEqual(answer.status, status, answer)
        problem = answer.json
        contract.check_schema({"$ref": "#/components/schemas/Problem"}, problem, "the problem")
        self.assertTrue(problem["detail"].strip(), problem)
        self.assertNotIn("\n", problem["detail"])
        if pointer is not None:
            self.assertIn(pointer, [error["pointer"] for error in problem["errors"]], problem)

    def test_events(self):
        schema = {"$ref": "#/components/schemas/NewEvent"}
        for why, body, pointer in EVENTS:
            with self.subTest(why):
                text = json.dumps(body).encode()
                self.refused(self.house.post("/events", text), 422, pointer)
                if body is not None and "programming" not in str(body):
                    self.refused(self.house.ask("PUT", "/events/1", text), 422, None)
                if pointer != "/id":
                    self.refused(self.house.post("/preview", text), 422, pointer)
                # What a schema can say, the description says, too.
                if why not in ("blanks for a description", "a line end in the description",
                               "a zero in the description", "an escape in the description",
                               "a C1 control in the description", "no character of XML",
                               "a description that is never kept", "at and minutes that differ",
                               "31 February", "29 February of a common year",
                               "29 February of 2100", "month 13", "day 0",
                               "a day before the calendar", "an end before the start",
                               "an end that is no day"):
                    self.assertFalse(contract.is_valid(schema, body), "the description takes it")

    def test_programming(self):
        for why, body, pointer in PROGRAMMING:
            with self.subTest(why):
                self.refused(self.house.ask("PUT", "/events/1/programming", body), 422, pointer)
                self.refused(self.house.ask("PATCH", "/events/1/programming", body), 422, pointer)
                created = event(programming=body)
                self.refused(self.house.post("/events", created), 422, "/programming" + pointer)

    def test_fields(self):
        for method, target, body, pointer in FIELDS:
            with self.subTest(f"{method} {target} {pointer}"):
                self.refused(self.house.ask(method, target, body), 422, pointer)

    def test_texts(self):
        for why, text in TEXTS:
            with self.subTest(why):
                self.refused(self.house.post("/events", text, headers=JSON), 400)
                self.refused(self.house.post("/preview", text, headers=JSON), 400)

    def test_schedules(self):
        for why, text in SCHEDULES:
            with self.subTest(why):
                for target in ("/project/import", "/project/import?force=1",
                               "/project/import/preview"):
                    self.refused(self.house.post(target, text, headers=XML), 400)
        lost = b"<events><event><eventid>0</eventid><description>x</description></event></events>"
        self.refused(self.house.post("/project/import", lost, headers=XML), 422)

    def test_targets(self):
        for method, target, status in TARGETS:
            with self.subTest(f"{method} {target}"):
                body = event() if method == "PUT" and "events" in target else None
                body = {"value": "1"} if "variables" in target else body
                self.refused(self.house.ask(method, target, body), status)

    def test_media_types(self):
        body = json.dumps(event()).encode()
        for kind in ("text/plain", "application/xml", "application/x-www-form-urlencoded",
                     "multipart/form-data; boundary=x", "application/jsonx",
                     "application/json; charset=utf-16", "json", "application/merge-patch+json"):
            with self.subTest(kind):
                answer = self.house.post("/events", body, headers={"Content-Type": kind})
                self.refused(answer, 415)
        self.refused(self.house.post("/project/import", b"<events/>", headers=JSON), 415)
        self.refused(self.house.ask("PATCH", "/events/1", b"{}",
                                    {"Content-Type": "application/json-patch+json"}), 415)
        without = self.house.raw(b"POST /api/v1/events HTTP/1.1\r\nHost: localhost\r\n"
                                 b"Content-Length: %d\r\nConnection: close\r\n\r\n%s"
                                 % (len(body), body))
        self.assertIn(b" 415 ", without.splitlines()[0])

    def test_bodies_where_there_is_none(self):
        for method, target in (("POST", "/events/1/run"), ("POST", "/events/1/restore"),
                               ("POST", "/project/backups"), ("GET", "/events"),
                               ("DELETE", "/events/1")):
            with self.subTest(f"{method} {target}"):
                answer = self.house.ask(method, target, b"{}", JSON)
                self.assertIn(answer.status, (400, 415), answer)
                self.refused(answer, answer.status)

    def test_sizes(self):
        big = b'{"description":"' + b"x" * (1 << 20) + b'"}'
        answer = self.house.post("/events", big, headers=JSON)
        self.refused(answer, 413)
        many = json.dumps({"actions": [{"command": {"argv": ["/bin/true"] * 101}}]}).encode()
        self.refused(self.house.ask("PUT", "/events/1/programming", many), 422)

    def test_versions(self):
        for tag in ('"0000"', 'W/"x"', "x", "", '"', '"a", "b"'):
            with self.subTest(tag):
                for method, target, body in (
                        ("PUT", "/events/1", event()), ("PATCH", "/events/1", {}),
                        ("DELETE", "/events/1", None), ("PUT", "/events/1/programming", {}),
                        ("PATCH", "/events/1/programming", {}), ("PATCH", "/project", {})):
                    answer = self.house.ask(method, target, body, {"If-Match": tag})
                    self.refused(answer, 412)

    def test_variables_of_the_place(self):
        for variable in (1001, 1002):
            answer = self.house.ask("PUT", f"/variables/1/{variable}", {"value": "0"})
            self.refused(answer, 422)

    def test_bytes(self):
        for why, data, statuses in RAW:
            with self.subTest(why):
                got = self.house.raw(data)
                head, _, body = got.partition(b"\r\n\r\n")
                told = re.match(rb"HTTP/1\.1 (\d{3}) ", head)
                self.assertTrue(told, got[:300])
                self.assertIn(int(told[1]), statuses, got[:500])
                self.assertEqual(got.count(b"HTTP/1.1 "), 1, "one request, one answer")
                self.assertTrue(json.loads(body)["detail"], got)

    def test_what_is_not_spoken_here(self):
        for data in (b"BREW /api/v1/events HTTP/1.1\r\nHost: localhost\r\n\r\n",
                     b"TRACE /api/v1/events HTTP/1.1\r\nHost: localhost\r\n\r\n",
                     b"GET /api/v1/events HTTP/3.0\r\nHost: localhost\r\n\r\n",
                     b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", b"\x16\x03\x01\x02\x00\x01\x00\x01"):
            with self.subTest(data[:20]):
                got = self.house.raw(data)
                if got:  # what is no HTTP at all may be left without an answer
                    self.assertRegex(got.splitlines()[0], rb"^HTTP/1\.1 (400|405|501|505) ")


class HowMany(unittest.TestCase):
    def test_there_are_enough(self):
        cases = EVENTS + PROGRAMMING + FIELDS + TEXTS + SCHEDULES + TARGETS + RAW
        self.assertGreaterEqual(len(cases), 200)


if __name__ == "__main__":
    unittest.main()
