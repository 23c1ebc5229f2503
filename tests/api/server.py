"""A running controller, and a client that holds every answer against the description."""

import http.client
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import tempfile
import time

import contract

PROGRAM = os.environ.get("VEXALINK_PROGRAM", "build/release/bin/vexalink")
ZONE = "CET-1CEST,M3.5.0,M10.5.0/3"
PATIENCE = 60  # seconds; nothing here takes long, but a machine may be busy


class Answer:
    """What came back: its status, its headers by name in lower case, and its bytes."""

    def __init__(self, status, headers, body):
        self.status = status
        self.headers = headers
        self.body = body

    @property
    def json(self):
        return json.loads(self.body)

    @property
    def problem(self):
        """"invalid" for example, from the type of a problem; None where it is none."""
        if self.headers.get("content-type") != "application/problem+json":
            return None
        return self.json["type"].rsplit(":", 1)[1]

    def __repr__(self):
        return f"{self.status} {self.body[:500]!r}"


class Controller:
    """`vexalink serve` on a project of its own and a free port. Requests bring `token` where there
    is one."""

    def __init__(self, *options, start=True):
        self.folder = tempfile.TemporaryDirectory(prefix="vexalink-api-")
        self.project = str(pathlib.Path(self.folder.name) / "project.db")
        self.options = options
        self.listen = "127.0.0.1:0"
        self.token = None
        self.process = None
        if start:
            self.start()

    def start(self):
        log = pathlib.Path(self.folder.name) / "log"
        environment = {**os.environ, "TZ": ZONE, "HOME": self.folder.name}
        environment.pop("NOTIFY_SOCKET", None)
        with open(log, "wb") as err:
            self.process = subprocess.Popen(
                [PROGRAM, "serve", "--project", self.project, "--listen", self.listen,
                 "--latitude", "52.5", "--longitude", "13.4", *self.options],
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=err, env=environment)
        end = time.monotonic() + PATIENCE
        while not (told := re.search(r"api http://[0-9.]+:(\d+)/", log.read_text())):
            if self.process.poll() is not None or time.monotonic() > end:
                raise AssertionError("the controller has not started:\n" + log.read_text())
            time.sleep(0.01)
        self.port = int(told[1])

    def log(self):
        return (pathlib.Path(self.folder.name) / "log").read_text()

    def kill(self):
        """Without a word, as a power cut would."""
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def stop(self):
        """Its exit status."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
        return self.process.wait(PATIENCE)

    def close(self):
        if self.process and self.process.poll() is None:
            self.kill()
        self.folder.cleanup()

    def ask(self, method, target, body=None, headers=None, check=True):
        """Asks for a target below /api/v1. `body` is bytes, or what JSON can say; of that the
        media type follows unless the headers say one. With `check` the answer has to be as the
        description says."""
        headers = dict(headers or {})
        given = {name.lower() for name in headers}
        if body is not None and not isinstance(body, bytes):
            body = json.dumps(body).encode()
        if body is not None and "content-type" not in given:
            headers["Content-Type"] = "application/json"
        if self.token:
            headers["Authorization"] = f"Bearer {self.token}"
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=PATIENCE)
        try:
            connection.request(method, "/api/v1" + target, body, headers)
            response = connection.getresponse()
            answer = Answer(response.status,
                            {name.lower(): value for name, value in response.getheaders()},
                            response.read())
        finally:
            connection.close()
        if check:
            contract.check(method, target.split("?")[0], answer)
        return answer

    def get(self, target):
        return self.ask("GET", target)

    def post(self, target, body=None, **more):
        return self.ask("POST", target, body, **more)

    def raw(self, data):
        """Sends bytes as they are; all that comes back until the other side closes, or has said
        nothing for a while."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=PATIENCE) as connection:
            try:
                connection.sendall(data)
                connection.shutdown(socket.SHUT_WR)
            except OSError:
                pass  # refused before all was sent
            got = b""
            try:
                while piece := connection.recv(65536):
                    got += piece
            except ConnectionResetError:
                pass
            return got

    def export(self):
        return self.get("/project/export").body
