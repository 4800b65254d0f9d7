"""The Python package on the C interface: pytest, with TORVA35_LIBRARY and EXAMPLES in the environment."""

import io
import json
import os
import subprocess
import sys
import threading
from pathlib import Path

import pytest

import torva35

EXAMPLES = Path(os.environ["EXAMPLES"])
FILES = [EXAMPLES / "sample-test.xml", EXAMPLES / "sample-test-b.xml", EXAMPLES / "sample-test-c.xml"]


def test_a_sheet_of_three_versions(tmp_path):
    exam = torva35.load(*FILES)
    assert exam.versions == ["A", "B", "C"]
    assert exam.rows == list(range(1, 11))
    assert (exam.keys["A"][4], exam.keys["B"][4], exam.keys["A"][7]) == ("H", "F", "B D")
    assert {finding.severity for finding in exam.findings} == {"warning", "note"}
    assert (exam.severity, exam.title, exam.points["B"][4]) == ("warning", "Water and Weather, Unit 3", 2)
    assert exam.findings[0].file == 0 and exam.findings[0].line > 1
    assert str(exam.findings[0]).startswith(f"{FILES[0]}:{exam.findings[0].line}:") and "superscript" in str(exam.findings[0])
    exam.sheet(title="Unit 33", language="de", id_digits=5).save_html(tmp_path / "sheet.html")
    page = (tmp_path / "sheet.html").read_text(encoding="utf-8")
    assert "Unit 33" in page and 'lang="de"' in page
    assert "Unit 33" not in exam.sheet().html
    assert exam.csv().startswith("version,row,paper,id")
    assert exam.json()["versions"][1]["name"] == "B"
    files = exam.reader_files()
    assert json.loads(files["B/template.json"]) and files["B/corner-mark.png"].startswith(b"\x89PNG")
    exam.save_lmf(tmp_path / "exam.lmf")
    assert torva35.load(tmp_path / "exam.lmf").keys == exam.keys


def test_paths_bytes_and_open_files_are_the_same(tmp_path):
    keys = torva35.load(*FILES[:2]).keys
    assert torva35.load(*map(str, FILES[:2])).keys == keys
    assert torva35.load(*(file.read_bytes() for file in FILES[:2])).keys == keys
    with FILES[0].open("rb") as first, FILES[1].open(encoding="utf-8") as second:
        assert torva35.load(first, second).keys == keys
    assert torva35.load(io.BytesIO(FILES[0].read_bytes())).versions == ["A"]
    # Decoded text whose declaration names another encoding, and a name that is no text.
    text = FILES[0].read_text(encoding="utf-8").replace('encoding="UTF-8"', 'encoding="windows-1252"', 1)
    assert torva35.load(io.StringIO(text)).json()["files"][0]["questions"] == torva35.load(FILES[0]).json()["files"][0]["questions"]
    odd = os.fsdecode(bytes(tmp_path) + b"/\xff.xml")
    Path(odd).write_bytes(FILES[0].read_bytes())
    assert torva35.load(odd).keys == torva35.load(FILES[0]).keys


def test_errors_are_exceptions(tmp_path):
    with pytest.raises(torva35.Refused) as refused:
        torva35.load(b"no test")
    assert refused.value.number == 4 and refused.value.findings[0].kind == "refused"
    with pytest.raises(torva35.Failed) as failed:
        torva35.load(FILES[0], FILES[0].read_bytes().replace(b"question-id=", b"question-id='x' x="))
    assert failed.value.findings
    exam = torva35.load(FILES[0])
    wrong = (
        lambda: torva35.load(),
        lambda: torva35.load(FILES[0], max_questions=-1),
        lambda: torva35.load(FILES[0], objectives=16),
        lambda: torva35.load("a\0b"),
        lambda: exam.sheet(id_digits=99),
        lambda: exam.sheet(version=2),
    )
    for call in wrong:
        with pytest.raises(ValueError) as error:
            call()
        assert isinstance(error.value, torva35.WrongCall) and error.value.number == 1 and str(error.value)
    with pytest.raises(OSError) as unwritten:
        exam.save_lmf(tmp_path / "none" / "x.lmf")
    assert isinstance(unwritten.value, torva35.FileError) and "none" in str(unwritten.value)


def test_callbacks_answer_and_cancel():
    asked, steps = [], []
    exam = torva35.load(FILES[0], ask=lambda dialog: asked.append(dialog) or dialog.buttons[0], progress=steps.append)
    assert asked[0].buttons and asked[0].file and steps[0].step == "reading" and exam.versions == ["A"]
    with pytest.raises(torva35.Cancelled):
        torva35.load(FILES[0], ask=lambda dialog: -1)
    with pytest.raises(ZeroDivisionError):
        torva35.load(FILES[0], progress=lambda progress: 1 / 0)


def test_threads_have_exams_of_their_own():
    keys = torva35.load(*FILES).keys
    results = []
    threads = [threading.Thread(target=lambda: results.append(torva35.load(*FILES).keys)) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == [keys] * 8


def test_a_frame_of_the_keys():
    pytest.importorskip("pandas")
    frame = torva35.load(*FILES).to_frame()
    assert list(frame.columns)[:3] == ["version", "row", "paper"]
    assert frame[(frame.version == "B") & (frame.row == 4)].key.item() == "F"


def test_the_program_gives_the_same_json():
    program = [sys.executable, "-m", "torva35", *map(str, FILES), "--quiet", "--json", "-"]
    told = subprocess.run(program, capture_output=True, check=True).stdout
    assert json.loads(told) == torva35.load(*map(str, FILES)).json()
