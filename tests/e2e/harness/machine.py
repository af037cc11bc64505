"""What a test finds of the machine, and may change of it.

    fresh_home(name)            an empty home folder for the test of that name
    clear()                     nothing is mounted, nothing is configured for all users
    volumes()                   what is mounted, or lies about where volumes are
    expect(path)                a test will put something there
    trust(certificate)          has the system trust this authority
    SERVER_ADDRESS              where every host of the data centre leads to
    LISTEN_ADDRESS              where the data centre listens, so that it is found there
    end_agents(home)            those that have not ended by themselves
"""

from harness import system

if system.MACOS:
    from harness.macos.machine import (LISTEN_ADDRESS, SERVER_ADDRESS, clear, end_agents, expect,  # noqa: F401
                                       fresh_home, trust, volumes)
else:
    from harness.linux.machine import (LISTEN_ADDRESS, SERVER_ADDRESS, clear, end_agents, expect,  # noqa: F401
                                       fresh_home, trust, volumes)
