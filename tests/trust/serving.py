"""A controller as its users run it, and a client that speaks HTTP to it."""

import http.client
import json
import os
import pathlib
import re
import signal
import subprocess
import time
import urllib.parse

PROGRAM = os.environ.get("VEXALINK_PROGRAM") or str(
    pathlib.Path(__file__).resolve().parents[2] / "build/release/bin/vexalink")
SECONDS = 120  # what takes longer hangs


def minute_zone(seconds):
    """A time zone in which a minute begins so many seconds from now, within a second."""
    late = int(time.time() + seconds) % 60
    return f"TST-00:00:{(60 - late) % 60:02d}"


class Answer:
    def __init__(self, status, headers, body):
        self.status = status
        self.headers = headers
        self.body = body

    def json(self):
        return json.loads(self.body)

    def __repr__(self):
        return f"{self.status} {self.body[:500]!r}"


class Client:
    """One connection that is kept; what breaks it is an OSError or http.client.HTTPException."""

    def __init__(self, address, timeout=SECONDS):
        self.connection = http.client.HTTPConnection(*address, timeout=timeout)

    def ask(self, method, path, body=None):
        headers = {}
        data = None
        if body is not None:
            data = json.dumps(body).encode()
            headers["Content-Type"] = "application/json"
        whole = path if path.startswith(("/healthz", "/readyz", "/metrics")) else "/api/v1" + path
        self.connection.request(method, whole, data, headers)
        answer = self.connection.getresponse()
        return Answer(answer.status, answer.headers, answer.read())

    def get(self, path):
        answer = self.ask("GET", path)
        if answer.status != 200:
            raise AssertionError(f"GET {path}: {answer}")
        return answer.json()

    def metric(self, name):
        for line in self.ask("GET", "/metrics").body.decode().splitlines():
            if line.split(" ")[0] == name:
                return float(line.split(" ")[1])
        raise AssertionError(f"no metric {name}")

    def close(self):
        self.connection.close()


class Controller:
    """`vexalink serve` on a project; killed at the end of a `with`."""

    def __init__(self, project, zone="UTC0", log=None, arguments=(), environment=None,
                 prepare=None, wrap=()):
        self.log = pathlib.Path(log or f"{project}.log")
        kept = {name: os.environ[name] for name in ("PATH",) if name in os.environ}
        kept.update({name: value for name, value in os.environ.items()
                     if name.endswith("SAN_OPTIONS")})
        kept |= {"LC_ALL": "C.UTF-8", "TZ": zone, "HOME": str(self.log.parent)}
        kept |= environment or {}
        self.begin = self.log.stat().st_size if self.log.exists() else 0
        with self.log.open("ab") as err:
            self.process = subprocess.Popen(
                [*wrap, PROGRAM, "serve", "--project", str(project), "--listen", "127.0.0.1:0",
                 "--empty", "--latitude", "52.5", "--longitude", "13.4", *arguments],
                env=kept, stdin=subprocess.DEVNULL, stdout=err, stderr=err, preexec_fn=prepare)
        self.address = None
        self.clients = []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()

    @property
    def pid(self):
        return self.process.pid

    def said(self):
        with self.log.open("rb") as log:
            log.seek(self.begin)
            return log.read().decode(errors="replace")

    def until_said(self, pattern, seconds=SECONDS):
        end = time.monotonic() + seconds
        while True:
            ended = self.process.poll() is not None
            found = re.search(pattern, self.said())
            if found:
                return found
            if ended or time.monotonic() > end:
                raise AssertionError(f"{pattern!r} was not said:\n{self.said()}")
            time.sleep(0.005)

    def until_up(self, seconds=SECONDS):
        url = self.until_said(r"api (http://\S+/)", seconds).group(1)
        parts = urllib.parse.urlsplit(url)
        self.address = (parts.hostname, parts.port)
        return self

    def client(self, timeout=SECONDS):
        self.clients.append(Client(self.address, timeout))
        return self.clients[-1]

    def signal(self, number):
        self.process.send_signal(number)

    def wait(self, seconds=SECONDS):
        return self.process.wait(timeout=seconds)

    def stop(self, seconds=SECONDS):
        self.signal(signal.SIGTERM)
        return self.wait(seconds)

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        for client in self.clients:
            client.close()


def until(condition, what, seconds=SECONDS):
    """Waits for something that is sure to come, and answers it."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"{what} did not come")
        time.sleep(0.01)
