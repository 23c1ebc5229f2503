#!/usr/bin/env python3
"""Measures what a running controller costs and how fast it answers; prints one table.

  bench/api/measure.py [--events 1000,10000] [--idle SECONDS] [--rounds N]

VEXALINK_PROGRAM names the program (build/release/bin/vexalink). Nothing else should run on the
machine meanwhile. Medians are over the rounds; a change is measured until it is answered, which is
when it is on the disk.
"""

import argparse
import os
import pathlib
import statistics
import sys
import tempfile
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/trust"))
import serving

LIMITS = {1000: (20, 15), 10000: (150, 100)}  # milliseconds: the list, a change
UNITS = ("day", "week", "month", "year")


def event_of(number):
    """All kinds of repeats and bases, spread over the day."""
    event = {"description": f"Event {number:05d}", "start": "2026-01-01"}
    base = ("clock", "clock", "sunrise", "sunset")[number % 4]
    event["time"] = ({"base": "clock", "minutes": number * 7 % 1440} if base == "clock"
                     else {"base": base, "minutes": number % 120 - 60})
    unit = UNITS[number // 4 % 4]
    event["repeat"] = {"unit": unit, "every": 1 + number % 3}
    if unit == "week":
        event["repeat"]["on"] = ["mon", "wed", "fri"]
    return event


def xml_of(count):
    """The same as XML, to fill a project at once."""
    rows = []
    for number in range(count):
        event = event_of(number)
        offset = {"clock": 0, "sunrise": 1, "sunset": 2}[event["time"]["base"]]
        unit = event["repeat"]["unit"]
        frequency = {"day": 1, "week": 2, "month": 3, "year": 4}[unit]
        days = "<daymask>42</daymask>" if unit == "week" else ""
        rows.append(
            f"<event><eventid>{number + 1}</eventid><description>{event['description']}"
            f"</description><start><offset>{offset}</offset><offset_minutes>"
            f"{event['time']['minutes']}</offset_minutes><start_date><start_day>1</start_day>"
            f"<start_month>1</start_month><start_year>2026</start_year></start_date></start>"
            f"<repeat><frequency>{frequency}</frequency><rate>{event['repeat']['every']}</rate>"
            f"{days}</repeat></event>")
    return "<events>" + "".join(rows) + "</events>"


def milliseconds(work):
    begin = time.perf_counter()
    work()
    return (time.perf_counter() - begin) * 1000


def median(work, rounds):
    return statistics.median(milliseconds(lambda: work(n)) for n in range(rounds))


def resident(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1]) / 1024
    raise AssertionError("no VmRSS")


def processor_seconds(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def fill(controller, count):
    client = controller.client()
    client.connection.request("POST", "/api/v1/project/import", xml_of(count).encode(),
                              {"Content-Type": "application/xml"})
    answer = client.connection.getresponse()
    text = answer.read()
    if answer.status != 200:
        raise AssertionError(f"import: {answer.status} {text[:500]!r}")


def together(controller, count):
    """Changes that arrive together: how many transactions, and how long until all are answered."""
    before = controller.client().metric("vexalink_saves_total")
    clients = [controller.client() for _ in range(count)]
    ready = threading.Barrier(count + 1)
    refused = []

    def change(number):
        ready.wait()
        answer = clients[number].ask("PATCH", f"/events/{number + 1}",
                                     {"time": {"base": "clock", "at": f"{number % 24:02d}:42"}})
        if answer.status != 200:
            refused.append(answer)

    threads = [threading.Thread(target=change, args=(n,)) for n in range(count)]
    for thread in threads:
        thread.start()
    ready.wait()
    took = milliseconds(lambda: [thread.join() for thread in threads])
    if refused:
        raise AssertionError(refused[0])
    return controller.client().metric("vexalink_saves_total") - before, took


def measure(count, rounds, report):
    with tempfile.TemporaryDirectory() as folder:
        with serving.Controller(f"{folder}/project.db").until_up() as controller:
            fill(controller, count)
            client = controller.client()
            total = client.get("/events?limit=1")["total"]
            if total != count:
                raise AssertionError(f"{total} events where {count} were given")
            most_list, most_change = LIMITS.get(count, (None, None))
            report(f"GET /events, {count} events", median(
                lambda _: client.get("/events"), rounds), "ms", most_list)

            def put(number):
                event = event_of(number)
                event["time"] = {"base": "clock", "at": f"{number % 24:02d}:30"}
                answer = client.ask("PUT", f"/events/{number + 1}", event)
                if answer.status != 200:
                    raise AssertionError(answer)
            report(f"PUT /events/N, {count} events", median(put, rounds), "ms", most_change)
            report(f"GET /events/N, {count} events", median(
                lambda n: client.get(f"/events/{n + 1}"), rounds), "ms", None)
            report(f"GET /today, {count} events", median(
                lambda _: client.get("/today"), rounds), "ms", None)
            saves, took = together(controller, 40)
            report(f"40 changes together, {count} events", took, "ms", None)
            report("  transactions", saves, "", None)
            report(f"resident, {count} events", resident(controller.pid), "MB", None)
            report(f"worst tick while changing, {count} events", client.metric(
                "vexalink_tick_lateness_max_seconds") * 1000, "ms", None)


def idle(seconds, requests, report):
    with tempfile.TemporaryDirectory() as folder:
        with serving.Controller(f"{folder}/project.db").until_up() as controller:
            client = controller.client()
            for number in range(20):
                if client.ask("POST", "/events", event_of(number)).status != 201:
                    raise AssertionError("not added")
            client.get("/events")
            report("resident, 20 events", resident(controller.pid), "MB", 15)
            # What a page and a monitor ask in an hour, and more.
            def hour():
                for number in range(requests):
                    client.get(("/events", "/today", "/status", "/journal?limit=20")[number % 4])
                    if number % 100 == 0:
                        client.ask("PATCH", f"/events/{number // 100 % 20 + 1}",
                                   {"time": {"base": "clock", "minutes": number % 1440}})
            hour()
            first = resident(controller.pid)
            report(f"resident after {requests} requests", first, "MB", 15)
            hour()
            report("  growth in as many again", resident(controller.pid) - first, "MB", 0.5)
            client.close()
            begin = processor_seconds(controller.pid)
            time.sleep(seconds)
            used = processor_seconds(controller.pid) - begin
            report(f"processor, idle for {seconds} s", 100 * used / seconds, "%", 0.2)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--events", default="1000,10000")
    parser.add_argument("--rounds", type=int, default=31)
    parser.add_argument("--idle", type=int, default=60)
    parser.add_argument("--requests", type=int, default=7200)
    options = parser.parse_args()
    missed = []

    def report(what, value, unit, most):
        mark = "" if most is None else f"   (at most {most})" + ("" if value <= most else " MISSED")
        if most is not None and value > most:
            missed.append(what)
        print(f"{what:48} {value:10.2f} {unit:3}{mark}", flush=True)

    for count in [int(each) for each in options.events.split(",") if each]:
        measure(count, options.rounds, report)
    if options.idle > 0:
        idle(options.idle, options.requests, report)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
