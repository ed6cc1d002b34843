"""What the pages show in Python does what they say."""
import pathlib
import re

import pytest

import sai_virtual as sai

ROOT = pathlib.Path(__file__).parents[2]
BLOCKS = [
    pytest.param(block, id=f"{page}-{number}")
    for page in ("README.md", "docs/python.md")
    for number, block in enumerate(re.findall(r"^```python\n(.*?)^```$", (ROOT / page).read_text(), re.M | re.S))
]


@pytest.mark.parametrize("block", [block for block in BLOCKS if "import sai_virtual" in block.values[0]])
def test_a_program_ends_as_its_comment_says(block):
    (said,) = re.findall(r"# SaiError: (.*)$", block, re.M)
    with pytest.raises(sai.SaiError) as error:
        exec(compile(block, "page", "exec"), {})
    assert str(error.value) == said


def test_the_tests_of_the_page_pass(pytester):
    plugin, test = [block.values[0] for block in BLOCKS if "import sai_virtual" not in block.values[0]]
    pytester.makeconftest(plugin)
    pytester.makepyfile(test)
    pytester.runpytest_subprocess("-p", "no:cacheprovider").assert_outcomes(passed=1)
