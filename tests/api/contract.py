"""The description of the API, and whether an answer is as it says."""

import json
import pathlib
import re

import jsonschema

DESCRIPTION = pathlib.Path(__file__).parents[2] / "controller/api/openapi.json"
DOCUMENT = json.loads(DESCRIPTION.read_text(encoding="utf-8"))

#: "get /events/200": what was seen, so that a test can tell what was not.
seen = set()


def _pattern(path):
    parts = re.split(r"(\{\w+\})", path)
    return re.compile("".join("[^/]+" if part.startswith("{") else re.escape(part)
                              for part in parts))


_PATTERNS = [(_pattern(path), path) for path in sorted(DOCUMENT["paths"], key=lambda p: "{" in p)]


def path_of(target):
    """The path of the description that a target belongs to; None where there is none."""
    for pattern, path in _PATTERNS:
        if pattern.fullmatch(target):
            return path
    return None


def resolve(node):
    while "$ref" in node:
        found = DOCUMENT
        for step in node["$ref"][2:].split("/"):
            found = found[step]
        node = found
    return node


def validator(schema):
    whole = {**schema, "components": DOCUMENT["components"]}
    return jsonschema.Draft202012Validator(whole)


def check_schema(schema, value, where):
    errors = sorted(validator(schema).iter_errors(value), key=lambda error: list(error.path))
    if errors:
        first = errors[0]
        at = "/".join(str(step) for step in first.absolute_path)
        raise AssertionError(f"{where}: /{at}: {first.message[:800]}")


def is_valid(schema, value):
    return validator(schema).is_valid(value)


def check(method, target, answer):
    """Raises an AssertionError where an answer is not one that the description knows."""
    where = f"{method} {target}: {answer.status}"
    path = path_of(target)
    operation = DOCUMENT["paths"].get(path, {}).get(method.lower())
    if operation is None:
        # No such thing is described: then it must be refused, as a problem all the same.
        assert answer.status in (400, 403, 404, 405, 414, 501), f"{where}: nothing is described"
        check_schema({"$ref": "#/components/schemas/Problem"}, answer.json, where)
        return
    responses = operation["responses"]
    response = resolve(responses.get(str(answer.status), responses["default"]))
    assert str(answer.status) in responses or answer.status >= 400, f"{where} is not described"
    for name, header in response.get("headers", {}).items():
        assert name.lower() in answer.headers, f"{where}: the header {name} is missing"
        check_schema(resolve(header)["schema"], answer.headers[name.lower()], where)
    check_content(response.get("content"), answer, where)
    seen.add(f"{method.lower()} {path} {answer.status}")


def check_content(content, answer, where):
    if content is None:
        assert answer.body == b"", f"{where}: there is a body: {answer.body[:200]!r}"
        return
    kind = answer.headers.get("content-type", "").split(";")[0]
    assert kind in content, f"{where}: it is {kind!r}, described is {sorted(content)}"
    if not kind.endswith("json"):
        assert answer.body, f"{where}: it is empty"
        return
    text = answer.body.decode("utf-8")  # strict
    check_schema(content[kind]["schema"], json.loads(text), where)
    if answer.status >= 400:
        assert json.loads(text)["status"] == answer.status, where
