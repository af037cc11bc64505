"""A desktop entry in the user's home folder."""


class Handler:
    def __init__(self, home, scheme):
        self._opened = home.path / "opened"
        script = home.path / "handler"
        script.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >> '{self._opened}'\n", encoding="utf-8")
        script.chmod(0o755)
        folder = home.path / ".local/share/applications"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "handler.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Handler\nExec={script} %u\n"
            f"MimeType=x-scheme-handler/{scheme};\n", encoding="utf-8")
        (folder / "mimeapps.list").write_text(
            f"[Default Applications]\nx-scheme-handler/{scheme}=handler.desktop\n", encoding="utf-8")

    def opened(self):
        """Whole lines only: the last one may be on its way."""
        text = self._opened.read_text(encoding="utf-8") if self._opened.exists() else ""
        return text.split("\n")[:-1]

    def forget(self):
        self._opened.unlink(missing_ok=True)

    def remove(self):
        """It goes with the home folder."""
