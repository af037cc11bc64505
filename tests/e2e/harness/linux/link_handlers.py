"""A desktop entry in the user's home folder."""

from harness.opened_links import OpenedLinks


class Handler(OpenedLinks):
    def __init__(self, home, scheme):
        opened = home.path / "opened"
        super().__init__(opened)
        script = home.path / "handler"
        script.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >> '{opened}'\n", encoding="utf-8")
        script.chmod(0o755)
        folder = home.path / ".local/share/applications"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "handler.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Handler\nExec={script} %u\n"
            f"MimeType=x-scheme-handler/{scheme};\n", encoding="utf-8")
        (folder / "mimeapps.list").write_text(
            f"[Default Applications]\nx-scheme-handler/{scheme}=handler.desktop\n", encoding="utf-8")

    def remove(self):
        """It goes with the home folder."""
