#!/usr/bin/env python3
"""Refuses blocks that keep references, which the compiler does not.

A block copies what it uses, but of a variable that the lambda around it captured by reference it keeps that reference:
whatever runs it later finds the variable gone. So a lambda with a block in it names what its block keeps, as in
`[&, completion]`; one that captures by reference alone may hold no block.

usage: block_captures.py FOLDER-OR-FILE...
"""
import re
import sys
from pathlib import Path

TEXTS = re.compile(r'@?"(?:\\.|[^"\\\n])*"|//[^\n]*')
LAMBDA = re.compile(r"\[&\]\s*(?:\([^()]*\)\s*)?(?:->\s*[\w:<>, ]+?\s*)?\{")
BLOCK = re.compile(r"\^\s*(?:\([^()]*(?:\([^()]*\)[^()]*)*\)\s*)?\{")


def sources(places):
    for place in map(Path, places):
        yield from (place,) if place.is_file() else sorted(place.rglob("*.mm"))


def body_from(code, opening):
    """The text from an opening brace to its closing one."""
    depth = 0
    for index in range(opening, len(code)):
        depth += {"{": 1, "}": -1}.get(code[index], 0)
        if depth == 0:
            return code[opening:index]
    return code[opening:]


def main(places):
    found = 0
    blocks = 0
    for path in sources(places):
        code = TEXTS.sub(lambda text: " " * len(text.group()), path.read_text(encoding="utf-8"))
        blocks += len(BLOCK.findall(code))
        for lambda_ in LAMBDA.finditer(code):
            if BLOCK.search(body_from(code, lambda_.end() - 1)):
                line = code.count("\n", 0, lambda_.start()) + 1
                print(f"{path}:{line}: the block in this lambda keeps references: name what it is to copy")
                found += 1
    print(f"{blocks} blocks, {found} of them in lambdas that capture by reference alone")
    return 1 if found or not blocks else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
