"""Who may do what, where tokens are needed: each operation with each role."""

import re
import subprocess
import unittest

import contract
import server

ROLES = ("view", "operate", "edit")
COMMAND = {"command": {"argv": ["/bin/true"]}}
OTHER = {"command": {"argv": ["/bin/false"]}}


def operations():
    """Method, path and role of each operation that the description has below /api/v1."""
    for path, item in contract.DOCUMENT["paths"].items():
        if "servers" in item or path == "/stream":
            continue
        for method, operation in item.items():
            if method != "parameters":
                role = re.search(r"Role: `(\w+)`", operation["description"])[1]
                yield method.upper(), path, role


class Roles(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.house = server.Controller("--empty", start=False)
        cls.addClassCleanup(cls.house.close)
        cls.house.start()
        body = {"description": "Porch", "time": {"base": "sunset"},
                "programming": {"actions": [COMMAND]}}
        assert cls.house.post("/events", body).status == 201
        cls.house.stop()
        cls.tokens = {role: cls.make_token(role) for role in ROLES}
        cls.house.listen = "0.0.0.0:0"
        cls.house.start()

    @classmethod
    def make_token(cls, role):
        made = subprocess.run(
            [server.PROGRAM, "token", "add", role, "--role", role, "--project", cls.house.project],
            check=True, capture_output=True, text=True)
        return made.stdout.strip()

    def ask(self, role, method, target, body=None):
        self.house.token = self.tokens.get(role, role)
        return self.house.ask(method, target, body)

    def test_each_operation(self):
        seen = set()
        for method, path, needed in operations():
            target = re.sub(r"\{\w+\}", "99", path)
            body = b"{}" if method in ("PUT", "PATCH") else None
            for role in ROLES:
                with self.subTest(f"{role}: {method} {path}"):
                    answer = self.ask(role, method, target, body)
                    may = ROLES.index(role) >= ROLES.index(needed)
                    self.assertEqual(answer.status == 403, not may, answer)
                    if not may:
                        self.assertEqual(answer.problem, "forbidden")
            seen.add(needed)
        self.assertEqual(seen, set(ROLES))

    def test_nobody_without_a_token(self):
        for token in (None, "", "x" * 43):
            for method, target in (("GET", "/events"), ("DELETE", "/events/1")):
                self.house.token = token
                answer = self.house.ask(method, target)
                self.assertEqual((answer.status, answer.problem), (401, "unauthorized"), answer)

    def test_who_operates_holds_back_and_nothing_more(self):
        def patch(body):
            return self.ask("operate", "PATCH", "/events/1/programming", body)
        self.assertEqual(patch({"enabled": True, "skip_next": False, "paused_until": None}).status,
                         200)
        self.assertEqual(patch({"actions": []}).problem, "forbidden")
        self.assertEqual(patch({"enabled": True, "catch_up": {"policy": "always"}}).problem,
                         "forbidden")
        away = self.ask("operate", "PATCH", "/project", {"away_until": None})
        self.assertEqual(away.status, 200, away)
        self.assertEqual(self.ask("operate", "PATCH", "/project", {"name": "x"}).problem,
                         "forbidden")

    def test_who_operates_runs_only_what_the_house_would(self):
        def test(role, action, **event):
            return self.ask(role, "POST", "/actions/test", {"action": action, **event})
        self.assertEqual(test("operate", COMMAND, event=1).json["outcome"], "done")
        self.assertEqual(test("operate", OTHER, event=1).problem, "forbidden")
        self.assertEqual(test("operate", COMMAND).problem, "forbidden")
        self.assertEqual(test("edit", OTHER).json["outcome"], "failed")

    def test_the_journal_names_who_it_was(self):
        self.assertEqual(self.ask("operate", "POST", "/events/1/run").status, 202)
        rows = self.ask("view", "GET", "/journal?kind=fired&limit=1").json["rows"]
        self.assertEqual([row["actor"] for row in rows], ["operate"])


if __name__ == "__main__":
    unittest.main()
