"""The example for a cluster, on a local one: pytest, with TORVA35_LIBRARY and EXAMPLES in the environment."""

import os
import signal
import sys
import threading
import time
from pathlib import Path

import pytest

distributed = pytest.importorskip("distributed")
EXAMPLES = Path(os.environ["EXAMPLES"])
sys.path.insert(0, str(EXAMPLES))


def test_workers_are_killed_in_the_middle(tmp_path):
    import convert_on_cluster

    sample = (EXAMPLES / "sample-test.xml").read_bytes()
    source, out = tmp_path / "in", tmp_path / "out"
    source.mkdir()
    for number in range(300):
        (source / f"{number}.xml").write_bytes(sample if number != 150 else b"no test")
    settings = {"n_workers": 2, "threads_per_worker": 1, "processes": True, "dashboard_address": None}
    with distributed.LocalCluster(**settings, silence_logs=50) as cluster, distributed.Client(cluster) as client:
        killed = []

        def kill_both(after=20):
            # From the results that are there: the first worker, and a little later the second.
            for pid in client.run(os.getpid).values():
                while len(list(out.glob("*.csv"))) < after * (len(killed) + 1):
                    time.sleep(0.01)
                os.kill(pid, signal.SIGKILL)
                killed.append(pid)

        killer = threading.Thread(target=kill_both)
        killer.start()
        report = convert_on_cluster.convert(client, source, out)
        killer.join()
        assert len(killed) == 2
        assert len(report.outcomes) == 300 and [(bad.name, bad.status) for bad in report.bad] == [("150.xml", "refused")]
        assert len(list(out.glob("*.csv"))) == 299
        again = convert_on_cluster.convert(client, source, out)
        assert all(outcome.unchanged for outcome in again.outcomes.values())
