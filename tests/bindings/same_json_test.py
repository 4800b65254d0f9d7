"""Program, C and Python say the same of the same files: pytest, with TORVA35_LIBRARY, TORVA35_PROGRAM, C_TEST, MAKE_EXAM
and SOURCE in the environment. Under the sanitizers, too, which Python then has preloaded.
"""

import itertools
import json
import os
import subprocess
from pathlib import Path

import pytest

import torva35

SOURCE = Path(os.environ["SOURCE"])
SAMPLES = sorted(SOURCE.glob("examples/*.xml")) + sorted(SOURCE.glob("tests/data/*.xml"))
HOSTILE = sorted(path for path in SOURCE.glob("fuzz/corpus/*/*") if path.is_file())
SANITIZED = "LD_PRELOAD" in os.environ
PLAIN = {name: value for name, value in os.environ.items() if name not in ("LD_PRELOAD", "ASAN_OPTIONS")}
CODES = {"done": 0, "refused": 4, "cancelled": 5, "failed": 6}


def run(*command):
    done = subprocess.run(command, env=PLAIN, capture_output=True)
    assert b"Sanitizer" not in done.stderr and b"runtime error" not in done.stderr, done.stderr
    return done.returncode, done.stdout


def check_same(*files):
    """Compares what the three say, and gives the status."""
    _, told = run(os.environ["TORVA35_PROGRAM"], "--quiet", "--json", "-", *files)
    status = json.loads(told)["status"]
    assert run(os.environ["C_TEST"], "--json", *files) == (CODES[status], told)
    try:
        exam = torva35.load(*files)
        assert status == "done" and exam.to_json().encode() == told
    except torva35.Error as error:
        assert error.number == CODES[status] != 0
        findings = [(each["severity"], each["kind"], each["text"]) for each in json.loads(told)["findings"]]
        assert [(each.severity, each.kind, each.text) for each in error.findings] == findings != []
    return status


def test_samples_and_hostile_files():
    assert len(SAMPLES) >= 4 and len(HOSTILE) >= 20
    assert {check_same(path) for path in SAMPLES + HOSTILE} == {"done", "refused"}
    assert check_same(*SAMPLES[:3]) == "done"
    assert {check_same(SAMPLES[0], path) for path in HOSTILE} == {"refused", "failed"}


@pytest.mark.skipif(SANITIZED, reason="takes long there, and nothing in it is hostile")
def test_200_generated_tests(tmp_path):
    for seed in range(200):
        versions = seed % 3 + 1
        run(os.environ["MAKE_EXAM"], str(seed), "8", str(versions), tmp_path)
        assert check_same(*(tmp_path / f"{version}.xml" for version in "ABC"[:versions])) in ("done", "failed")


@pytest.mark.skipif(SANITIZED, reason="which keep what is freed")
def test_memory_does_not_grow():
    def resident():
        return int(Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def load_all(rounds):
        for path, _ in itertools.product(SAMPLES + HOSTILE, range(rounds)):
            try:
                exam = torva35.load(path.read_bytes(), path)
                exam.json(), exam.sheet(), exam.reader_files()
            except torva35.Error:
                pass

    load_all(10)
    before = resident()
    load_all(50)
    assert resident() - before < 2_000_000
