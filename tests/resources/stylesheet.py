"""As much of a style sheet as it takes to know an element's colours. What is not understood is an error, not skipped."""
import re

from files import read


class Stylesheet:
    def __init__(self, theme):
        """theme: "light" or "dark"."""
        css = re.sub(r"/\*.*?\*/", "", read("FallbackPage.css"), flags=re.DOTALL)
        self.rules = []  # (specificity, order, selector parts, declarations)
        self.outside = []  # (selector, declarations): states and pseudo-elements, for no element at rest
        for prelude, body in blocks(css):
            if prelude.startswith("@media"):
                if prelude == "@media (prefers-color-scheme: dark)" and theme == "dark":
                    for inner, declarations in blocks(body):
                        self._add(inner, declarations)
            elif not prelude.startswith("@keyframes"):
                self._add(prelude, body)
        if not self.rules:
            raise ValueError("no rules")

    def _add(self, selectors, body):
        for selector in selectors.split(","):
            if ":" in selector.replace(":root", ""):
                self.outside.append((selector.strip(), declarations_of(body)))
                continue
            parts = [compound(part) for part in selector.split()]
            specificity = (sum(len(rest) for _, rest in parts), sum(1 for tag, _ in parts if tag))
            self.rules.append((specificity, len(self.rules), parts, declarations_of(body)))

    def own(self, element, *names):
        """The value that the rules give the element itself for one of the properties, the last said of them; or None."""
        value, strongest = None, None
        for specificity, order, parts, declarations in self.rules:
            if matches(element, parts):
                for name in names:
                    if name in declarations and (strongest is None or (specificity, order) >= strongest):
                        value, strongest = declarations[name], (specificity, order)
        return value

    def resolve(self, value, element):
        """The value with its variables replaced."""
        root = list(element.ancestors())[-1]

        def variable(found):
            said = self.own(root, found.group(1))
            if said is None:
                raise ValueError(f"{found.group(1)} is not defined")
            return self.resolve(said, element)

        return re.sub(r"var\((--[\w-]+)\)", variable, value)

    def colours(self, value, element):
        """Every colour that a value names, as (red, green, blue)."""
        value = self.resolve(value, element)
        if re.search(r"rgb|hsl|color|white|black|#[0-9a-f]{3,5}\b|#[0-9a-f]{7,}", value, re.IGNORECASE):
            raise ValueError(f"a colour that is not understood: {value}")
        return [tuple(bytes.fromhex(digits)) for digits in re.findall(r"#([0-9a-f]{6})\b", value)]

    def text_colour(self, element):
        for ancestor in element.ancestors():
            value = self.own(ancestor, "color")
            if value:
                (colour,) = self.colours(value, ancestor)
                return colour
        raise ValueError(f"{element} has no colour")

    def backgrounds(self, element):
        """The colours that can be behind the element's content: of its own background or the nearest one around it."""
        for ancestor in element.ancestors():
            value = self.own(ancestor, "background", "background-color")
            if value and value not in ("none", "transparent"):
                colours = self.colours(value, ancestor)
                if not colours:
                    raise ValueError(f"{ancestor}: no colour in {value}")
                return colours
        raise ValueError(f"nothing behind {element}")


def blocks(css):
    """(prelude, body) of each block at the top level."""
    depth, start, prelude = 0, 0, ""
    for at, character in enumerate(css):
        if character == "{":
            depth += 1
            if depth == 1:
                prelude, start = css[start:at].strip(), at + 1
        elif character == "}":
            depth -= 1
            if depth == 0:
                yield " ".join(prelude.split()), css[start:at]
                start = at + 1
    if depth:
        raise ValueError("unbalanced braces")


def declarations_of(body):
    pairs = (line.split(":", 1) for line in body.split(";") if line.strip())
    return {name.strip(): " ".join(value.split()) for name, value in pairs}


def compound(part):
    """(tag or "", the rest: .classes, [attributes] and :root) of one part of a selector."""
    found = re.fullmatch(r"(\*|[a-z][a-z0-9]*)?((?:\.[\w-]+|\[[\w-]+\]|:root)*)", part)
    if not found:
        raise ValueError(f"a selector that is not understood: {part}")
    return (found.group(1) or "").replace("*", ""), re.findall(r"\.[\w-]+|\[[\w-]+\]|:root", found.group(2))


def matches(element, parts):
    if not is_one(element, parts[-1]):
        return False
    rest = list(parts[:-1])
    for ancestor in list(element.ancestors())[1:]:
        if rest and is_one(ancestor, rest[-1]):
            rest.pop()
    return not rest


def is_one(element, part):
    tag, rest = part
    held = {"." + name for name in element.classes} | {f"[{name}]" for name in element.attributes}
    if element.parent is None:
        held.add(":root")
    return tag in ("", element.tag) and held.issuperset(rest)
