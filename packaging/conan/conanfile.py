"""Recipe for conan 2: builds the checkout that contains it."""
import os

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy


class Wordlex(ConanFile):
    name = "wordlex"
    version = "5.1.0"
    description = "Localization dictionaries: keys to texts, plurals, the order of the user's languages"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "tools": [True, False]}
    default_options = {"shared": False, "tools": True}
    generators = "CMakeDeps"

    def export_sources(self):
        root = os.path.join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "cmake/*", "host/*", "wordlex/*", "localeid/*", "tools/*",
                        "xml/*", "localizer/*", "startup/*", "packaging/deb/*"):
            copy(self, pattern, root, self.export_sources_folder)

    def requirements(self):
        self.requires("icu/72.1")
        self.requires("tsl-robin-map/1.2.1")
        self.requires("xxhash/0.8.1")
        self.requires("boost/1.74.0", headers=True)
        self.requires("libxml2/2.9.14")
        if self.options.tools:
            self.requires("cli11/2.3.2")
            self.requires("nlohmann_json/3.11.2")
            self.requires("toml11/3.7.1")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["BUILD_SHARED_LIBS"] = bool(self.options.shared)
        toolchain.cache_variables["FRAMEWRIGHT_TOOLS"] = bool(self.options.tools)
        toolchain.cache_variables["FRAMEWRIGHT_APP"] = False
        toolchain.cache_variables["FRAMEWRIGHT_TESTS"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # find_package(Wordlex) reads the package's own files.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake", "Wordlex")]
