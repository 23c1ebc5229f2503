"""A server that answers as a test tells it to, for what a real controller does not do on demand:
hostile texts, answers of another program, connections that break.

It keeps every request that it gets, in their order.
"""

import http.server
import json
import threading


class Request:
    def __init__(self, handler, body):
        self.method = handler.command
        self.path = handler.path
        self.headers = {name.lower(): value for name, value in handler.headers.items()}
        self.body = body

    @property
    def json(self):
        return json.loads(self.body)

    def __repr__(self):
        return f"{self.method} {self.path} {self.body!r}"


class Answer:
    def __init__(self, body=b"", status=200, content_type="application/json", headers=None):
        self.status = status
        self.content_type = content_type
        self.headers = headers or {}
        self.body = body if isinstance(body, bytes) else json.dumps(body).encode()


def problem(status, name, detail, errors=None):
    body = {"type": f"urn:vexalink:problem:{name}", "title": "t", "status": status, "detail": detail}
    if errors:
        body["errors"] = errors
    return Answer(body, status, "application/problem+json")


class FakeController:
    """`routes` maps "GET /events" (below /api/v1, without the query) to an Answer, a JSON value, a
    list of them, one a request, or a function of the request that gives one. A function may also take
    the handler, as `stream(request, handler)`, and write the answer itself."""

    def __init__(self, routes):
        self.routes = dict(routes)
        self.requests = []
        controller = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def log_message(self, *_):
                pass

            def answer(self):
                length = int(self.headers.get("Content-Length", 0))
                request = Request(self, self.rfile.read(length))
                controller.requests.append(request)
                controller.give(request, self)

            do_GET = do_POST = do_PUT = do_PATCH = do_DELETE = answer

        class Server(http.server.ThreadingHTTPServer):
            daemon_threads = True

            def handle_error(self, *_):
                pass  # a client that goes away is what some tests are about

        self.server = Server(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self.server.server_address[1]}"
        self.thread = threading.Thread(target=self.server.serve_forever, args=(0.01,), daemon=True)
        self.thread.start()

    def give(self, request, handler):
        key = f"{request.method} {request.path.removeprefix('/api/v1').partition('?')[0]}"
        answer = self.routes.get(key)
        if answer is None:
            answer = problem(404, "not-found", f"there is no {key}")
        if isinstance(answer, list):
            answer = answer.pop(0)
        if callable(answer):
            count = answer.__code__.co_argcount
            answer = answer(request, handler) if count == 2 else answer(request)
            if answer is None:
                return
        if not isinstance(answer, Answer):
            answer = Answer(answer)
        handler.send_response(answer.status)
        handler.send_header("Content-Type", answer.content_type)
        handler.send_header("Content-Length", str(len(answer.body)))
        for name, value in answer.headers.items():
            handler.send_header(name, value)
        handler.end_headers()
        handler.wfile.write(answer.body)

    def close(self):
        self.server.shutdown()
        self.server.server_close()
        self.thread.join()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()
