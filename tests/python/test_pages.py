"""What the pages show in Python does what they say."""
import pathlib
import re

import pytest

import sai_virtual as sai

ROOT = pathlib.Path(__file__).parents[2]
# With what they print, where the page shows it.
BLOCKS = [
    pytest.param(block, said, id=f"{page}-{number}")
    for page in ("README.md", "docs/python.md")
    for number, (block, said) in enumerate(
        re.findall(r"^```python\n(.*?)^```\n(?:\n```text\n(.*?)^```$)?", (ROOT / page).read_text(), re.M | re.S)
    )
]
PROGRAMS = [block for block in BLOCKS if "import sai_virtual" in block.values[0]]


@pytest.mark.parametrize("block, said", [program for program in PROGRAMS if program.values[1]])
def test_a_program_prints_what_the_page_shows(block, said, capfd):
    exec(compile(block, "page", "exec"), {})
    assert capfd.readouterr().out == said


@pytest.mark.parametrize("block, said", [program for program in PROGRAMS if not program.values[1]])
def test_a_program_ends_as_its_comment_says(block, said):
    (said,) = re.findall(r"# SaiError: (.*)$", block, re.M)
    with pytest.raises(sai.SaiError) as error:
        exec(compile(block, "page", "exec"), {})
    assert str(error.value) == said


def test_the_tests_of_the_page_pass(pytester):
    plugin, test = [block.values[0] for block in BLOCKS if "import sai_virtual" not in block.values[0]]
    pytester.makeconftest(plugin)
    pytester.makepyfile(test)
    pytester.runpytest_subprocess("-p", "no:cacheprovider").assert_outcomes(passed=1)
