"""The file in which a handler of links writes down each one that it is given, a line each."""


class OpenedLinks:
    def __init__(self, path):
        self._path = path

    def opened(self):
        """Whole lines only: the last one may be on its way."""
        text = self._path.read_text(encoding="utf-8") if self._path.exists() else ""
        return text.split("\n")[:-1]

    def forget(self):
        self._path.unlink(missing_ok=True)
