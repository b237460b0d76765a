"""Builds the package by the project's own CMake files, from a checkout: pip wheel python/"""

import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parents[1]
VERSION = re.search(r"project\(NuoZRFx VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
OPTIONS = {"CMAKE_BUILD_TYPE": "Release", "BUILD_SHARED_LIBS": "OFF", "NUO_BUILD_TESTS": "OFF",
           "NUO_BUILD_EXAMPLES": "OFF", "NUO_BUILD_TOOLS": "OFF", "Python_EXECUTABLE": sys.executable}


class BuildByCMake(build_ext):
    """The library and the module in one file."""

    def build_extension(self, extension):
        folder, module = pathlib.Path(self.build_temp).resolve(), pathlib.Path(self.get_ext_fullpath(extension.name))
        defined = [f"-D{name}={value}" for name, value in {**OPTIONS, **self.pybind11()}.items()]
        subprocess.run(["cmake", "-S", ROOT, "-B", folder, *defined], check=True)
        subprocess.run(["cmake", "--build", folder, "--parallel", "--target", "python_core"], check=True)
        module.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(str(folder / "python/zrfx" / module.name), str(module))

    @staticmethod
    def pybind11():
        """Where the package of PyPI has it; CMake finds that of the system by itself."""
        try:
            import pybind11
        except ImportError:
            return {}
        return {"pybind11_DIR": pybind11.get_cmake_dir()}


setup(version=VERSION, ext_modules=[Extension("zrfx._core", [])], cmdclass={"build_ext": BuildByCMake})
