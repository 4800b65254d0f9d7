"""Whole folders of tests, by worker processes."""

from __future__ import annotations

import hashlib
import json
import os
import re
import signal
import subprocess
import sys
import threading
from concurrent.futures import ThreadPoolExecutor
from dataclasses import asdict, dataclass, field, replace
from pathlib import Path
from typing import Any, Callable, Iterable, Mapping, Optional, Sequence

from ._errors import Error
from ._exam import Exam, PathLike, load
from ._library import library as _c

#: What each format is written as, and whether it grades: then it is withheld where marks would be graded wrong.
FORMATS = {
    "csv": (".csv", True),
    "html": (".html", True),
    "lmf": (".lmf", True),
    "answers": (".answers.html", False),
    "json": (".json", False),
}
_OPTIONS = {"objectives", "state", "max_questions", "odd_only", "renumber"}
_SETTLED = {"done", "errors", "refused", "failed", "cancelled"}


@dataclass(frozen=True)
class Job:
    """A test to convert."""

    name: str  #: path below the folder, with "/"
    files: Sequence[str]  #: of the test and its versions
    out: str  #: folder for what is written
    formats: Sequence[str]
    language: str = "en"
    options: Mapping[str, Any] = field(default_factory=dict)  #: of `load`


@dataclass(frozen=True)
class Outcome:
    """What became of a test."""

    name: str  #: path below the folder, with "/"
    status: str  #: "done", "errors", "refused", "failed", "cancelled", "trouble" or "killed"
    text: str = ""  #: why it is not done
    errors: int = 0  #: findings that are errors
    warnings: int = 0
    outputs: Mapping[str, int] = field(default_factory=dict)  #: what was written, below the folder, and the sizes
    digest: str = ""  #: of all that the outputs are made of
    unchanged: bool = False  #: nothing was to do


def find_jobs(
    folder: PathLike,
    out: PathLike,
    formats: Sequence[str] = ("csv", "json"),
    language: str = "en",
    group: Optional[Callable[[Path], str]] = None,
    **options: Any,
) -> list[Job]:
    """What `convert` has to do, which takes the same arguments."""
    source, target = Path(folder).resolve(), Path(out).resolve()
    if not source.is_dir():
        raise NotADirectoryError(f"{folder} is no folder")
    if source == target:
        raise ValueError("the results need a folder of their own")
    if set(formats) - set(FORMATS) or set(options) - _OPTIONS:
        raise ValueError(f"formats are {', '.join(FORMATS)}; options are {', '.join(sorted(_OPTIONS))}")
    tests: dict[str, list[str]] = {}
    for path in sorted(source.rglob("*")):
        if path.suffix.lower() in (".xml", ".lmf") and path.is_file() and target not in path.parents:
            below = path.relative_to(source)
            name = below.as_posix() if group is None else group(below)
            if not name or Path(name).is_absolute() or ".." in Path(name).parts or name.endswith(".answers"):
                raise ValueError(f"{name!r} cannot be the name of a result")
            tests.setdefault(name, []).append(str(path))
    return [Job(name, files, str(target), list(formats), language, options) for name, files in sorted(tests.items())]


def run_job(job: Job, before: Optional[Outcome] = None) -> Outcome:
    """Converts one test, unless it was done before and nothing has changed since. Raises nothing of a file's."""
    digest, outputs = "", {}
    try:
        digest = _digest(job)
        if before is not None and _is_done(job, before, digest):
            return replace(before, unchanged=True)
        status, text, errors, warnings, contents = _convert(job)
        for format, (ending, _) in FORMATS.items():
            path = Path(job.out, job.name + ending)
            if format not in contents:
                path.unlink(missing_ok=True)  # of an earlier run: its keys may be wrong by now
                continue
            path.parent.mkdir(parents=True, exist_ok=True)
            contents[format](path)
            outputs[job.name + ending] = path.stat().st_size
    except Exception as error:
        return Outcome(job.name, "trouble", f"{type(error).__name__}: {error}", outputs=outputs)
    return Outcome(job.name, status, text, errors, warnings, outputs, digest)


def _convert(job: Job) -> tuple[str, str, int, int, dict[str, Callable[[Path], None]]]:
    """Status, text, errors, warnings, and what writes each format that is to be written."""
    contents: dict[str, Callable[[Path], None]] = {}
    try:
        exam = load(*job.files, **job.options)
        findings = exam.findings
        bad = [str(finding) for finding in findings if finding.severity == "error"]
        status, text = ("errors", bad[0]) if bad else ("done", "")
        for format in job.formats:
            if not bad or not FORMATS[format][1]:
                contents[format] = _writer(exam, format, job.language)
    except Error as error:
        if error.number not in (4, 5, 6):
            raise
        status, text, findings = {4: "refused", 5: "cancelled", 6: "failed"}[error.number], str(error), error.findings
    severities = [finding.severity for finding in findings]
    return status, text, severities.count("error"), severities.count("warning"), contents


def _writer(exam: Exam, format: str, language: str) -> Callable[[Path], None]:
    if format == "lmf":
        return exam.save_lmf
    makers: dict[str, Callable[[], str]] = {
        "csv": exam.csv,
        "json": exam.to_json,
        "html": lambda: exam.sheet(language=language).html,
        "answers": lambda: exam.teacher_page(language=language).html,
    }
    content = makers[format]().encode("utf-8")
    return lambda path: _put(path, content)


def _put(path: Path, content: bytes) -> None:
    """Writes a file beside its place, and puts it there when it is whole."""
    beside = path.with_name(f".{os.getpid()}-{threading.get_ident()}.tmp")
    try:
        beside.write_bytes(content)
        os.replace(beside, path)
    except BaseException:
        beside.unlink(missing_ok=True)
        raise


def _digest(job: Job) -> str:
    settings = [_c.torva35_version().decode(), sorted(job.formats), job.language, dict(job.options), list(job.files)]
    total = hashlib.sha256(json.dumps(settings, sort_keys=True).encode())
    for file in job.files:
        total.update(hashlib.sha256(Path(file).read_bytes()).digest())
    return total.hexdigest()


def _is_done(job: Job, before: Outcome, digest: str) -> bool:
    if before.digest != digest or before.status not in _SETTLED:
        return False
    paths = {Path(job.out, name): size for name, size in before.outputs.items()}
    return all(path.is_file() and path.stat().st_size == size for path, size in paths.items())


class Report:
    """What became of the tests of a folder, kept in its file `report.jsonl`: a line for each test, as it is done.

    Attributes:
        outcomes: By the name of the test.
    """

    def __init__(self, out: PathLike, jobs: Iterable[Job]) -> None:
        """Reads what an earlier run has left, for those of the jobs that it has done."""
        self.path = Path(out, "report.jsonl")
        self.outcomes: dict[str, Outcome] = {}
        self._before: dict[str, Outcome] = {}
        self.path.parent.mkdir(parents=True, exist_ok=True)
        names = {job.name for job in jobs}
        lines = self.path.read_bytes().splitlines() if self.path.exists() else []
        for line in lines:
            try:
                outcome = Outcome(**json.loads(line))
            except (ValueError, TypeError):
                continue  # cut off as it was written
            if outcome.name in names:
                self._before[outcome.name] = outcome
        self._write(self._before)
        self._file = self.path.open("ab")

    def before(self, job: Job) -> Optional[Outcome]:
        """What an earlier run has made of a test."""
        return self._before.get(job.name)

    def add(self, outcome: Outcome) -> None:
        """Takes note of a test."""
        self.outcomes[outcome.name] = outcome
        if not outcome.unchanged:
            self._file.write(_line(outcome))
            self._file.flush()

    def close(self) -> None:
        """Puts the file in order."""
        self._file.close()
        self._write({**self._before, **self.outcomes})

    def _write(self, outcomes: Mapping[str, Outcome]) -> None:
        _put(self.path, b"".join(_line(outcome) for _, outcome in sorted(outcomes.items())))

    @property
    def bad(self) -> list[Outcome]:
        """The tests that have no sheet which grades right, by name."""
        return [outcome for _, outcome in sorted(self.outcomes.items()) if outcome.status != "done"]

    def __str__(self) -> str:
        unchanged = sum(outcome.unchanged for outcome in self.outcomes.values())
        lines = [f"{outcome.name}: {outcome.status}: {outcome.text}" for outcome in self.bad]
        done = len(self.outcomes) - len(lines)
        return "\n".join([f"{len(self.outcomes)} tests, {done} done, {unchanged} as they were", *lines])


def _line(outcome: Outcome) -> bytes:
    return json.dumps(asdict(replace(outcome, unchanged=False))).encode() + b"\n"


class _Worker:
    """A process that converts one test after the other, so that a fault ends it and not the others."""

    def __init__(self) -> None:
        package = str(Path(__file__).resolve().parent.parent)
        code = "import sys; sys.path.insert(0, sys.argv[1]); from torva35 import _convert; _convert._work()"
        self._process = subprocess.Popen(
            [sys.executable, "-c", code, package], stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        if self._answer() is None:
            raise RuntimeError("a worker process does not start")

    def run(self, job: Job, before: Optional[Outcome]) -> Outcome:
        assert self._process.stdin is not None
        try:
            self._process.stdin.write(json.dumps([asdict(job), before and asdict(before)]).encode() + b"\n")
            self._process.stdin.flush()
        except OSError:
            pass  # it has ended
        answer = self._answer()
        if answer is not None:
            return Outcome(**answer)
        code = self._process.wait()
        why = signal.Signals(-code).name if code < 0 else f"exit status {code}"
        return Outcome(job.name, "killed", f"its process ended: {why}")

    def _answer(self) -> Optional[dict[str, Any]]:
        assert self._process.stdout is not None
        line = self._process.stdout.readline()
        answer: Optional[dict[str, Any]] = json.loads(line) if line.endswith(b"\n") else None
        return answer

    def close(self) -> None:
        self._process.kill()
        self._process.communicate()


def _work() -> None:
    """A worker's side."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # is for the one that waits for this process
    answers = sys.stdout.buffer
    answers.write(b"{}\n")
    answers.flush()
    for line in sys.stdin.buffer:
        job, before = json.loads(line)
        outcome = run_job(Job(**job), before and Outcome(**before))
        answers.write(json.dumps(asdict(outcome)).encode() + b"\n")
        answers.flush()


def convert(
    folder: PathLike,
    out: PathLike,
    workers: int = 1,
    formats: Sequence[str] = ("csv", "json"),
    language: str = "en",
    group: Optional[Callable[[Path], str]] = None,
    **options: Any,
) -> Report:
    """Converts all ExamView exports and LMF files of a folder and the folders in it.

    It may be broken off and called again: what is done, and has not changed since, is not done again. Each result is put in
    its place when it is whole. A file that is bad, or that ends its process, is in the report and stops nothing.

    Args:
        folder: Where the files are.
        out: A folder for the results and the file `report.jsonl`. A result is called as its test, with an ending.
        workers: How many processes work at the same time.
        formats: Of "csv", "html" (the students' sheet), "lmf", "answers" (the teacher's page), and "json".
        language: Of the pages: "en", "de", "fr" or "es".
        group: Gives the name of the test for the path of a file below the folder; files of one name are the test and its
            versions, in alphabetical order. Without it each file is a test.
        **options: Those of `load`: objectives, state, max_questions, odd_only, renumber.

    Returns:
        What became of each test. "errors" is one of which marks would be graded wrong: only its teacher's page and JSON
        are written. "killed" and "trouble" are tried again by the next call.
    """
    jobs = find_jobs(folder, out, formats, language, group, **options)
    if workers < 1:
        raise ValueError("there is no worker")
    report = Report(out, jobs)
    for left in Path(out).rglob(".*.tmp"):
        if re.fullmatch(r"\.\d+-\d+\.tmp", left.name):  # by a process that was killed
            left.unlink()
    waiting = iter(jobs)
    lock = threading.Lock()
    stop = threading.Event()

    def serve() -> None:
        worker: Optional[_Worker] = None
        try:
            while not stop.is_set():
                with lock:
                    job = next(waiting, None)
                if job is None:
                    return
                worker = worker or _Worker()
                outcome = worker.run(job, report.before(job))
                with lock:
                    report.add(outcome)
                if outcome.status == "killed":
                    worker.close()
                    worker = None
        finally:
            stop.set()
            if worker is not None:
                worker.close()

    try:
        with ThreadPoolExecutor(workers) as pool:
            try:
                for served in [pool.submit(serve) for _ in range(workers)]:
                    served.result()
            finally:
                stop.set()
    finally:
        report.close()
    return report
