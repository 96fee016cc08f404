"""The user guide's examples (docs/guide.md), run as written in a fresh directory: each block
marked "example" is followed by the output it prints, compared as the README's are."""

import os
import re
import subprocess
import sys

import pytest
from conftest import BUILD_DIR, SOURCE_DIR, TOOL
from test_readme import EXAMPLE, same_output

GUIDE = (SOURCE_DIR / "docs" / "guide.md").read_text()
EXAMPLES = EXAMPLE.findall(GUIDE)


def test_the_guide_has_examples_and_the_readme_links_it():
    assert {language for language, _, _ in EXAMPLES} == {"sh", "python"}
    assert "docs/guide.md" in (SOURCE_DIR / "README.md").read_text()


@pytest.mark.parametrize("language, code, output", EXAMPLES,
                         ids=[f"{lang}-{i}" for i, (lang, _, _) in enumerate(EXAMPLES)])
def test_each_example_prints_what_the_guide_shows(language, code, output, tmp_path):
    env = dict(os.environ, PYTHONPATH=str(BUILD_DIR / "python"))
    if language == "sh":
        command = ["bash", "-eo", "pipefail", "-c", code.replace("build/bin/zentropia", str(TOOL))]
    else:
        command = [sys.executable, "-c", code]
    result = subprocess.run(command, capture_output=True, text=True, cwd=tmp_path, env=env)
    assert result.returncode == 0, result.stderr
    same_output(result.stdout, output)
    if "savefig" in code:  # the diagram was drawn
        assert (tmp_path / "rankine_ts.png").stat().st_size > 10000
