"""What runs beside the application, and what it and those that it has started hold of the machine.

    web_processes(application)  those of its pages that have drawn text, newest last
    image_tool_runs()           whether the tool that mounts images still works
    helpers_of(application)     the processes that work for it, by number and name
    before_start()              to be asked before an application starts: whose processes are none of its own
    NETWORK_PROCESS             the name of the one that speaks to servers
    usage_of(pid)               numbers that must not grow
    wake_ups(pid)               how often it has waited so far: more timers make it more often in the same time
"""

from harness import system

if system.MACOS:
    from harness.macos.processes import (NETWORK_PROCESS, before_start, helpers_of, image_tool_runs,  # noqa: F401
                                         usage_of, wake_ups, web_processes)
else:
    from harness.linux.processes import (NETWORK_PROCESS, before_start, helpers_of, image_tool_runs,  # noqa: F401
                                         usage_of, wake_ups, web_processes)
