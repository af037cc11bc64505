"""What the agent was given, by its own record."""

import json

from harness import system, waiting

LAUNCH_ARGUMENTS = [
    "-timestamps",
    '{"M3":"Agent downloaded time : 00:00:00 | Server : CDN","M2":"Session Validated : 00:00:00",'
    '"M1":"Join Launched time : 00:00:00","M4":"Agent launched time : 00:00:00"}',
]
HELPERS = ["OvraCrashDetector", "TesselUserHandler", "OTPreLogin", "OvraPingAgent", "RemoteScriptLauncher",
           "tools_mac"]


def records(home):
    """One record a start, oldest first."""
    if not home.agent_records.exists():
        return []
    found = [json.loads(path.read_text(encoding="utf-8")) for path in sorted(home.agent_records.glob("agent-*.json"))]
    return sorted(found, key=lambda one: one["time"])


def wait_for_records(home, count=1):
    waiting.until(lambda: len(records(home)) >= count, f"{count} start(s) of the agent")
    return records(home)


def stands_alone(record):
    """Whether it was started apart from the application: in a session of its own, or by the system itself."""
    return record["parent"] == 1 if system.MACOS else record["session"] == record["pid"]
