"""From the files of a printed multiple-choice test to a bubble sheet that grades right.

    import torva35
    exam = torva35.load("unit-3-A.xml", "unit-3-B.xml")
    for finding in exam.findings: print(finding)
    exam.sheet(title="Unit 3").save_html("sheet.html")
    exam.keys["B"][4]            # 'F'

Files are ExamView XML exports or LMF data files: paths, bytes, or open files. Different exams work on different threads at
the same time. `convert` does whole folders.
"""

from __future__ import annotations

from ._convert import Job, Outcome, Report, convert, find_jobs, run_job
from ._errors import Cancelled, Error, Failed, FileError, Finding, OutOfMemory, Refused, WrongCall
from ._exam import Dialog, Exam, Page, Progress, load
from ._library import library as _c

__all__ = [
    "Cancelled",
    "Dialog",
    "Error",
    "Exam",
    "Failed",
    "FileError",
    "Finding",
    "Job",
    "OutOfMemory",
    "Outcome",
    "Page",
    "Progress",
    "Refused",
    "Report",
    "WrongCall",
    "convert",
    "find_jobs",
    "load",
    "run_job",
]
__version__: str = _c.torva35_version().decode()
