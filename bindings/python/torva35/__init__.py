"""From the files of a printed multiple-choice test to a bubble sheet that grades right.

    import torva35
    exam = torva35.load("unit-3-A.xml", "unit-3-B.xml")
    for finding in exam.findings: print(finding)
    exam.sheet(title="Unit 3").save_html("sheet.html")
    exam.keys["B"][4]            # 'F'

Files are ExamView XML exports or LMF data files: paths, bytes, or open files. Calls of different exams run in parallel
on different threads.
"""

from __future__ import annotations

import ctypes
import json as _json
import os
import weakref
from dataclasses import dataclass
from pathlib import Path
from typing import IO, TYPE_CHECKING, Any, Callable, Dict, List, Optional, Sequence, Tuple, Union

from . import _library
from ._library import library as _c

if TYPE_CHECKING:
    import pandas

__all__ = ["Cancelled", "Dialog", "Error", "Exam", "Failed", "Finding", "Page", "Progress", "Refused", "load"]
__version__: str = _c.torva35_version().decode()

#: What a test or a version is read from.
Source = Union[str, "os.PathLike[str]", bytes, IO[bytes], IO[str]]


@dataclass(frozen=True)
class Finding:
    """Something that the teacher should know."""

    severity: str  #: "note", "warning" or "error"; with an error, marks would be graded wrong
    kind: str  #: a word that stays the same, such as "duplicate-id"
    text: str  #: one sentence in English
    file: Optional[int]  #: position of the file, from 0
    number: Optional[int]  #: of the question on the paper, from 1
    id: str  #: of the question
    line: Optional[int]  #: in the file, from 1
    column: Optional[int]  #: in the line, from 1

    def __str__(self) -> str:
        return f"{self.severity}: {self.text}"


@dataclass(frozen=True)
class Dialog:
    """A question to the user."""

    title: str
    text: str
    file: str  #: name of the file that it is about; empty for the test as a whole
    buttons: Tuple[str, ...]  #: captions; "&" stands before the letter that chooses the button


@dataclass(frozen=True)
class Progress:
    """How far the work is."""

    step: str  #: "reading", "checking" or "merging"
    file: str
    done: int
    total: int


class Error(Exception):
    """A call that failed, with the library's number and sentence."""

    def __init__(self, number: int, text: str, findings: Sequence[Finding] = ()) -> None:
        super().__init__(text)
        self.number = number
        self.findings = list(findings)


class Refused(Error):
    """A file is not a test that can be read; `findings` say why."""


class Cancelled(Error):
    """By the answer to a dialog, or by a callback."""


class Failed(Error):
    """The files do not go together; `findings` say why."""


_OK, _WRONG_CALL, _NO_MEMORY, _FILE, _REFUSED, _CANCELLED, _FAILED = range(7)
_ERRORS = {_REFUSED: Refused, _CANCELLED: Cancelled, _FAILED: Failed}


def _text(text: str, kept: List[Any]) -> _library.Text:
    data = text.encode("utf-8", "surrogatepass")
    buffer = ctypes.create_string_buffer(data, len(data) + 1)
    kept.append(buffer)
    return _library.Text(ctypes.cast(buffer, ctypes.c_void_p), len(data))


def _finding(raw: _library.Finding) -> Finding:
    return Finding(
        severity=("note", "warning", "error")[raw.severity],
        kind=str(raw.kind),
        text=str(raw.text),
        file=None if raw.file < 0 else raw.file,
        number=raw.number or None,
        id=str(raw.id),
        line=raw.line or None,
        column=raw.column or None,
    )


class Page:
    """An HTML page that needs nothing else."""

    def __init__(self, html: str) -> None:
        self.html = html

    def save_html(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes the page to a file."""
        Path(path).write_text(self.html, encoding="utf-8")


class Exam:
    """A test with its versions, as it is on a sheet. Made by `load`; used by one thread at a time."""

    def __init__(self, sources: Sequence[Tuple[str, Optional[bytes]]], options: Dict[str, Any]) -> None:
        self._sources = list(sources)
        self._options = dict(options)
        handle = _c.torva35_exam_new()
        if not handle:
            raise MemoryError
        self._handle: int = handle
        self._finalizer = weakref.finalize(self, _c.torva35_exam_free, handle)
        for name, content in self._sources:
            data = name.encode("utf-8", "surrogateescape")
            if content is None:
                self._check(_c.torva35_exam_add_file(handle, data, len(data), None, 0))
            else:
                self._check(_c.torva35_exam_add_content(handle, content, len(content), data, len(data)))
        self._make()

    def _make(self) -> None:
        given = self._options
        kept: List[Any] = []
        options = _library.Options(ctypes.sizeof(_library.Options))
        options.title = _text(given["title"] or "", kept)
        options.state = _text(given["state"], kept)
        names = [_text(name, kept) for name in given["version_names"] or ()]
        options.version_names = (_library.Text * len(names))(*names)
        options.version_name_count = len(names)
        options.max_questions = given["max_questions"]
        options.objectives = given["objectives"]
        options.odd_only = given["odd_only"]
        options.renumber = given["renumber"]

        raised: List[BaseException] = []
        ask: Optional[Callable[[Dialog], Union[int, str]]] = given["ask"]
        progress: Optional[Callable[[Progress], Any]] = given["progress"]

        def on_ask(_user: Any, raw: Any) -> int:
            assert ask is not None
            try:
                view = raw.contents
                buttons = tuple(str(view.buttons[i]) for i in range(view.button_count))
                answer = ask(Dialog(str(view.title), str(view.text), str(view.file), buttons))
                return buttons.index(answer) if isinstance(answer, str) else int(answer)
            except BaseException as error:  # it must not pass through C
                raised.append(error)
                return -1

        def on_progress(_user: Any, raw: Any) -> int:
            assert progress is not None
            try:
                view = raw.contents
                progress(Progress(str(view.step), str(view.file), view.done, view.total))
                return 0
            except BaseException as error:
                raised.append(error)
                return 1

        callbacks = _library.Callbacks(ctypes.sizeof(_library.Callbacks))
        if ask is not None:
            callbacks.ask = _library.Ask(on_ask)
        if progress is not None:
            callbacks.progress = _library.Show(on_progress)
        code = _c.torva35_exam_make(self._handle, ctypes.byref(options), ctypes.byref(callbacks))
        if raised:
            raise raised[0]
        self._check(code)

    def _check(self, code: int) -> None:
        if code == _OK:
            return
        text = _library.Text()
        _c.torva35_exam_error(self._handle, ctypes.byref(text))
        if code == _NO_MEMORY:
            raise MemoryError(str(text))
        if code == _FILE:
            raise OSError(str(text))
        if code == _WRONG_CALL:
            raise ValueError(str(text))
        raise _ERRORS.get(code, Error)(code, str(text), self.findings)

    def _get(self, function: str, *arguments: Any) -> str:
        text = _library.Text()
        self._check(getattr(_c, function)(self._handle, *arguments, ctypes.byref(text)))
        return str(text)

    def _page(
        self, kept: List[Any], language: str, id_digits: int, name_letters: int, version: int, title: str = ""
    ) -> Any:
        page = _library.Page(ctypes.sizeof(_library.Page))
        page.title = _text(title, kept)
        page.language = _text(language, kept)
        page.id_digits, page.name_letters, page.version = id_digits, name_letters, version
        return ctypes.byref(page)

    @property
    def findings(self) -> List[Finding]:
        """All that the teacher should know, in the order of files and questions."""
        found = []
        for position in range(_c.torva35_exam_finding_count(self._handle)):
            raw = _library.Finding(ctypes.sizeof(_library.Finding))
            self._check(_c.torva35_exam_finding_at(self._handle, position, ctypes.byref(raw)))
            found.append(_finding(raw))
        return found

    @property
    def versions(self) -> List[str]:
        """The names of the versions; one empty name when there is a single one without a name."""
        count = _c.torva35_exam_version_count(self._handle)
        return [self._get("torva35_exam_version_name", position) for position in range(count)]

    @property
    def rows(self) -> List[int]:
        """The numbers that are printed beside the rows."""
        numbers = []
        for position in range(_c.torva35_exam_row_count(self._handle)):
            number = ctypes.c_int64()
            self._check(_c.torva35_exam_row_number(self._handle, position, ctypes.byref(number)))
            numbers.append(number.value)
        return numbers

    @property
    def keys(self) -> Dict[str, Dict[int, str]]:
        """For each version the marks of a perfect student by row: "F"; several as "B D"; any one of several as "B|D"."""
        rows = self.rows
        return {
            name: {row: self._get("torva35_exam_key", version, position) for position, row in enumerate(rows)}
            for version, name in enumerate(self.versions)
        }

    def json(self) -> Dict[str, Any]:
        """All of the result, as the schema in the documentation describes it."""
        result: Dict[str, Any] = _json.loads(self._get("torva35_exam_json"))
        return result

    def csv(self) -> str:
        """The keys as comma-separated values, with a heading."""
        return self._get("torva35_exam_csv")

    def sheet(
        self,
        title: Optional[str] = None,
        language: str = "en",
        id_digits: int = 0,
        name_letters: int = 0,
        version: int = 0,
    ) -> Page:
        """The sheet that students get.

        version: the one that is printed as marked, from 1; 0: students mark theirs.
        """
        kept: List[Any] = []
        page = self._page(kept, language, id_digits, name_letters, version, title or "")
        return Page(self._get("torva35_exam_student_page", page))

    def teacher_page(self, language: str = "en") -> Page:
        """Keys of all versions, findings, and the questions as they were read."""
        kept: List[Any] = []
        return Page(self._get("torva35_exam_teacher_page", self._page(kept, language, 0, 0, 0)))

    def save_lmf(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Puts the filled LMF model in the place of a file, whole or not at all."""
        data = os.fsencode(path)
        self._check(_c.torva35_exam_save_lmf(self._handle, data, len(data)))

    def reader_files(self, id_digits: int = 0, name_letters: int = 0) -> Dict[str, bytes]:
        """The files for a sheet reader: content by the path below a folder."""
        kept: List[Any] = []
        page = self._page(kept, "en", id_digits, name_letters, 0)
        self._check(_c.torva35_exam_make_reader_files(self._handle, page))
        files = {}
        for position in range(_c.torva35_exam_reader_file_count(self._handle)):
            path, content = _library.Text(), _library.Text()
            self._check(
                _c.torva35_exam_reader_file(self._handle, position, ctypes.byref(path), ctypes.byref(content))
            )
            files[str(path)] = content.get()
        return files

    def to_frame(self) -> "pandas.DataFrame":
        """The keys as a pandas DataFrame, with the columns of `csv`. Needs pandas."""
        import io

        import pandas

        return pandas.read_csv(io.StringIO(self.csv()), dtype={"version": str, "id": str, "key": str}, keep_default_na=False)


def load(
    *files: Source,
    title: Optional[str] = None,
    version_names: Optional[Sequence[str]] = None,
    objectives: int = 0,
    state: str = "",
    max_questions: int = 0,
    odd_only: bool = False,
    renumber: bool = False,
    ask: Optional[Callable[[Dialog], Union[int, str]]] = None,
    progress: Optional[Callable[[Progress], Any]] = None,
) -> Exam:
    """Reads a test and its versions, and makes the sheet.

    files: the test first, then its versions: paths, bytes, or open files.
    title: of the sheet; that of the first file without one. version_names: one for each version, in place of those in
    the files. objectives: which are read, added up: 1 learning, 2 local, 4 state, 8 national; state: two letters, for
    those of a state. max_questions: no more than the first ones. odd_only: even-numbered questions have the letters of
    odd-numbered ones. renumber: rows have numbers without gaps, whatever the papers say.
    ask: answers a dialog with the position or the caption of a button; without it, the first button is chosen.
    progress: told at each step. An exception that a callback raises ends the load and comes back from here.

    Raises `Refused` for a file that is not a test, `Failed` for files that do not go together, `Cancelled` when a dialog
    was answered so, `ValueError` for arguments that make no sense, `OSError`. Findings may still be errors afterwards:
    such a sheet should not be used.
    """
    if not files:
        raise ValueError("no file was given")
    sources: List[Tuple[str, Optional[bytes]]] = []
    for position, file in enumerate(files, 1):
        if isinstance(file, (bytes, bytearray, memoryview)):
            sources.append((f"file {position}", bytes(file)))
        elif hasattr(file, "read"):
            content = file.read()
            name = getattr(file, "name", None)
            name = name if isinstance(name, str) else f"file {position}"
            sources.append((name, content.encode("utf-8") if isinstance(content, str) else content))
        else:
            sources.append((os.fspath(file), None))
    options = {
        "title": title,
        "version_names": version_names,
        "objectives": objectives,
        "state": state,
        "max_questions": max_questions,
        "odd_only": odd_only,
        "renumber": renumber,
        "ask": ask,
        "progress": progress,
    }
    return Exam(sources, options)
