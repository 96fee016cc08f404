"""Builds the Python package with CMake: the extension, the libraries it loads and the fluid data
go inside the package (zentropia/lib), so that an installed package needs nothing else."""

import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

SOURCE = pathlib.Path(__file__).resolve().parent


def version():
    text = (SOURCE / "CMakeLists.txt").read_text()
    return re.search(r"project\(\s*Zentropia\s+VERSION\s+([0-9.]+)", text).group(1)


class CMakeBuild(build_py):
    """Configures, builds and installs the CMake project into a staging directory laid out as the
    package, then copies the package into the build."""

    def run(self):
        work = pathlib.Path(self.build_lib).resolve().parent / "cmake"
        stage = work / "stage"
        shutil.rmtree(stage, ignore_errors=True)
        generator = ["-G", "Ninja"] if shutil.which("ninja") else []
        subprocess.run(["cmake", "-S", str(SOURCE), "-B", str(work / "build"), *generator,
                        "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF",
                        f"-DPython3_EXECUTABLE={sys.executable}", "-DZP_PYTHON_DIR=.",
                        "-DZP_LIB_DIR=zentropia/lib"], check=True)
        subprocess.run(["cmake", "--build", str(work / "build"), "--target", "zentropia_python",
                        "zentropia_c", "zentropia_cli", "-j2"], check=True)
        subprocess.run(["cmake", "--install", str(work / "build"), "--prefix", str(stage)],
                       check=True)
        target = pathlib.Path(self.build_lib) / "zentropia"
        shutil.rmtree(target, ignore_errors=True)
        shutil.copytree(stage / "zentropia", target, symlinks=True,
                        ignore=shutil.ignore_patterns("cmake", "pkgconfig", "__pycache__"))


class BinaryDistribution(Distribution):
    def has_ext_modules(self):
        return True


setup(
    version=version(),
    packages=["zentropia"],
    package_dir={"": "python"},
    cmdclass={"build_py": CMakeBuild},
    distclass=BinaryDistribution,
    options={"build": {"build_base": "build-pip"}},
)
