# SPDX-License-Identifier: Apache-2.0
"""A Conan 2 recipe that builds the sources which it stands in: conan create packaging/conan"""

import os
import re

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir

required_conan_version = ">=2.0"


class OrvaneConan(ConanFile):
    name = "orvane"
    description = "Client library for telematics and usage-based insurance programmes"
    license = "Apache-2.0"
    homepage = "https://orvane.example/"
    topics = ("telematics", "insurance", "client")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {
        "shared": [True, False],
        "fPIC": [True, False],
        "runtime": [True, False],
        "testing": [True, False],
    }
    default_options = {"shared": False, "fPIC": True, "runtime": True, "testing": True}
    implements = ["auto_shared_fpic"]

    @property
    def _sources(self):
        return os.path.join(self.recipe_folder, os.pardir, os.pardir)

    def set_version(self):
        header = load(self, os.path.join(self._sources, "Orvane", "Version.h"))
        parts = re.findall(r"^#define ORVANE_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$", header, re.MULTILINE)
        self.version = ".".join(parts)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "Orvane/*", "cmake/*"):
            copy(self, pattern, src=self._sources, dst=self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        self.requires("abseil/[>=20220623]")
        self.requires("boost/[>=1.81]")
        self.requires("icu/[>=67]")
        self.requires("simdjson/[>=3.0 <5]")
        if self.options.runtime:
            self.requires("libcurl/[>=7.87 <9]")
            self.requires("openssl/[>=1.1.1 <4]")
            self.requires("zlib/[>=1.2.11 <2]")

    def validate(self):
        check_min_cppstd(self, 20)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in ("BENCHMARKS", "EXAMPLES", "TESTS", "TOOLS"):
            toolchain.cache_variables[f"ORVANE_BUILD_{part}"] = False
        toolchain.cache_variables["ORVANE_BUILD_RUNTIME"] = bool(self.options.runtime)
        toolchain.cache_variables["ORVANE_BUILD_TESTING"] = bool(self.options.testing)
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "LICENSE", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))
        # Conan tells its users in files of its own.
        for folder in ("lib/cmake", "lib/pkgconfig", "share"):
            rmdir(self, os.path.join(self.package_folder, folder))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "Orvane")
        self._component("orvane", "Orvane", "Orvane",
                        ["abseil::absl_time", "boost::url", "boost::headers", "icu::icu-i18n", "icu::icu-uc", "simdjson::simdjson"])
        if self.options.runtime:
            self._component("runtime", "OrvaneRuntime", "Runtime",
                            ["orvane", "libcurl::libcurl", "openssl::ssl", "openssl::crypto", "zlib::zlib"])
        if self.options.testing:
            self._component("testing", "OrvaneTesting", "Testing", ["orvane"])

    def _component(self, name, library, target, requires):
        component = self.cpp_info.components[name]
        component.libs = [library]
        component.requires = requires
        component.set_property("cmake_target_name", f"Orvane::{target}")
        component.set_property("pkg_config_name", "orvane" if name == "orvane" else f"orvane-{name}")
        if not self.options.shared:
            component.defines = ["ORVANE_STATIC"]
        if self.settings.os in ("Linux", "FreeBSD"):
            component.system_libs = ["m", "pthread"]
