#!/usr/bin/env python3
"""Refuses what macOS 10.15's C++ library lacks and its headers do not tell.

libc++ marks what lives in the system's library with the version that brought it, and the compiler enforces that. Three
kinds escape: what the libc++ at hand does not mark, what it lacks as a whole, and what is in headers alone but not in
those of every Xcode that still builds for 10.15.

usage: newer_library.py FOLDER-OR-FILE...
"""
import re
import sys
from pathlib import Path

# What to look for, and why it is kept out.
NEWER = [
    (r"<memory_resource>|\bpmr::", "polymorphic allocators: in the system's library since macOS 14.0"),
    (r"<format>|\bstd::(v?format(_to)?)\b", "formatting: needs floating-point to_chars, macOS 13.3; {fmt} stands for it"),
    (r"<stop_token>|\bstd::(jthread|stop_(token|source|callback))\b", "joining threads: in no libc++ before LLVM 20"),
    (r"<stacktrace>|\bstd::(basic_)?stacktrace\b", "stack traces: in no libc++"),
    (r"<syncstream>|\bstd::(basic_)?(osyncstream|syncbuf)\b", "synchronised streams: in no libc++ before LLVM 18"),
    (r"<execution>|\bstd::execution::", "parallel algorithms: experimental in every libc++"),
    (r"<(latch|barrier|semaphore)>", "latches, barriers, semaphores: in the system's library since macOS 11.0"),
    (r"\bstd::atomic_(wait|notify)|\batomic\w*\.(wait|notify_(one|all))\(", "waiting on atomics: since macOS 11.0"),
    (r"\bchrono::(year|month|day|weekday|year_month_day|zoned_time|time_zone|utc_clock|local_(time|days)|parse|current_zone)\b",
     "calendar and time zones of chrono: not whole in any libc++; time zones not in the system's library of 10.15"),
    (r"\bclock_cast\b", "conversions between clocks: not in every libc++ that builds for 10.15"),
    (r"\bstd::atomic<std::(shared|weak)_ptr", "atomic shared pointers: in no libc++"),
    (r"\bmove_only_function\b|<flat_(map|set)>|<mdspan>|<generator>|<expected>|<print>|\bstd::print(ln)?\b",
     "the library of C++23"),
]


def sources(places):
    for place in map(Path, places):
        yield from (place,) if place.is_file() else sorted(
            path for path in place.rglob("*") if path.suffix in {".cpp", ".h", ".mm"})


def main(places):
    found = 0
    checked = 0
    for path in sources(places):
        checked += 1
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            code = line.split("//")[0]
            for pattern, reason in NEWER:
                if re.search(pattern, code):
                    print(f"{path}:{number}: {reason}\n    {line.strip()}")
                    found += 1
    print(f"{checked} sources, {found} uses of what macOS 10.15 lacks")
    return 1 if found or not checked else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
