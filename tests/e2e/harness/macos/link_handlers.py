"""A small application that the system's script compiler makes; it writes down each link that it is given."""

import pathlib
import plistlib
import shutil
import subprocess
import tempfile

from harness import places
from harness.opened_links import OpenedLinks

REGISTER = ("/System/Library/Frameworks/CoreServices.framework/Frameworks/LaunchServices.framework/Support/lsregister")
SCRIPT = """on open location link
    do shell script "printf '%s\\\\n' " & quoted form of link & " >> " & quoted form of "{opened}"
end open location
"""


class Handler(OpenedLinks):
    def __init__(self, _, scheme):
        self._folder = pathlib.Path(tempfile.mkdtemp(prefix="link-handler-", dir=places.ROOT))
        # Not beside it: of some folders a person is asked whether an application may write there.
        self._notes = pathlib.Path(tempfile.mkdtemp())
        opened = self._notes / "opened"
        super().__init__(opened)
        self._bundle = self._folder / "Lumora Link Handler.app"
        source = self._folder / "handler.applescript"
        source.write_text(SCRIPT.format(opened=opened), encoding="utf-8")
        subprocess.run(["osacompile", "-o", self._bundle, source], check=True)
        information = self._bundle / "Contents/Info.plist"
        told = plistlib.loads(information.read_bytes())
        information.write_bytes(plistlib.dumps(told | {
            "CFBundleIdentifier": f"com.ovra.tessel.endtoend.handler.{scheme}",
            "CFBundleURLTypes": [{"CFBundleURLName": scheme, "CFBundleURLSchemes": [scheme]}],
            "LSUIElement": True,
        }))
        # Its signature covers the property list.
        subprocess.run(["codesign", "--force", "--sign", "-", self._bundle], check=True)
        subprocess.run([REGISTER, "-f", self._bundle], check=True)

    def remove(self):
        subprocess.run([REGISTER, "-u", self._bundle], check=False)
        shutil.rmtree(self._folder)
        shutil.rmtree(self._notes)
