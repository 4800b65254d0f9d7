"""Whole folders in Python: pytest, with TORVA35_LIBRARY and EXAMPLES in the environment."""

import json
import os
import signal
import subprocess
import sys
import time
from pathlib import Path

import pytest

import torva35
from torva35 import _convert

SAMPLE = Path(os.environ["EXAMPLES"], "sample-test.xml").read_bytes()
WRONG_KEY = SAMPLE.replace(b"<answer>A</answer>", b"<answer>Z</answer>", 1)
assert WRONG_KEY != SAMPLE


@pytest.fixture
def folder(tmp_path):
    """Two good tests, one of them a level below; one that would be graded wrong; one that is none."""
    source = tmp_path / "in"
    (source / "below").mkdir(parents=True)
    for name, content in {"a.xml": SAMPLE, "below/b.XML": SAMPLE, "wrong.xml": WRONG_KEY, "none.xml": b"none"}.items():
        (source / name).write_bytes(content)
    (source / "notes.txt").write_text("not a test")
    return source


def statuses(report):
    return {name: (outcome.status, outcome.unchanged) for name, outcome in report.outcomes.items()}


def written(out):
    return sorted(path.relative_to(out).as_posix() for path in out.rglob("*") if path.is_file())


def test_a_folder_is_converted_once(folder, tmp_path):
    out = tmp_path / "out"
    formats = ["csv", "html", "lmf", "answers", "json"]
    report = torva35.convert(folder, out, workers=2, formats=formats)
    first = {"a.xml": "done", "below/b.XML": "done", "none.xml": "refused", "wrong.xml": "errors"}
    assert statuses(report) == {name: (status, False) for name, status in first.items()}
    endings = (".answers.html", ".csv", ".html", ".json", ".lmf")
    good = [name + ending for name in ("a.xml", "below/b.XML") for ending in endings]
    assert written(out) == sorted([*good, "report.jsonl", "wrong.xml.answers.html", "wrong.xml.json"])
    assert (out / "a.xml.csv").read_bytes() == torva35.load(folder / "a.xml").csv().encode()
    assert [outcome.name for outcome in report.bad] == ["none.xml", "wrong.xml"] and "none.xml: refused: " in str(report)

    # Nothing is done again but what has changed or is damaged; a line that was cut off does not matter.
    (folder / "a.xml").write_bytes(WRONG_KEY)
    (out / "below/b.XML.csv").unlink()
    with (out / "report.jsonl").open("ab") as file:
        file.write(b'{"name": "a.x')
    report = torva35.convert(folder, out, formats=formats)
    assert statuses(report) == {
        "a.xml": ("errors", False),
        "below/b.XML": ("done", False),
        "none.xml": ("refused", True),
        "wrong.xml": ("errors", True),
    }
    # What would now grade wrong is gone.
    assert written(out) == sorted(
        [*good[5:], *(name + ending for name in ("a.xml", "wrong.xml") for ending in (".answers.html", ".json")), "report.jsonl"]
    )
    report = torva35.convert(folder, out, formats=formats)
    assert all(outcome.unchanged for outcome in report.outcomes.values())
    assert len((out / "report.jsonl").read_bytes().splitlines()) == 4
    assert not any(outcome.unchanged for outcome in torva35.convert(folder, out, odd_only=True).outcomes.values())


def test_versions_are_grouped(folder, tmp_path):
    for name in "bc":
        (folder / f"a-{name}.xml").write_bytes(Path(os.environ["EXAMPLES"], f"sample-test-{name}.xml").read_bytes())
    report = torva35.convert(folder, tmp_path / "out", group=lambda path: path.stem.split("-")[0])
    assert report.outcomes["a"].status == "done"
    assert len(json.loads((tmp_path / "out/a.json").read_text())["versions"]) == 3
    for wrong in ({"group": lambda path: "../a"}, {"formats": ["pdf"]}, {"max_question": 3}, {"workers": 0}):
        with pytest.raises(ValueError):
            torva35.convert(folder, tmp_path / "out", **wrong)
    with pytest.raises(ValueError):
        torva35.convert(folder, folder)


def test_a_killed_worker_costs_its_file_only(folder, tmp_path, monkeypatch):
    run = _convert._Worker.run

    def killed(worker, job, before):
        if job.name == "a.xml":
            worker._process.send_signal(signal.SIGKILL)
            worker._process.wait()
        return run(worker, job, before)

    monkeypatch.setattr(_convert._Worker, "run", killed)
    report = torva35.convert(folder, tmp_path / "out")
    assert statuses(report)["a.xml"] == ("killed", False) and "SIGKILL" in report.outcomes["a.xml"].text
    assert len(report.outcomes) == 4 and statuses(report)["below/b.XML"] == ("done", False)
    monkeypatch.undo()
    report = torva35.convert(folder, tmp_path / "out")
    assert statuses(report)["a.xml"] == ("done", False) and statuses(report)["below/b.XML"] == ("done", True)


@pytest.mark.parametrize("end", [signal.SIGKILL, signal.SIGINT])
def test_a_run_that_was_broken_off_goes_on_where_it_was(tmp_path, end):
    source, out = tmp_path / "in", tmp_path / "out"
    source.mkdir()
    for number in range(300):
        (source / f"{number}.xml").write_bytes(SAMPLE)
    code = "import sys, torva35; torva35.convert(sys.argv[1], sys.argv[2], workers=2)"
    process = subprocess.Popen([sys.executable, "-c", code, source, out], start_new_session=True, stderr=subprocess.DEVNULL)
    report = out / "report.jsonl"
    while process.poll() is None and not (report.exists() and report.read_bytes().count(b"\n") >= 10):
        time.sleep(0.001)
    if end == signal.SIGKILL:
        process.kill()
    else:
        os.killpg(process.pid, end)  # as a terminal does, to its workers, too
    assert process.wait() != 0
    assert b'"killed"' not in report.read_bytes()
    (out / ".12-34.tmp").write_bytes(b"left by a killed process")
    again = torva35.convert(source, out)
    kept = sum(outcome.unchanged for outcome in again.outcomes.values())
    assert 10 <= kept < 300 and len(again.outcomes) == 300 and not again.bad
    assert len(written(out)) == 601
