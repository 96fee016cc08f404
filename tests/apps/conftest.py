"""Where the tests of the tool find it: ZENTROPIA (set by CTest), else build/bin/zentropia."""

import os
import pathlib
import subprocess

import pytest

SOURCE_DIR = pathlib.Path(__file__).resolve().parents[2]
BUILD_DIR = pathlib.Path(os.environ.get("ZENTROPIA_BUILD_DIR", SOURCE_DIR / "build"))
TOOL = pathlib.Path(os.environ.get("ZENTROPIA", BUILD_DIR / "bin" / "zentropia"))


def run(*args, stdin=None, check=None):
    """Runs the tool with args (and stdin text); check: the exit status expected."""
    result = subprocess.run([str(TOOL), *map(str, args)], input=stdin, capture_output=True,
                            text=True, timeout=300)
    if check is not None:
        assert result.returncode == check, result.stderr
    return result


@pytest.fixture
def cli():
    return run
