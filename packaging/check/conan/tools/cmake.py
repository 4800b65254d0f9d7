import os
import pathlib
import subprocess


def cmake_layout(recipe):
    recipe.build_folder = os.path.join(recipe.work_folder, "build")
    recipe.cpp.build.bindir = recipe.build_folder
    recipe.generators_folder = os.path.join(recipe.build_folder, "generators")


class CMakeToolchain:
    def __init__(self, recipe):
        self.recipe, self.cache_variables = recipe, {}

    def generate(self):
        lines = [f"set({name} {'ON' if value else 'OFF'} CACHE BOOL \"\" FORCE)\n" for name, value in self.cache_variables.items()]
        # No optimization: what counts is what is built, not how fast it is.
        lines.append("set(CMAKE_INSTALL_LIBDIR lib CACHE PATH \"\")\nset(CMAKE_CXX_FLAGS_DEBUG \"\" CACHE STRING \"\")\n")
        lines.append(f"list(PREPEND CMAKE_PREFIX_PATH \"{self.recipe.generators_folder}\")\n")
        write(self.recipe, "conan_toolchain.cmake", "".join(lines))


class CMakeDeps:
    """Describes the tested package as its package_info() does. Other packages are those of the machine."""

    # What a requirement of a component is called in CMake: the package to look for, and its target.
    TARGETS = {"expat::expat": ("EXPAT", "EXPAT::EXPAT"), "zlib::zlib": ("ZLIB", "ZLIB::ZLIB")}

    def __init__(self, recipe):
        self.recipe = recipe

    def generate(self):
        package = self.recipe.tested_package
        if package is None:
            return
        components = package.cpp_info.components
        lines = []
        for component in components.values():
            target = component.properties["cmake_target_name"]
            libraries = [os.path.join(package.package_folder, "lib", self.library(package, name)) for name in component.libs]
            for required in component.requires:
                if required in components:
                    libraries.append(components[required].properties["cmake_target_name"])
                else:
                    lines.append(f"find_package({self.TARGETS[required][0]} REQUIRED)\n")
                    libraries.append(self.TARGETS[required][1])
            include = os.path.join(package.package_folder, "include")
            lines.append(f"add_library({target} INTERFACE IMPORTED)\n"
                         f"target_include_directories({target} INTERFACE \"{include}\")\n"
                         f"target_link_libraries({target} INTERFACE {' '.join(libraries)})\n")
        write(self.recipe, package.cpp_info.properties["cmake_file_name"] + "Config.cmake", "".join(lines))

    @staticmethod
    def library(package, name):
        ending = ".so" if package.options.shared else ".a"
        other = ".a" if package.options.shared else ".so"
        folder = pathlib.Path(package.package_folder, "lib")
        if (folder / f"lib{name}{ending}").exists():
            assert not (folder / f"lib{name}{other}").exists(), f"both kinds of {name}"
            return f"lib{name}{ending}"
        return f"lib{name}.a"  # one that is always static


def write(recipe, name, text):
    folder = pathlib.Path(recipe.generators_folder)
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_text(text, encoding="utf-8")


class CMake:
    def __init__(self, recipe):
        self.recipe = recipe

    def command(self, *arguments):
        done = subprocess.run(["cmake", *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        assert done.returncode == 0 and "variables were not used" not in done.stdout, done.stdout

    def configure(self):
        recipe = self.recipe
        self.command("-S", recipe.source_folder, "-B", recipe.build_folder, "-G", "Ninja",
                     f"-DCMAKE_BUILD_TYPE={recipe.settings.build_type}", f"-DCMAKE_INSTALL_PREFIX={recipe.package_folder}",
                     f"-DCMAKE_TOOLCHAIN_FILE={recipe.generators_folder}/conan_toolchain.cmake")

    def build(self):
        self.command("--build", self.recipe.build_folder, "--parallel", str(os.cpu_count()))

    def install(self):
        self.command("--install", self.recipe.build_folder)
