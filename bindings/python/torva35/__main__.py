"""Runs the program `torva35`: python -m torva35 ARGUMENT..."""

import os
import shutil
import subprocess
import sys
from pathlib import Path


def main() -> int:
    name = "torva35.exe" if sys.platform == "win32" else "torva35"
    beside = Path(__file__).with_name(name)
    program = str(beside) if beside.exists() else os.environ.get("TORVA35_PROGRAM") or shutil.which(name)
    if program is None:
        print("the program torva35 is not installed", file=sys.stderr)
        return 1
    if sys.platform != "win32":
        os.execv(program, [program, *sys.argv[1:]])  # with its own signals and exit status
    return subprocess.run([program, *sys.argv[1:]]).returncode


if __name__ == "__main__":
    sys.exit(main())
