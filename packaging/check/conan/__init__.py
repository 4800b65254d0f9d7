"""What the recipe takes from Conan, doing here what it would do there. What is not here, the recipe cannot call.

It stands in for the recipe's own steps only: versions, profiles and other packages are the machine's.
"""

import shlex
import subprocess


class Values:
    """Settings or options."""

    def __init__(self, **values):
        self.__dict__.update(values)


class Information:
    """What a package says of itself, as a whole or for a component."""

    def __init__(self):
        self.libs, self.requires, self.properties = [], [], {}

    def set_property(self, name, value):
        self.properties[name] = value


class PackageInformation(Information):
    def __init__(self):
        super().__init__()
        self.components = Components()


class Components(dict):
    def __missing__(self, name):
        return self.setdefault(name, Information())


class ConanFile:
    def __init__(self):
        self.required, self.cpp_info = {}, PackageInformation()

    def requires(self, reference, visible=True):
        name, version = reference.split("/")
        self.required[name] = version

    def run(self, command, stdout=None, env=""):
        done = subprocess.run(shlex.split(command), check=True, text=True, stdout=subprocess.PIPE)
        if stdout is not None:
            stdout.write(done.stdout)
