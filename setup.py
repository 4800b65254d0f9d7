"""Builds the wheel of the Python package, which holds the shared library and the program; CMake builds these.

With TORVA35_BINARIES, nothing is built: they are taken from that folder, and TORVA35_PLATFORM is the wheel's platform.
"""

import os
import re
import shutil
import subprocess
import sysconfig
from pathlib import Path

from setuptools import setup
from setuptools.command.build_py import build_py
from setuptools.dist import Distribution
from wheel.bdist_wheel import bdist_wheel

ROOT = Path(__file__).resolve().parent
VERSION = re.search(r"project\(TORVA35 VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
SHARED = "libtorva35_c.so." + ".".join(VERSION.split(".")[:2])


def platform_tag():
    """The platform that has at least the C library that this is built with."""
    libc = os.confstr("CS_GNU_LIBC_VERSION").split()[1]
    machine = sysconfig.get_platform().split("-")[-1]
    return f"manylinux_{libc.replace('.', '_')}_{machine}"


def static_library(name):
    """A static library of the system's, so that the wheel takes nothing but the C library; empty if there is none."""
    path = subprocess.run(["cc", f"-print-file-name=lib{name}.a"], capture_output=True, text=True, check=True).stdout.strip()
    return path if os.path.isabs(path) else ""


def build():
    """Builds library and program, and gives their paths."""
    folder = ROOT / "build/wheel"
    alone = "-static-libstdc++ -static-libgcc"
    options = [f"-DCMAKE_{kind}_LINKER_FLAGS={alone}" for kind in ("SHARED", "EXE")] + ["-DZLIB_USE_STATIC_LIBS=ON"]
    if static_library("expat"):
        options.append(f"-DEXPAT_LIBRARY={static_library('expat')}")
    configure = ["cmake", "-S", ROOT, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release"]
    subprocess.run([*configure, "-DBUILD_TESTING=OFF", "-DTORVA35_INSTALL=OFF", *options], check=True)
    subprocess.run(["cmake", "--build", folder, "--target", "torva35_c", "torva35_tool"], check=True)
    return [folder / "bindings/c" / SHARED, folder / "tool/torva35"]


class BuildWithBinaries(build_py):
    def run(self):
        shutil.rmtree(Path(self.build_lib, "torva35"), ignore_errors=True)  # of another platform
        super().run()
        given = os.environ.get("TORVA35_BINARIES")
        for binary in [path for path in Path(given).iterdir()] if given else build():
            target = Path(self.build_lib, "torva35", binary.name)
            shutil.copyfile(binary, target)
            target.chmod(0o755)
            if not given:
                subprocess.run(["strip", target], check=True)


class PlatformWheel(bdist_wheel):
    """One wheel for all versions of Python: the library is none of Python's own."""

    def finalize_options(self):
        super().finalize_options()
        self.root_is_pure = False

    def get_tag(self):
        return "py3", "none", os.environ.get("TORVA35_PLATFORM") or platform_tag()


class WithBinaries(Distribution):
    def has_ext_modules(self):
        return True


(ROOT / "build").mkdir(exist_ok=True)
setup(
    version=VERSION,
    distclass=WithBinaries,
    cmdclass={"build_py": BuildWithBinaries, "bdist_wheel": PlatformWheel},
    options={"build": {"build_base": "build/python"}, "egg_info": {"egg_base": "build"}},
)
