"""A page as a tree of elements."""
from html.parser import HTMLParser

from files import read

VOID = {"br", "hr", "img", "input", "link", "meta"}


class Element:
    def __init__(self, tag, attributes, parent):
        self.tag = tag
        self.attributes = attributes
        self.parent = parent
        self.children = []
        self.own_text = ""

    @property
    def classes(self):
        return (self.attributes.get("class") or "").split()

    @property
    def text(self):
        return " ".join((self.own_text + " ".join(child.text for child in self.children)).split())

    def all(self):
        """The element and everything in it, in document order."""
        yield self
        for child in self.children:
            yield from child.all()

    def find(self, tag):
        return [element for element in self.all() if element.tag == tag]

    def having(self, attribute):
        return [element for element in self.all() if attribute in element.attributes]

    def ancestors(self):
        """The element and what it is in, outwards."""
        element = self
        while element is not None:
            yield element
            element = element.parent

    def __repr__(self):
        return "<" + ".".join([self.tag, *self.classes]) + ">"


class _Builder(HTMLParser):
    def __init__(self):
        super().__init__()
        self.root = None
        self.open = []

    def handle_starttag(self, tag, attrs):
        element = Element(tag, dict(attrs), self.open[-1] if self.open else None)
        if self.open:
            self.open[-1].children.append(element)
        else:
            self.root = element
        if tag not in VOID:
            self.open.append(element)

    def handle_startendtag(self, tag, attrs):
        self.handle_starttag(tag, attrs)
        if tag not in VOID:
            self.open.pop()

    def handle_endtag(self, tag):
        if not self.open or self.open[-1].tag != tag:
            raise ValueError(f"</{tag}> closes {self.open[-1] if self.open else 'nothing'}")
        self.open.pop()

    def handle_data(self, data):
        if self.open:
            self.open[-1].own_text += data


def parse(name):
    builder = _Builder()
    builder.feed(read(name))
    builder.close()
    if builder.open:
        raise ValueError(f"{name}: never closed: {builder.open}")
    return builder.root


def english(root):
    """Key -> English text, of the elements that are translated."""
    return {element.attributes["data-text"]: element.text for element in root.having("data-text")}
