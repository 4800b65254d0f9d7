"""What is found in files, and what a call that fails raises."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional, Sequence


@dataclass(frozen=True)
class Finding:
    """Something that the teacher should know."""

    severity: str  #: "note", "warning" or "error"; with an error, marks would be graded wrong
    kind: str  #: a word that stays the same, such as "duplicate-id"
    text: str  #: one sentence in English
    file: Optional[int]  #: position of the file, from 0; None: about no single one
    name: str  #: of that file, or empty
    number: Optional[int]  #: of the question on the paper, from 1; None: about no single one
    id: str  #: of the question
    line: Optional[int]  #: in the file, from 1; None: not known
    column: Optional[int]  #: in the line, in characters from 1; None: not known

    def __str__(self) -> str:
        place = self.name if self.line is None else f"{self.name}:{self.line}:{self.column}"
        return f"{place}: {self.severity}: {self.text}" if place else f"{self.severity}: {self.text}"


class Error(Exception):
    """A call that failed.

    Attributes:
        number: The library's, as in `torva35_c.h`.
        findings: What was found until then.
    """

    def __init__(self, number: int, text: str, findings: Sequence[Finding] = ()) -> None:
        super().__init__(text)
        self.number = number
        self.findings = list(findings)


class WrongCall(Error, ValueError):
    """Arguments that make no sense."""


class OutOfMemory(Error, MemoryError):
    """There is not enough memory."""


class FileError(Error, OSError):
    """A file could not be written."""


class Refused(Error):
    """A file is not a test that can be read; `findings` say why."""


class Cancelled(Error):
    """By the answer to a dialog."""


class Failed(Error):
    """The files do not go together; `findings` say why."""


OK = 0
_CLASSES = {1: WrongCall, 2: OutOfMemory, 3: FileError, 4: Refused, 5: Cancelled, 6: Failed}


def error_of(code: int, text: str, findings: Sequence[Finding] = ()) -> Error:
    """The exception for a code of the C interface."""
    return _CLASSES.get(code, Error)(code, text, findings)
