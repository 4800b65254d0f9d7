"""A test with its versions, read from files."""

from __future__ import annotations

import ctypes
import io
import json
import os
import threading
import weakref
from dataclasses import dataclass
from pathlib import Path
from typing import IO, TYPE_CHECKING, Any, Callable, Optional, Sequence, Union

from . import _library
from ._errors import OK, Finding, OutOfMemory, WrongCall, error_of
from ._library import library as _c

if TYPE_CHECKING:
    import pandas

#: A file to write.
PathLike = Union[str, "os.PathLike[str]"]
#: What a test or a version is read from: a path, the content of a file, or an open file.
Source = Union[str, "os.PathLike[str]", bytes, bytearray, memoryview, IO[bytes], IO[str]]

_SEVERITIES = ("note", "warning", "error")


@dataclass(frozen=True)
class Dialog:
    """A question to the user."""

    title: str
    text: str
    file: str  #: name of the file that it is about; empty for the test as a whole
    buttons: tuple[str, ...]  #: captions; "&" stands before the letter that chooses the button


@dataclass(frozen=True)
class Progress:
    """How far the work is."""

    step: str  #: "reading", "checking" or "merging"
    file: str  #: that is being read
    done: int  #: of total
    total: int


#: Answers a dialog with the position or the caption of a button; any other answer cancels.
Ask = Callable[[Dialog], Union[int, str]]
#: Told at each step.
Show = Callable[[Progress], object]


class Page:
    """An HTML page that needs nothing else.

    Attributes:
        html: Its text.
    """

    def __init__(self, html: str) -> None:
        self.html = html

    def save_html(self, path: PathLike) -> None:
        """Writes the page to a file."""
        Path(path).write_bytes(self.html.encode("utf-8"))


class _Callbacks:
    """Callables as the C interface calls them. What they raise must not pass through C and waits in `raised`."""

    def __init__(self, ask: Optional[Ask], show: Optional[Show]) -> None:
        self.raised: Optional[BaseException] = None
        self.raw = _library.Callbacks(ctypes.sizeof(_library.Callbacks))
        if ask is not None:
            self.raw.ask = _library.Ask(self._safely(-1, self._answer, ask))
        if show is not None:
            self.raw.progress = _library.Show(self._safely(1, self._tell, show))

    def _safely(self, otherwise: int, call: Callable[[Any, Any], int], callback: Any) -> Callable[[Any, Any], int]:
        def called(_user: Any, raw: Any) -> int:
            try:
                return call(callback, raw.contents)
            except BaseException as error:
                self.raised = error
                return otherwise

        return called

    @staticmethod
    def _answer(ask: Ask, raw: _library.Dialog) -> int:
        buttons = tuple(str(raw.buttons[i]) for i in range(raw.button_count))
        answer = ask(Dialog(str(raw.title), str(raw.text), str(raw.file), buttons))
        return buttons.index(answer) if isinstance(answer, str) else int(answer)

    @staticmethod
    def _tell(show: Show, raw: _library.Progress) -> int:
        show(Progress(str(raw.step), str(raw.file), raw.done, raw.total))
        return 0


class Exam:
    """A test with its versions, as it is on a sheet. Made by `load`; threads may share it, one call after the other."""

    def __init__(self, sources: Sequence[tuple[str, Optional[bytes]]]) -> None:
        self._lock = threading.Lock()  # a text is another thread's until it is copied
        handle = _c.torva35_exam_new()
        if not handle:
            raise OutOfMemory(2, "out of memory")
        self._handle: int = handle
        self._finalizer = weakref.finalize(self, _c.torva35_exam_free, handle)
        self._names = [name for name, _ in sources]
        for name, content in sources:
            data = name.encode("utf-8", "replace")
            if content is None:
                self._call(_c.torva35_exam_add_file, data, len(data), None, 0)
            else:
                self._call(_c.torva35_exam_add_content, content, len(content), data, len(data))

    def _make(self, options: _library.Options, ask: Optional[Ask], show: Optional[Show]) -> None:
        callbacks = _Callbacks(ask, show)
        try:
            self._call(_c.torva35_exam_make, ctypes.byref(options), ctypes.byref(callbacks.raw))
        finally:
            if callbacks.raised is not None:
                raise callbacks.raised

    def _call(self, function: Callable[..., int], *arguments: Any) -> None:
        code = function(self._handle, *arguments)
        if code != OK:
            text = _library.Text()
            _c.torva35_exam_error(self._handle, ctypes.byref(text))
            raise error_of(code, str(text), self.findings)

    def _get(self, function: Callable[..., int], *arguments: Any) -> str:
        text = _library.Text()
        with self._lock:
            self._call(function, *arguments, ctypes.byref(text))
            return str(text)

    @property
    def findings(self) -> list[Finding]:
        """All that the teacher should know, in the order of files and questions."""
        found = []
        for position in range(_c.torva35_exam_finding_count(self._handle)):
            raw = _library.Finding(ctypes.sizeof(_library.Finding))
            self._call(_c.torva35_exam_finding_at, position, ctypes.byref(raw))
            found.append(
                Finding(
                    severity=_SEVERITIES[raw.severity],
                    kind=str(raw.kind),
                    text=str(raw.text),
                    file=None if raw.file < 0 else raw.file,
                    name="" if raw.file < 0 else self._names[raw.file],
                    number=raw.number or None,
                    id=str(raw.id),
                    line=raw.line or None,
                    column=raw.column or None,
                )
            )
        return found

    @property
    def severity(self) -> str:
        """Of the worst finding, or "". With "error" marks would be graded wrong: do not use the sheet and its keys."""
        worst: int = _c.torva35_exam_worst(self._handle)
        return "" if worst < 0 else _SEVERITIES[worst]

    @property
    def title(self) -> str:
        """The title of the sheet."""
        return self._get(_c.torva35_exam_title)

    @property
    def versions(self) -> list[str]:
        """The names of the versions; one empty name when there is a single one without a name."""
        count = _c.torva35_exam_version_count(self._handle)
        return [self._get(_c.torva35_exam_version_name, position) for position in range(count)]

    @property
    def rows(self) -> list[int]:
        """The numbers that are printed beside the rows."""
        numbers = []
        for position in range(_c.torva35_exam_row_count(self._handle)):
            number = ctypes.c_int64()
            self._call(_c.torva35_exam_row_number, position, ctypes.byref(number))
            numbers.append(number.value)
        return numbers

    @property
    def keys(self) -> dict[str, dict[int, str]]:
        """For each version the marks of a perfect student by row: "F"; several as "B D"; any one of several as "B|D"."""
        rows = self.rows
        return {
            name: {row: self._get(_c.torva35_exam_key, version, position) for position, row in enumerate(rows)}
            for version, name in enumerate(self.versions)
        }

    @property
    def points(self) -> dict[str, dict[int, float]]:
        """For each version the points for the right marks, by row."""

        def of(version: int, position: int) -> float:
            points = ctypes.c_double()
            self._call(_c.torva35_exam_points, version, position, ctypes.byref(points))
            return points.value

        rows = self.rows
        return {
            name: {row: of(version, position) for position, row in enumerate(rows)}
            for version, name in enumerate(self.versions)
        }

    def to_json(self) -> str:
        """All of the result, as the file that `torva35 --json` writes."""
        return self._get(_c.torva35_exam_json)

    def json(self) -> dict[str, Any]:
        """The same as Python's own objects."""
        result: dict[str, Any] = json.loads(self.to_json())
        return result

    def csv(self) -> str:
        """The keys as comma-separated values, with a heading."""
        return self._get(_c.torva35_exam_csv)

    def to_frame(self) -> "pandas.DataFrame":
        """The keys as a pandas DataFrame, with the columns of `csv`. Needs pandas."""
        import pandas

        texts = {"version": str, "id": str, "key": str}
        return pandas.read_csv(io.StringIO(self.csv()), dtype=texts, keep_default_na=False)

    def sheet(
        self, title: str = "", language: str = "en", id_digits: int = 0, name_letters: int = 0, version: int = 0
    ) -> Page:
        """The sheet that students get.

        Args:
            title: In place of that of the test.
            language: "en", "de", "fr" or "es".
            id_digits: Digits of the grid for the student's number, 0 to 20.
            name_letters: Letters of the grid for the name, 0 to 30.
            version: The one that is printed as marked, from 1; 0: students mark theirs.
        """
        page = _page(title, language, id_digits, name_letters, version)
        return Page(self._get(_c.torva35_exam_student_page, ctypes.byref(page)))

    def teacher_page(self, title: str = "", language: str = "en") -> Page:
        """Keys of all versions, findings, and the questions as they were read."""
        return Page(self._get(_c.torva35_exam_teacher_page, ctypes.byref(_page(title, language))))

    def save_lmf(self, path: PathLike) -> None:
        """Puts the filled LMF model in the place of a file, whole or not at all.

        Raises:
            FileError: It could not be written. It is an OSError, too.
        """
        data = os.fspath(path).encode("utf-8", "surrogateescape")
        with self._lock:
            self._call(_c.torva35_exam_save_lmf, data, len(data))

    def reader_files(self, id_digits: int = 0, name_letters: int = 0) -> dict[str, bytes]:
        """The files for a sheet reader: content by the path below a folder. The arguments are those of the sheet."""
        page = _page("", "en", id_digits, name_letters)
        files = {}
        with self._lock:
            self._call(_c.torva35_exam_make_reader_files, ctypes.byref(page))
            for position in range(_c.torva35_exam_reader_file_count(self._handle)):
                path, content = _library.Text(), _library.Text()
                self._call(_c.torva35_exam_reader_file, position, ctypes.byref(path), ctypes.byref(content))
                files[str(path)] = content.get()
        return files


def _page(title: str, language: str, id_digits: int = 0, name_letters: int = 0, version: int = 0) -> _library.Page:
    page = _library.Page(ctypes.sizeof(_library.Page))
    page.title, page.language = _library.text_of(title), _library.text_of(language)
    page.id_digits, page.name_letters, page.version = id_digits, name_letters, version
    return page


def _read(file: Source, position: int) -> tuple[str, Optional[bytes]]:
    """The name of a source, and its content unless it is a path."""
    if isinstance(file, (bytes, bytearray, memoryview)):
        return f"file {position}", bytes(file)
    if isinstance(file, (str, os.PathLike)):
        path = os.fspath(file)
        try:
            path.encode("utf-8")
        except UnicodeEncodeError:  # a name that is no text, which only the system can find
            return path, Path(path).read_bytes()
        return path, None
    content = file.read()
    if isinstance(content, str):
        # What is decoded has the mark of UTF-8, so that another encoding in its declaration does not count.
        content = content.lstrip("\ufeff").encode("utf-8-sig", "surrogatepass")
    name = getattr(file, "name", None)
    return name if isinstance(name, str) else f"file {position}", content


def load(
    *files: Source,
    title: str = "",
    version_names: Sequence[str] = (),
    objectives: int = 0,
    state: str = "",
    max_questions: int = 0,
    odd_only: bool = False,
    renumber: bool = False,
    ask: Optional[Ask] = None,
    progress: Optional[Show] = None,
) -> Exam:
    """Reads a test and its versions, and makes the sheet.

    Args:
        files: The test first, then its versions: ExamView XML exports or LMF files, as paths, bytes, or open files.
        title: Of the sheet, in place of that of the first file.
        version_names: One for each version, in place of those in the files.
        objectives: Which are read, added up: 1 learning, 2 local, 4 state, 8 national.
        state: Two letters, for the objectives of a state.
        max_questions: No more than the first ones; 0: all.
        odd_only: Even-numbered questions have the letters of odd-numbered ones.
        renumber: Rows have numbers without gaps, whatever the papers say.
        ask: Answers a dialog with the position or the caption of a button. Without it the first button is chosen.
        progress: Told at each step. An exception that a callable raises ends the load and comes back from here.

    Returns:
        The exam. Its findings may still be errors: then its sheet and keys should not be used.

    Raises:
        Refused: A file is not a test that can be read.
        Failed: The files do not go together.
        Cancelled: A dialog was answered so.
        WrongCall: Arguments make no sense. It is a ValueError, too.
        OSError: An open file could not be read, or there was no room for its content.
    """
    if not files:
        raise WrongCall(1, "no file was given")
    exam = Exam([_read(file, position) for position, file in enumerate(files, 1)])
    options = _library.Options(ctypes.sizeof(_library.Options))
    options.title, options.state = _library.text_of(title), _library.text_of(state)
    options.version_names = (_library.Text * len(version_names))(*map(_library.text_of, version_names))
    options.version_name_count = len(version_names)
    options.max_questions, options.objectives = max_questions, objectives
    options.odd_only, options.renumber = odd_only, renumber
    exam._make(options, ask, progress)
    return exam
