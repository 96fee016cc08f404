"""The README's examples, run as written: each block marked "example" is followed by the output
it prints. Numbers are compared to 9 significant digits, everything else exactly."""

import os
import re
import subprocess
import sys

import pytest
from conftest import BUILD_DIR, SOURCE_DIR, TOOL

EXAMPLE = re.compile(r"```(\w+) example\n(.*?)```\s*```text\n(.*?)```", re.S)
NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?")


def examples():
    text = (SOURCE_DIR / "README.md").read_text()
    return {language: (code, output) for language, code, output in EXAMPLE.findall(text)}


def same_output(got, expected):
    """got reads like expected: the same text, numbers equal to 9 significant digits."""
    split = lambda s: (NUMBER.sub("#", s), [float(n) for n in NUMBER.findall(s)])
    (got_text, got_numbers), (text, numbers) = split(got), split(expected)
    assert got_text == text
    assert got_numbers == pytest.approx(numbers, rel=1e-9)


def test_every_interface_has_its_example():
    assert set(examples()) == {"sh", "python", "c"}


def test_the_command_line_example():
    code, output = examples()["sh"]
    script = code.replace("build/bin/zentropia", str(TOOL))
    result = subprocess.run(["bash", "-eo", "pipefail", "-c", script], capture_output=True,
                            text=True, check=True)
    same_output(result.stdout, output)


def test_the_python_example():
    code, output = examples()["python"]
    env = dict(os.environ, PYTHONPATH=str(BUILD_DIR / "python"))
    result = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True,
                            check=True, env=env)
    same_output(result.stdout, output)


def test_the_c_example(tmp_path):
    code, output = examples()["c"]
    (tmp_path / "example.c").write_text(code)
    compiler = os.environ.get("CC", "cc")
    lib = BUILD_DIR / "lib"
    subprocess.run([compiler, "-std=c11", "-Wall", "-Werror", "example.c",
                    f"-I{SOURCE_DIR / 'include'}", f"-L{lib}", "-lzentropia_c",
                    f"-Wl,-rpath,{lib}", "-o", "example"], cwd=tmp_path, check=True)
    result = subprocess.run([str(tmp_path / "example")], capture_output=True, text=True,
                            check=True)
    same_output(result.stdout, output)
