"""Changes that a test takes back by itself, or its end does."""


def undone_once(case, undo):
    """An operation that undoes, whoever calls it first: the test, or its end."""
    pending = [True]

    def once():
        if pending and pending.pop():
            undo()
    case.addCleanup(once)
    return once
