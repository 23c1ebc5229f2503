"""XML as the host hands it over: elements with their own text, read strictly and written compactly."""

from xml.parsers import expat
from typing import List, Optional

from clib import int32, strtol, strtoul, uint32

MAX_DEPTH = 256
_BLANK = " \t\r\n"


class Node:
    """One element: its name, its attributes, its own text joined, and its child elements in order."""

    def __init__(self, name: str, text: str = ""):
        self.name = name
        self.text = text
        self.attributes = {}
        self.children: List["Node"] = []

    def add(self, name: str, value="") -> "Node":
        """Adds and returns a child element; numbers are written in decimal."""
        return self.append(Node(name, str(value)))

    def append(self, node: "Node") -> "Node":
        self.children.append(node)
        return node

    def child(self, name: str) -> Optional["Node"]:
        """The first child element of that name."""
        return next((node for node in self.children if node.name == name), None)

    def is_empty(self) -> bool:
        return not self.children and not self.text.strip(_BLANK)

    # Typed readers of a child; a missing child reads as the empty text or 0.

    def text_of(self, name: str) -> str:
        node = self.child(name)
        return node.text if node else ""

    def int_of(self, name: str) -> int:
        return int32(strtol(self.text_of(name)))

    def uint_of(self, name: str) -> int:
        return uint32(strtoul(self.text_of(name)))

    def ulong_of(self, name: str) -> int:
        return strtoul(self.text_of(name))

    def as_int(self) -> int:
        return int32(strtol(self.text))


class _Refused(Exception):
    pass


def parse(text: str) -> Optional[Node]:
    """The root element of `text`, or None when it is not well-formed, has a DOCTYPE, or nests too deeply."""
    root = None
    open_nodes: List[Node] = []

    def start(name, attributes):
        nonlocal root
        if len(open_nodes) >= MAX_DEPTH:
            raise _Refused
        node = Node(name)
        node.attributes = attributes
        if open_nodes:
            open_nodes[-1].append(node)
        else:
            root = node
        open_nodes.append(node)

    def end(_name):
        open_nodes.pop()

    def characters(data):
        open_nodes[-1].text += data

    def doctype(*_):
        raise _Refused

    parser = expat.ParserCreate("UTF-8")
    parser.StartElementHandler = start
    parser.EndElementHandler = end
    parser.CharacterDataHandler = characters
    parser.StartDoctypeDeclHandler = doctype
    try:
        parser.Parse(text.encode("utf-8"), True)
    except (expat.ExpatError, _Refused, UnicodeEncodeError):
        return None
    return root


def _escape(text: str) -> str:
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def serialise(node: Node) -> str:
    """`node` as compact text: no declaration, no indentation, `<name/>` where there is no content.

    Attributes are left out: no element that the agent makes has any.
    """
    content = _escape(node.text) + "".join(serialise(child) for child in node.children)
    return f"<{node.name}>{content}</{node.name}>" if content else f"<{node.name}/>"
