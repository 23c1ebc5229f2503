"""Runs the program as its users do."""

import os
import signal
import subprocess
import time

PROGRAM = os.environ["VEXALINK_PROGRAM"]
SECONDS = 60  # what takes longer hangs


def environment(**more):
    """Nothing of the caller's own reaches the program."""
    kept = {name: os.environ[name] for name in ("PATH", "HOME", "TZ") if name in os.environ}
    # Where this is run with sanitizers, their settings count.
    kept.update({name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")})
    return kept | {"LC_ALL": "C.UTF-8"} | more


class Result:
    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.err = err

    def __repr__(self):
        return f"status {self.status}\n--- out\n{self.out}\n--- err\n{self.err}"


def run(*arguments, url=None, env=None, stdin=""):
    settings = environment(**(env or {}))
    if url:
        settings["VEXALINK_URL"] = url
    done = subprocess.run([PROGRAM, *arguments], env=settings, input=stdin.encode(),
                          capture_output=True, timeout=SECONDS, check=False)
    return Result(done.returncode, done.stdout.decode(), done.stderr.decode())


class Running:
    """The program while it runs; killed at the end of a `with`."""

    def __init__(self, *arguments, url, env=None, stdout=subprocess.PIPE):
        self.process = subprocess.Popen(
            [PROGRAM, *arguments], env=environment(VEXALINK_URL=url, **(env or {})),
            stdin=subprocess.DEVNULL, stdout=stdout, stderr=subprocess.PIPE, text=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        for stream in (self.process.stdout, self.process.stderr):
            if stream:
                stream.close()

    def line(self):
        return self.process.stdout.readline()

    def stop(self, with_signal=signal.SIGINT):
        self.process.send_signal(with_signal)
        return self.wait()

    def wait(self):
        return self.process.wait(timeout=SECONDS)


def until(condition, what):
    """Waits for something that is sure to come."""
    end = time.monotonic() + SECONDS
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"{what} did not come")
        time.sleep(0.01)
