"""Builds the package tarn with CMake: the compiled module and, beside it in tarn/lib, the libraries that it needs."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, find_packages, setup
from setuptools.command.build_ext import build_ext

HOUSE = pathlib.Path(__file__).resolve().parent


class CMakeBuild(build_ext):
    """Takes the place of the compiler of setuptools."""

    def run(self):
        build = pathlib.Path(self.build_temp).resolve()
        target = pathlib.Path(self.build_lib).resolve() if not self.inplace else HOUSE / "python"
        # With Ninja, ccache finds what a build for packages has compiled.
        generator = ["-G", "Ninja"] if shutil.which("ninja") else []
        configure = ["cmake", *generator, "-S", str(HOUSE), "-B", str(build), "-DCMAKE_BUILD_TYPE=Release",
                     "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG", "-DTARN_PYTHON=ON", "-DTARN_TOOL=OFF",
                     "-DTARN_DEVELOPER=OFF", f"-DPython3_EXECUTABLE={sys.executable}", f"-DCMAKE_INSTALL_PREFIX={target}",
                     "-DCMAKE_INSTALL_LIBDIR=tarn/lib", "-DTARN_PYTHON_DIR=."]
        subprocess.run(configure, check=True)
        subprocess.run(["cmake", "--build", str(build), "--parallel", str(len(os.sched_getaffinity(0)))], check=True)
        for component in ("libraries", "python"):
            subprocess.run(["cmake", "--install", str(build), "--component", component, "--strip"], check=True)
        # A wheel has no symbolic links. The module asks for a library by the name of the link.
        for link in (target / "tarn" / "lib").iterdir():
            if link.is_symlink():
                link.resolve().replace(link)

    def get_outputs(self):
        return [str(path) for path in (pathlib.Path(self.build_lib) / "tarn").rglob("*.so*")]


def version():
    """The version of the newest section of the change log."""
    text = (HOUSE / "CHANGELOG.md").read_text(encoding="utf-8")
    return re.search(r"^## \[(\d+\.\d+\.\d+)\] - ", text, re.MULTILINE).group(1)


(HOUSE / "build").mkdir(exist_ok=True)
setup(
    version=version(),
    package_dir={"": "python"},
    packages=find_packages("python", include=["tarn", "tarn.*"]),
    package_data={"tarn": ["py.typed", "*.pyi"]},
    ext_modules=[Extension("tarn._tarn", [])],
    cmdclass={"build_ext": CMakeBuild},
    options={"egg_info": {"egg_base": "build"}},  # nothing is written beside the sources
    zip_safe=False,
)
