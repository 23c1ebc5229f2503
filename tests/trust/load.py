#!/usr/bin/env python3
"""Many who look on and many who ask at once: all get all of it.

  tests/trust/load.py [--streams N] [--inflight N] [--seconds N] [--report]

With --report it prints how fast that went and how late ticks came; nothing else should run then.
"""

import argparse
import json
import selectors
import socket
import statistics
import sys
import tempfile
import threading
import time

import serving


class Streams:
    """Clients of the stream, read by one thread."""

    def __init__(self, address, count):
        self.selector = selectors.DefaultSelector()
        self.streams = []
        self.stopped = False
        for _ in range(count):
            stream = Stream(address)
            self.selector.register(stream.socket, selectors.EVENT_READ, stream)
            self.streams.append(stream)
        self.thread = threading.Thread(target=self.read)
        self.thread.start()

    def read(self):
        while not self.stopped:
            for key, _ in self.selector.select(0.1):
                key.data.read()

    def close(self):
        self.stopped = True
        self.thread.join()
        for stream in self.streams:
            stream.socket.close()


class Stream:
    def __init__(self, address):
        self.socket = socket.create_connection(address, timeout=serving.SECONDS)
        # An older HTTP, so that what is told comes without anything between.
        self.socket.sendall(b"GET /api/v1/stream HTTP/1.0\r\nHost: localhost\r\n\r\n")
        head = b""
        while b"\r\n\r\n" not in head:
            piece = self.socket.recv(1 << 16)
            if not piece:
                raise AssertionError(f"stream: {head!r}")
            head += piece
        head, self.text = head.split(b"\r\n\r\n", 1)
        if b" 200 " not in head.splitlines()[0] or b"chunked" in head:
            raise AssertionError(f"stream: {head!r}")
        self.changes = []
        self.ids = []
        self.broken = None

    def read(self):
        piece = self.socket.recv(1 << 16)
        if not piece:
            self.broken = "it ended"
            time.sleep(0.01)
            return
        self.text += piece
        *whole, self.text = self.text.split(b"\n\n")
        for each in whole:
            self.take(dict(line.split(": ", 1) for line in each.decode().splitlines()
                           if not line.startswith(":")))

    def take(self, fields):
        if "id" in fields:
            self.ids.append(fields["id"])
        if fields.get("event") == "reset":
            self.broken = "it was reset"
        if fields.get("event") == "event":
            data = json.loads(fields["data"])
            self.changes.append((data["id"], data["event"]["time"]["minutes"]))


class Load:
    def __init__(self, controller, inflight):
        self.controller = controller
        self.count = inflight
        self.lock = threading.Lock()
        self.changes = []
        self.times = {"change": [], "look": []}
        self.faults = []
        self.stopped = False

    def work(self, number):
        """One that changes an event of its own, or looks; always one request under way."""
        client = self.controller.client()
        step = 0
        while not self.stopped:
            step += 1
            changes = number % 5 == 0
            begin = time.perf_counter()
            if changes:
                minutes = (number * 100 + step) % 1440
                answer = client.ask("PATCH", f"/events/{number + 1}",
                                    {"time": {"base": "clock", "minutes": minutes}})
            else:
                answer = client.ask("GET", ("/events", "/today", "/journal?limit=50", "/status",
                                            f"/events/{number + 1}")[step % 5])
            took = time.perf_counter() - begin
            with self.lock:
                self.times["change" if changes else "look"].append(took)
                if answer.status != 200:
                    self.faults.append(repr(answer))
                elif changes:
                    self.changes.append((number + 1, answer.json()["time"]["minutes"]))

    def run(self, seconds):
        def guarded(number):
            try:
                self.work(number)
            except Exception as fault:  # told by the main thread
                self.faults.append(repr(fault))
        threads = [threading.Thread(target=guarded, args=(n,)) for n in range(self.count)]
        for thread in threads:
            thread.start()
        time.sleep(seconds)
        self.stopped = True
        for thread in threads:
            thread.join()


def event_of(number):
    return {"description": f"Event {number}", "start": "2026-01-01",
            "time": {"base": "clock", "minutes": number}, "repeat": {"unit": "day"}}


def missing(stream, changes):
    """Each event's changes in the order in which they were answered; twice the same is told once
    or twice."""
    for number in {number for number, _ in changes}:
        asked = [minutes for event, minutes in changes if event == number]
        told = [minutes for event, minutes in stream.changes if event == number]
        if asked != told:
            return f"event {number}: {len(asked)} changes were answered, {len(told)} told"
    return ""


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--streams", type=int, default=200)
    parser.add_argument("--inflight", type=int, default=50)
    parser.add_argument("--seconds", type=float, default=5)
    parser.add_argument("--report", action="store_true")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder, serving.Controller(
            f"{folder}/project.db", arguments=["--log-level", "info"]).until_up() as controller:
        client = controller.client()
        for number in range(options.inflight):
            if client.ask("POST", "/events", event_of(number)).status != 201:
                raise AssertionError("not added")
        streams = Streams(controller.address, options.streams)
        load = Load(controller, options.inflight)
        load.run(options.seconds)
        if load.faults or not load.changes or not load.times["look"]:
            raise AssertionError(load.faults[:3] or "nothing happened")
        try:
            serving.until(lambda: all(stream.broken or len(stream.changes) >= len(load.changes)
                                      for stream in streams.streams), "what the streams tell")
        finally:
            streams.close()
        for stream in streams.streams:
            fault = stream.broken or missing(stream, load.changes)
            if fault:
                raise AssertionError(fault)
            if len(set(stream.ids)) != len(stream.ids):
                raise AssertionError("something was told twice")
        print(f"{len(load.changes)} changes told to each of {options.streams} streams, "
              f"{len(load.times['look'])} other requests answered")
        if options.report:
            report(client, load, options)
        if controller.stop() != 0:
            raise AssertionError(controller.said())
    return 0


def report(client, load, options):
    for what, times in load.times.items():
        times.sort()
        print(f"{what:8} {len(times) / options.seconds:8.0f} a second, median "
              f"{statistics.median(times) * 1000:.1f} ms, slowest {times[-1] * 1000:.1f} ms")
    # A tick is set 20 ms after the second on purpose.
    late = client.metric("vexalink_tick_lateness_max_seconds") * 1000 - 20
    ticks = client.metric("vexalink_ticks_total")
    print(f"the latest of {ticks:.0f} ticks came {late:.1f} ms late"
          f"{'' if late <= 50 else ', MISSED: at most 50'}")


if __name__ == "__main__":
    sys.exit(main())
