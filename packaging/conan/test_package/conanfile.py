"""Builds a host against the package and runs it on the samples."""

import io
import os

from conan import ConanFile
from conan.errors import ConanException
from conan.tools.build import can_run
from conan.tools.cmake import CMake, cmake_layout

KEYS = """A: T F T H A G B D F D Y
B: F T T F B D H D G A Y
C: T T F G C F D G J A Y
"""


class TestTORVA35(ConanFile):
    settings = "os", "arch", "compiler", "build_type"
    generators = "CMakeDeps", "CMakeToolchain"

    def requirements(self):
        self.requires(self.tested_reference_str)

    def layout(self):
        cmake_layout(self)

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def test(self):
        if not can_run(self):
            return
        examples = os.path.join(self.recipe_folder, "..", "..", "..", "examples")
        samples = [os.path.join(examples, f"sample-test{version}.xml") for version in ("", "-b", "-c")]
        keys = io.StringIO()
        self.run(" ".join([os.path.join(self.cpp.build.bindir, "keys"), *samples]), stdout=keys, env="conanrun")
        if keys.getvalue() != KEYS:
            raise ConanException("wrong keys:\n" + keys.getvalue())
