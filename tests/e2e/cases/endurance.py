"""Failing and recovering, over and over, leaves nothing behind.

Each round is real: a load of the join page is cut off, the offline page comes, and two seconds later the monitor's probe
brings the join page back. The registered run is as many rounds as fit into a minute and a half; the long one is

    LUMORA_ROUNDS=200 tests/e2e/run --build build/release endurance
"""

import json
import os
import statistics
import time

from harness import places, processes, waiting
from harness.case import (TOKEN, WEB_SERVER, EndToEndCase,
                          set_up_module as setUpModule, tear_down_module as tearDownModule)  # noqa: F401

ROUNDS = int(os.environ.get("LUMORA_ROUNDS", "26"))
# The first rounds fill caches and pools, once.
WARM_UP = 4
COMPARED = max(5, (ROUNDS - WARM_UP) // 4)

NET_TEST = f"URL NetTest : https://{WEB_SERVER}/join?lumora_token={TOKEN}"
RESTORED = "didRestoreConnection() : Updateing webview since the network is restored."
PROBE_AGENT = "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7)"
IDLE_SECONDS = 5

# How much more the last rounds may hold than the first, as a ratio. One more of anything a round would be far beyond it.
NOISE = {
    "descriptors": 1.15,
    "sockets": 1.25,
    "timers": 1.0,
    "threads": 1.25,
    "memory": 1.25,
    "processes": 1.25,
    "probes a second": 1.6,
}


def medians(samples):
    return {name: statistics.median(sample[name] for sample in samples) for name in samples[0]}


class Endurance(EndToEndCase):
    def fail_and_recover(self):
        self.begun = time.monotonic()
        mark = self.log.mark()
        before = self.page.loads()
        self.data_centre.control("DELETE", "/requests")
        self.data_centre.behave("/join", reset=True)
        self.page.go("/join?again")
        self.log.wait_for(NET_TEST, mark)
        self.data_centre.control("DELETE", "/behaviour")
        waiting.until(lambda: self.page.loads() > before, "the join page after the failure")
        self.log.wait_for(RESTORED, mark)
        self.page.wait_until_loaded()
        self.page.barrier()

    def probes(self):
        return sum(one["headers"].get("user-agent", "").startswith(PROBE_AGENT)
                   for one in self.data_centre.requests("/join"))

    def sample(self):
        """What the application holds, and its kin: the network process, which stays, and the number of all of them."""
        helpers = processes.helpers_of(self.application)
        network, = [pid for pid, name in helpers.items() if name == processes.NETWORK_PROCESS]
        return {
            "application": processes.usage_of(self.application.pid),
            "network process": processes.usage_of(network),
            "all": {
                "processes": len(helpers),
                "probes a second": self.probes() / (time.monotonic() - self.begun),
            },
        }

    def idle_wake_ups(self):
        before = processes.wake_ups(self.application.pid)
        time.sleep(IDLE_SECONDS)
        return processes.wake_ups(self.application.pid) - before

    def assert_no_growth(self, samples):
        for part in samples[0]:
            early = medians([sample[part] for sample in samples[WARM_UP:WARM_UP + COMPARED]])
            late = medians([sample[part] for sample in samples[-COMPARED:]])
            print(f"{part}: rounds {WARM_UP}.. {early}, last {COMPARED} of {len(samples)} {late}")
            for name, value in late.items():
                with self.subTest(f"{part}: {name}"):
                    self.assertLessEqual(value, early[name] * NOISE[name])

    def test_rounds_of_failing_and_recovering_leave_nothing_behind(self):
        self.start()
        samples = []
        idle = []
        for number in range(ROUNDS):
            self.fail_and_recover()
            samples.append(self.sample())
            probes = self.probes()
            if number in (WARM_UP, ROUNDS - 1):
                idle.append(self.idle_wake_ups())
        # A page that has loaded has ended the probes.
        self.assertEqual(self.probes(), probes)
        (places.ROOT / "usage.json").write_text(json.dumps(samples), encoding="utf-8")
        self.assert_no_growth(samples)
        print(f"wake-ups in {IDLE_SECONDS} s: {idle}")
        self.assertLessEqual(idle[1], idle[0] * 1.25)
        self.close()
