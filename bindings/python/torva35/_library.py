"""The C interface as ctypes sees it: structures, functions, and nothing of its own."""

from __future__ import annotations

import ctypes
import os
import sys
from ctypes import CFUNCTYPE, POINTER, Structure, c_char_p, c_double, c_int, c_int32, c_int64, c_size_t, c_void_p
from pathlib import Path


class Text(Structure):
    """A text of the library's or of ours: UTF-8 and its size."""

    _fields_ = [("data", c_void_p), ("size", c_size_t)]

    def get(self) -> bytes:
        """The bytes, copied."""
        return ctypes.string_at(self.data, self.size) if self.data else b""

    def __str__(self) -> str:
        return self.get().decode("utf-8", "replace")


def text_of(text: str) -> Text:
    """A text of ours, which a structure that it is put into keeps alive."""
    data = text.encode("utf-8", "replace")
    return Text(ctypes.cast(c_char_p(data), c_void_p), len(data))


class Finding(Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("severity", c_int32),
        ("file", c_int32),
        ("number", c_int64),
        ("line", c_int64),
        ("column", c_int64),
        ("kind", Text),
        ("id", Text),
        ("text", Text),
    ]


class Dialog(Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("title", Text),
        ("text", Text),
        ("file", Text),
        ("buttons", POINTER(Text)),
        ("button_count", c_size_t),
    ]


class Progress(Structure):
    _fields_ = [("struct_size", c_size_t), ("step", Text), ("file", Text), ("done", c_int64), ("total", c_int64)]


Ask = CFUNCTYPE(c_int, c_void_p, POINTER(Dialog))
Show = CFUNCTYPE(c_int, c_void_p, POINTER(Progress))
Report = CFUNCTYPE(None, c_void_p, POINTER(Finding))


class Callbacks(Structure):
    _fields_ = [("struct_size", c_size_t), ("user", c_void_p), ("ask", Ask), ("progress", Show), ("report", Report)]


class Options(Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("title", Text),
        ("version_names", POINTER(Text)),
        ("version_name_count", c_size_t),
        ("state", Text),
        ("max_questions", c_int64),
        ("objectives", c_int32),
        ("odd_only", c_int32),
        ("renumber", c_int32),
        ("reserved", c_int32),
    ]


class Page(Structure):
    _fields_ = [
        ("struct_size", c_size_t),
        ("language", Text),
        ("id_digits", c_int32),
        ("name_letters", c_int32),
        ("version", c_int32),
        ("reserved", c_int32),
        ("title", Text),
    ]


_HANDLE = c_void_p
_TEXT = POINTER(Text)
_FUNCTIONS = {
    "torva35_version": (c_char_p, []),
    "torva35_exam_new": (_HANDLE, []),
    "torva35_exam_free": (None, [_HANDLE]),
    "torva35_exam_add_file": (c_int, [_HANDLE, c_char_p, c_size_t, c_char_p, c_size_t]),
    "torva35_exam_add_content": (c_int, [_HANDLE, c_char_p, c_size_t, c_char_p, c_size_t]),
    "torva35_exam_make": (c_int, [_HANDLE, POINTER(Options), POINTER(Callbacks)]),
    "torva35_exam_error": (c_int, [_HANDLE, _TEXT]),
    "torva35_exam_finding_count": (c_size_t, [_HANDLE]),
    "torva35_exam_version_count": (c_size_t, [_HANDLE]),
    "torva35_exam_row_count": (c_size_t, [_HANDLE]),
    "torva35_exam_reader_file_count": (c_size_t, [_HANDLE]),
    "torva35_exam_finding_at": (c_int, [_HANDLE, c_size_t, POINTER(Finding)]),
    "torva35_exam_worst": (c_int32, [_HANDLE]),
    "torva35_exam_title": (c_int, [_HANDLE, _TEXT]),
    "torva35_exam_points": (c_int, [_HANDLE, c_size_t, c_size_t, POINTER(c_double)]),
    "torva35_exam_version_name": (c_int, [_HANDLE, c_size_t, _TEXT]),
    "torva35_exam_row_number": (c_int, [_HANDLE, c_size_t, POINTER(c_int64)]),
    "torva35_exam_key": (c_int, [_HANDLE, c_size_t, c_size_t, _TEXT]),
    "torva35_exam_json": (c_int, [_HANDLE, _TEXT]),
    "torva35_exam_csv": (c_int, [_HANDLE, _TEXT]),
    "torva35_exam_student_page": (c_int, [_HANDLE, POINTER(Page), _TEXT]),
    "torva35_exam_teacher_page": (c_int, [_HANDLE, POINTER(Page), _TEXT]),
    "torva35_exam_save_lmf": (c_int, [_HANDLE, c_char_p, c_size_t]),
    "torva35_exam_reader_file": (c_int, [_HANDLE, c_size_t, _TEXT, _TEXT]),
    "torva35_exam_make_reader_files": (c_int, [_HANDLE, POINTER(Page)]),
}


def _open() -> ctypes.CDLL:
    # Of the number of this interface, and no other: beside this file in a wheel, else where the system has it.
    name = "torva35_c.dll" if sys.platform == "win32" else "libtorva35_c.so.0.1"
    beside = Path(__file__).with_name(name)
    library = ctypes.CDLL(os.environ.get("TORVA35_LIBRARY") or (str(beside) if beside.exists() else name))
    for function, (result, arguments) in _FUNCTIONS.items():
        getattr(library, function).restype = result
        getattr(library, function).argtypes = arguments
    return library


library = _open()
