"""The demo itself, in its world: a data centre, the application, a join, and a table of what happened.

    join.py auto     enters key and e-mail and presses Join by itself
    join.py watch    leaves that to the person at the display

Ends with 0 only if the agent ran with its exact arguments and join details.
"""

import datetime
import json
import pathlib
import re
import shutil
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parent / "world")]
import hosts  # noqa: E402
from harness import application, desktop, machine, places  # noqa: E402
from harness.agent import LAUNCH_ARGUMENTS, records  # noqa: E402
from harness.data_centre import DataCentre  # noqa: E402
from harness.page import Page  # noqa: E402

KEY = 123456789
EMAIL = "kim@customer.example"
TOKEN = "demo-token"
SERVER = "com.ovratessel.example"
AGENT_VERSION = "1.0.0"
AUTO_SECONDS = 120
STEP_WIDTH = 31

LOG_LINE = re.compile(r"^(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}) Ovra Tessel Lumora\[[^\]]*\] (.*)$")
SHARED = re.compile(r"Details Shared for Joining a session - email: (?P<email>.*), sessionid: (?P<key>-?\d+)$")

# Fills in the page's own form and presses its button, as a person does.
FILL_IN = """
const enter = (id, text) => {
    const field = document.getElementById(id);
    field.focus();
    field.value = text;
    field.dispatchEvent(new Event('input', { bubbles: true }));
    field.dispatchEvent(new Event('change', { bubbles: true }));
};
enter('session-key', %s);
enter('join-email', %s);
"""
PRESS = "document.getElementById('join-submit').click();"


def drawn(window):
    """Whether a window shows its own background in all its corners: before its first drawing it shows black, or what
    lay beneath it."""
    picture = subprocess.run(["import", "-window", window, "miff:-"], capture_output=True, check=True).stdout
    size = subprocess.run(["identify", "-format", "%w %h", "-"], input=picture, capture_output=True, check=True)
    width, height = map(int, size.stdout.split())
    corners = [(4, 4), (width - 5, 4), (4, height - 5), (width - 5, height - 5)]
    question = "".join(f"%[pixel:p{{{x},{y}}}]\n" for x, y in corners)
    shown = subprocess.run(["convert", "-", "-format", question, "info:"], input=picture, capture_output=True,
                           check=True)
    colours = set(shown.stdout.decode().split())
    return len(colours) == 1 and not colours & {"black", "srgb(0,0,0)", "gray(0)"}


class Demo:
    def __init__(self, auto):
        self.auto = auto
        home = places.ROOT / "home"
        # The agent's own default folder, seen from its home.
        self.home = places.Home(home, home / "Library/Logs/OvraTessel/Agent", home.with_name("home.console.log"))
        self.picture = places.ROOT.parent / "demo-screenshot.png"
        self.started = None
        self.done = set()

    def say(self, step, where, moment=None):
        """One row of the table, at the moment that the log names, or now."""
        after = ((moment or datetime.datetime.now()) - self.started).total_seconds()
        self.done.add(step)
        print(f"  {after:7.2f} s  {step:<{STEP_WIDTH}}{where}", flush=True)

    def short(self, path):
        """A path as the reader can open it: ~ is the demo's home folder, others begin where the command was given."""
        for base, name in ((self.home.path, "~"), (pathlib.Path.cwd(), ".")):
            if pathlib.Path(path).is_relative_to(base):
                return str(pathlib.Path(name) / pathlib.Path(path).relative_to(base))
        return str(path)

    def log_moments(self):
        """Time and text of every line that carries a time; a printed line has that of the line before it."""
        moment = self.started
        for line in (self.home.log.read_text(encoding="utf-8", errors="replace").splitlines()
                     if self.home.log.exists() else []):
            match = LOG_LINE.match(line)
            if match:
                moment = datetime.datetime.strptime(match[1], "%Y-%m-%d %H:%M:%S.%f")
                line = match[2]
            yield moment, line

    def rows_of_the_log(self):
        downloader = "[OvraDmgDownloader "
        return [
            ("update check answered", "checkOvraTesselUpdateWithCompletion:]_block_invoke : Response",
             f"https://{SERVER}/api/v2/agent/check_update"),
            ("join details written", "New ovrajoindetails.conf file has been created", self.home.join_details),
            ("image downloaded", downloader + "startDownLoadingOvraMacDmg]_block_invoke : Download finished",
             f"{self.short(self.home.image)} (removed after the install)"),
            ("image mounted", "dmg mount task termination status : 0", str(places.VOLUME)),
            ("agent copied", "copyAppFileAndLaunch] : Ovra.app file copied", self.home.agent),
            ("agent launched", "workspaceLaunchApplication:] : LaunchApplication: Ovra.app",
             self.home.agent / "Contents/MacOS/Ovra"),
            ("helper tools copied", ":tools_mac file copied", self.home.agent_folder),
            ("image detached and removed", "Dmg unmount task termination status : 0", self.home.agent_folder),
        ]

    def follow(self, until):
        """Prints each step as it appears, in the log's order, until the condition holds; what it returned, or None."""
        deadline = time.monotonic() + AUTO_SECONDS if self.auto else None
        while True:
            value = until()
            for step, text, where in self.rows_of_the_log():
                if step not in self.done:
                    for moment, line in self.log_moments():
                        if text in line:
                            self.say(step, self.short(where) if isinstance(where, pathlib.Path) else where, moment)
                            break
            if value:
                return value
            if not self.application.running() or (deadline and time.monotonic() > deadline):
                return None
            time.sleep(0.05)

    def detached(self):
        return "image detached and removed" in self.done or \
            any("This mac has latest Ovra App" in line for _, line in self.log_moments())

    def start(self):
        application.install()
        folder = places.ROOT / "data-centre"
        shutil.rmtree(folder, ignore_errors=True)
        self.data_centre = DataCentre(folder, hosts.names())
        self.data_centre.make_agent_image(AGENT_VERSION)
        self.data_centre.serve()
        self.page = Page(self.data_centre)
        try:
            home = self.home.path.relative_to(pathlib.Path.cwd())
        except ValueError:
            home = self.home.path
        print(f"\n  ~ is {home}\n\n  {'after':>9}  {'step':<{STEP_WIDTH}}where", flush=True)
        self.started = datetime.datetime.now()
        self.application = application.Application(
            self.home, {"DC": "com", "LumoraToken": TOKEN, "pathForLumora": "join"},
            {"OVRA_AGENT_RECORD_DIR": str(self.home.agent_records)}, agent_window=True)

    def join_by_itself(self):
        self.application.wait_for_window()
        self.say("window open", self.short(places.BUILT_BUNDLE))
        self.page.wait_until_loaded()
        self.say("join page shown", f"https://{SERVER}/join?lumora_token={TOKEN}")
        self.page.eval(FILL_IN % (json.dumps(str(KEY)), json.dumps(EMAIL)))
        self.say("key and e-mail entered", f"{KEY}, {EMAIL}")
        self.page.eval(PRESS)
        self.say("Join pressed", "the page posts sendJoinDetailsToNative")

    def explain(self):
        print(f"""
    The window of Ovra Tessel Lumora is opening. It shows the join page of a data centre that runs only for this demo.

      1. Type a session key of nine or ten digits, for example   {KEY}
      2. Type an e-mail address, for example                     {EMAIL}
      3. Press Join.

    Then watch: the steps appear here as they happen, and at the end the agent's own window opens and shows what it
    was given. Close the Lumora window when you have seen enough.
""", flush=True)

    def expected_details(self, key, email):
        return (f"OVRA_VARLO_IND\n&key={key}&webServerName={SERVER}&lumora_token={TOKEN}&c_plugin=true"
                f"&DC=com&email={email}&is_custom_domain=false&").encode()

    def faults(self, record):
        """What is not as it must be: nothing, for a good join."""
        found = []
        if record["argv"][1:] != LAUNCH_ARGUMENTS:
            found.append(f"the agent's arguments are {record['argv'][1:]}")
        content = self.home.join_details.read_bytes()
        shared = next((match for _, line in self.log_moments() if (match := SHARED.search(line))), None)
        if shared and content != self.expected_details(shared["key"], shared["email"]):
            found.append(f"the join details are {content!r}")
        if not record["join_details"]["well_formed"] or record["join_details"]["text"].encode() != content:
            found.append("the agent did not read these join details")
        if self.home.image.exists() or machine.volumes():
            found.append("an image or a volume was left behind")
        return found

    def photograph(self, record):
        """The whole screen, with the agent's window beside the application's, once both are drawn."""
        deadline = time.monotonic() + 15
        while not (agent_windows := desktop.windows_of(record["pid"])) and time.monotonic() < deadline:
            time.sleep(0.05)
        for window in agent_windows:
            subprocess.run(["wmctrl", "-i", "-r", window, "-e", "0,800,540,-1,-1"], check=False)
            subprocess.run(["wmctrl", "-i", "-a", window], check=False)
        # A blinking caret would make every picture another one.
        self.page.eval("document.activeElement.blur()")
        last = None
        while time.monotonic() < deadline:
            subprocess.run(["import", "-window", "root", self.picture], check=True)
            content = subprocess.run(["convert", self.picture, "rgb:-"], check=True, capture_output=True).stdout
            if content == last and all(drawn(window) for window in agent_windows):
                break
            last = content
            time.sleep(0.2)
        self.say("screenshot", self.short(self.picture))

    def run(self):
        if not self.auto:
            self.explain()
        self.start()
        if self.auto:
            self.join_by_itself()
        found = self.follow(lambda: records(self.home) if self.detached() else None)
        if not found:
            why = "the application ended" if not self.application.running() else f"not within {AUTO_SECONDS} s"
            print(f"\ndemo: the agent did not run: {why}. The log: {self.short(self.home.log)}")
            return 1
        record = found[-1]
        self.say("agent ran, by its own record", self.short(next(self.home.agent_records.glob("agent-*.json"))))
        self.say("log", self.short(self.home.log))
        if self.auto:
            self.photograph(record)

        faults = self.faults(record)
        print("\nThe agent ran with these arguments:")
        for word in record["argv"][1:]:
            print(f"  {word}")
        print(f"and read these join details ({self.short(self.home.join_details)}, mode "
              f"{record['join_details']['mode']}):")
        for line in record["join_details"]["text"].splitlines():
            print(f"  {line}")
        for fault in faults:
            print(f"demo: WRONG: {fault}")
        if not faults:
            print("All of it is byte for byte as it must be.")
        if not self.auto:
            print("\nClose the Lumora window to end the demo.")
            self.follow(lambda: not self.application.running())
        return 1 if faults else 0


def main():
    demo = Demo(auto=sys.argv[1] == "auto")
    try:
        return demo.run()
    except KeyboardInterrupt:
        return 130
    finally:
        if getattr(demo, "application", None):
            demo.application.kill()
        if getattr(demo, "data_centre", None):
            demo.data_centre.shut_down()


if __name__ == "__main__":
    sys.exit(main())
