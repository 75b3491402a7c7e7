# SPDX-License-Identifier: Apache-2.0
"""Runs a Conan recipe's steps without Conan, up to what CMake is told:
conan_stand_in.py <recipe's folder> <folder to work in> <version>

The modules that a recipe imports are made here, with what of them it uses and nothing else.
"""

import importlib.util
import re
import shutil
import subprocess
import sys
import types
from pathlib import Path

recipe_folder, work, version = Path(sys.argv[1]).resolve(), Path(sys.argv[2]), sys.argv[3]
cache_variables = {}


class Info:
    def __init__(self):
        self.libs, self.requires, self.defines, self.system_libs, self.properties = [], [], [], [], {}

    def set_property(self, name, value):
        self.properties[name] = value


class Components(dict):
    def __missing__(self, name):
        self[name] = Info()
        return self[name]


class Values(types.SimpleNamespace):
    pass


class ConanFile:
    def __init__(self):
        self.recipe_folder = str(recipe_folder)
        self.required = []
        self.cpp_info = Info()
        self.cpp_info.components = Components()
        self.settings = Values(os="Linux", arch="x86_64", compiler="gcc", build_type="Release")

    def requires(self, reference):
        self.required.append(reference)


class CMakeToolchain:
    def __init__(self, recipe):
        self.cache_variables = cache_variables

    def generate(self):
        pass


class CMakeDeps:
    def __init__(self, recipe):
        pass

    def generate(self):
        pass


def copy(recipe, pattern, src, dst):
    """Conan's patterns go into folders: a star is of any depth."""
    found = [path for path in Path(src).glob(pattern.replace("/*", "/**/*")) if path.is_file()]
    if not found:
        sys.exit(f"conan: {pattern} copies nothing")
    for path in found:
        target = Path(dst) / path.relative_to(src)
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(path, target)


def module(name, **contents):
    made = types.ModuleType(name)
    made.__dict__.update(contents)
    sys.modules[name] = made


module("conan", ConanFile=ConanFile)
module("conan.tools")
module("conan.tools.build", check_min_cppstd=lambda recipe, least: None, can_run=lambda recipe: True)
module("conan.tools.cmake", CMake=None, CMakeDeps=CMakeDeps, CMakeToolchain=CMakeToolchain, cmake_layout=lambda recipe: None)
module("conan.tools.files", copy=copy, load=lambda recipe, path: Path(path).read_text(), rmdir=shutil.rmtree)


def load(path, name):
    description = importlib.util.spec_from_file_location(name, path)
    made = importlib.util.module_from_spec(description)
    description.loader.exec_module(made)
    return made


def expect(condition, text):
    if not condition:
        sys.exit(f"conan: {text}")


load(recipe_folder / "test_package" / "conanfile.py", "test_recipe")
recipe = load(recipe_folder / "conanfile.py", "recipe").OrvaneConan()
expect(recipe.options.keys() == recipe.default_options.keys(), "options and defaults differ")
recipe.options = Values(**recipe.default_options)
recipe.set_version()
expect(recipe.version == version, f"its version is {recipe.version}")
recipe.export_sources_folder = str(work / "sources")
recipe.export_sources()
recipe.layout()
recipe.requirements()
for reference in recipe.required:
    expect(re.fullmatch(r"[a-z0-9_+.-]+/\[[<>=0-9. ]+\]", reference), f"a requirement: {reference}")
recipe.validate()
recipe.generate()

# Components require each other, or what the recipe requires.
recipe.package_info()
packages = {reference.split("/")[0] for reference in recipe.required}
for name, component in recipe.cpp_info.components.items():
    for needed in component.requires:
        known = needed.split("::")[0] in packages if "::" in needed else needed in recipe.cpp_info.components
        expect(known, f"{name} requires {needed}, which nothing brings")

# What is exported is all that CMake needs, and each option is one that it reads.
told = [f"-D{name}={'ON' if value else 'OFF'}" for name, value in cache_variables.items()]
said = subprocess.run(
    ["cmake", "-G", "Ninja", "-S", work / "sources", "-B", work / "build", "-DCMAKE_BUILD_TYPE=Release", *told],
    stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
expect(said.returncode == 0 and "not used by the project" not in said.stderr, said.stderr)

# Its components are the libraries that CMake builds.
targets = subprocess.run(["ninja", "-C", work / "build", "-t", "targets", "all"], capture_output=True, text=True, check=True).stdout
for name, component in recipe.cpp_info.components.items():
    expect(f"lib{component.libs[0]}.a:" in targets, f"{component.libs[0]} is no library")
print("conan: the recipe was run up to CMake's configuration")
