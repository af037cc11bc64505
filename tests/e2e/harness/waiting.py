"""Waiting for a condition, with a deadline that fails the test."""

import time

SECONDS = 30
PAUSE = 0.02


def happens(condition, seconds):
    """Whether the condition holds within that time."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(PAUSE)
    return True


def until(condition, what, seconds=SECONDS):
    """The first true value of condition(); what says in the failure's words what did not come."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {seconds} s: {what() if callable(what) else what}")
        time.sleep(PAUSE)
