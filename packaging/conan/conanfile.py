"""Builds the checkout that this file lies in; in a registry, source() fetches the release instead of export_sources()."""

import os
import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rm, rmdir

required_conan_version = ">=2.0"


class TORVA35Recipe(ConanFile):
    name = "torva35"
    description = "Merges printed multiple-choice tests into bubble-sheet forms"
    # license: for the owner to choose.
    topics = ("education", "grading", "multiple-choice")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False], "tool": [True, False]}
    default_options = {"shared": False, "fPIC": True, "tool": False}
    implements = ["auto_shared_fpic"]

    @property
    def _checkout(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        build = load(self, os.path.join(self._checkout, "CMakeLists.txt"))
        self.version = re.search(r"project\(TORVA35 VERSION ([0-9.]+)", build).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "cmake/*", "docs/*", "examples/*", "sheet/*", "tool/*", "torva35/*"):
            copy(self, pattern, src=self._checkout, dst=self.export_sources_folder)

    def requirements(self):
        self.requires("expat/[>=2.5 <3]")
        self.requires("zlib/[>=1.2.11 <2]")
        # Only what is built here takes these.
        self.requires("fast_float/[>=3 <9]", visible=False)
        self.requires("fmt/[>=9 <12]", visible=False)
        self.requires("nlohmann_json/[>=3.11 <4]", visible=False)
        self.requires("utfcpp/[>=3.2 <5]", visible=False)
        if self.options.tool:
            self.requires("cli11/[>=2.3 <3]", visible=False)

    def validate(self):
        check_min_cppstd(self, 20)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["BUILD_TESTING"] = False
        toolchain.cache_variables["TORVA35_C"] = False
        toolchain.cache_variables["TORVA35_INSTALL"] = True
        toolchain.cache_variables["TORVA35_SHARED"] = bool(self.options.shared)
        toolchain.cache_variables["TORVA35_SHEET"] = True
        toolchain.cache_variables["TORVA35_TOOL"] = bool(self.options.tool)
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        if self.options.shared:
            rm(self, "libtorva35.a", os.path.join(self.package_folder, "lib"))
        # Hosts find the targets that package_info() describes.
        rmdir(self, os.path.join(self.package_folder, "lib", "cmake"))
        rmdir(self, os.path.join(self.package_folder, "lib", "pkgconfig"))
        rmdir(self, os.path.join(self.package_folder, "share"))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "TORVA35")
        library = self.cpp_info.components["torva35"]
        library.set_property("cmake_target_name", "TORVA35::torva35")
        library.libs = ["torva35"]
        library.requires = ["expat::expat", "zlib::zlib"]
        sheet = self.cpp_info.components["sheet"]
        sheet.set_property("cmake_target_name", "TORVA35::sheet")
        sheet.libs = ["torva35sheet"]
        sheet.requires = ["torva35", "zlib::zlib"]
        for component in (library, sheet):
            component.set_property("pkg_config_name", "torva35" if component is library else "torva35-sheet")
