"""`watch`: follows the stream, over connections that break, until it is told to end."""

import json
import os
import signal
import threading
import unittest

from client import Running, run, until
from fake_controller import Answer, FakeController, problem

JOURNAL = {"id": 812, "at": "2026-11-21T16:04:00+01:00", "kind": "fired", "event": 7,
           "description": "Porch\x1b[2J", "reason": "timer"}


def sse(kind, data, number):
    return f"id: {number}\nevent: {kind}\ndata: {json.dumps(data)}\n\n".encode()


class Stream:
    """Answers /stream with what it is given, and holds the connection until it is told to end."""

    def __init__(self, *pieces, stays=True):
        self.pieces = pieces
        self.stays = stays
        self.end = threading.Event()

    def __call__(self, _, handler):
        handler.send_response(200)
        handler.send_header("Content-Type", "text/event-stream")
        handler.send_header("Connection", "close")
        handler.end_headers()
        handler.close_connection = True
        for piece in self.pieces:
            handler.wfile.write(piece)
            handler.wfile.flush()
        if self.stays:
            self.end.wait(60)

    __code__ = (lambda request, handler: None).__code__  # so that the server passes both


class Watching(unittest.TestCase):
    def serve(self, *answers):
        controller = FakeController({"GET /stream": list(answers)})
        self.addCleanup(controller.close)
        for answer in answers:
            if isinstance(answer, Stream):
                self.addCleanup(answer.end.set)
        return controller

    def test_tells_what_the_journal_gets(self):
        house = self.serve(Stream(
            b"retry: 10\n: heartbeat\n\n", sse("event", {"change": "modified", "id": 7}, 1),
            sse("journal", JOURNAL, 2), sse("saving", {"ok": False, "why": "the disk is full"}, 3),
            sse("journal", JOURNAL | {"kind": "held", "reason": "away"}, 4), sse("reset", {}, 5)))
        with Running("watch", url=house.url) as watch:
            self.assertEqual(watch.line(),
                             'Sat 2026-11-21 16:04:00  fired       7 "Porch\\x1b[2J"  timer\n')
            self.assertEqual(watch.line(), "saving fails: the disk is full\n")
            self.assertIn("held", watch.line())
            self.assertEqual(watch.line(), "some of what happened meanwhile is not known any longer\n")
            self.assertEqual(watch.stop(), 0)
            self.assertEqual(watch.process.stderr.read(), "")

    def test_tells_only_the_kinds_that_are_wanted(self):
        house = self.serve(Stream(sse("journal", JOURNAL, 1),
                                  sse("journal", JOURNAL | {"kind": "held"}, 2)))
        with Running("watch", "--kind", "held", url=house.url) as watch:
            self.assertIn("held", watch.line())
            self.assertEqual(watch.stop(), 0)

    def test_writes_a_line_of_json_for_each_event(self):
        house = self.serve(Stream(sse("journal", JOURNAL, 1), b"id: 2\ndata: no json\n\n",
                                  sse("today", {"date": "2026-11-22"}, 3)))
        with Running("watch", "--json", url=house.url) as watch:
            lines = [json.loads(watch.line()) for _ in range(3)]
            self.assertEqual(lines, [{"event": "journal", "id": "1", "data": JOURNAL},
                                     {"event": "message", "id": "2", "data": "no json"},
                                     {"event": "today", "id": "3", "data": {"date": "2026-11-22"}}])
            self.assertEqual(watch.stop(signal.SIGTERM), 0)

    def test_goes_on_where_the_connection_broke(self):
        house = self.serve(
            Stream(b"retry: 10\n\n", sse("journal", JOURNAL, 41), b"id: 42\ndata: not whole",
                   stays=False),
            Answer(b"<h1>starting</h1>", 502, "text/html"),
            problem(429, "too-many", "too many streams"),
            Stream(sse("journal", JOURNAL | {"kind": "missed"}, 42)))
        with Running("watch", url=house.url) as watch:
            self.assertIn("fired", watch.line())
            self.assertIn("missed", watch.line())
            self.assertEqual(watch.stop(), 0)
            notes = watch.process.stderr.read()
        self.assertEqual([r.headers.get("last-event-id") for r in house.requests],
                         [None, "41", "41", "41"])
        self.assertIn("has ended the stream; trying again", notes)
        self.assertIn("the controller answers again", notes)
        self.assertEqual(notes.count("trying again"), 1)

    def test_ends_where_the_controller_refuses(self):
        house = self.serve(Stream(b"retry: 10\n\n", sse("journal", JOURNAL, 1), stays=False),
                           problem(401, "unauthorized", "the token is no longer known"))
        with Running("watch", url=house.url) as watch:
            self.assertIn("fired", watch.line())
            self.assertEqual(watch.wait(), 4)
            self.assertIn("the token is no longer known", watch.process.stderr.read())
        result = run("watch", url=self.serve(problem(403, "forbidden", "no")).url)
        self.assertEqual(result.status, 4, result)

    def test_ends_where_there_is_no_stream(self):
        house = self.serve(Answer(b"<h1>hello</h1>", 500, "text/html"))
        result = run("watch", url=house.url)
        self.assertEqual(result.status, 1, result)
        self.assertIn("is no controller of this kind", result.err)

    def test_can_be_ended_while_it_waits(self):
        house = self.serve(Stream(b"retry: 600000\n\n", sse("journal", JOURNAL, 1), stays=False))
        with Running("watch", url=house.url) as watch:
            self.assertIn("fired", watch.line())
            self.assertIn("trying again", watch.process.stderr.readline())
            self.assertEqual(watch.stop(), 0)

    def test_ends_when_nobody_reads_it_any_longer(self):
        quiet = Stream(sse("journal", JOURNAL, 1))
        house = self.serve(quiet)
        reader, writer = os.pipe()
        with Running("watch", url=house.url, stdout=writer) as watch:
            os.close(writer)
            with os.fdopen(reader, "rb") as lines:
                self.assertIn(b"fired", lines.readline())
            # Nothing more comes, so that no write can fail.
            until(lambda: watch.process.poll() is not None, "the end")
            self.assertEqual(watch.process.returncode, 0)


if __name__ == "__main__":
    unittest.main()
