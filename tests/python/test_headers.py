"""The module has everything that the headers declare."""
import ctypes
import pathlib
import re
import subprocess

import pytest

import sai_virtual as sai

ROOT = pathlib.Path(__file__).parents[2]
CONTROL = sorted((ROOT / "swsdk/include/swsdk").glob("*.h"))
HEADERS = [ROOT / "include/sai.h", *CONTROL]
# What the module does not have by its name, and why.
EXCEPT = {
    "SAI_API": "marks exported names for the compiler",
    "SAI_PRINTF": "has the compiler check formats, and the module passes none",
    "swsdk_line_t": "functions that tell lines return them as lists",
    "swsdk_difference_t": "any function of Python's is one",
    "swsdk_frame_handler": "any function of Python's is one",
    "sai_l2_event_cb": "any function of Python's is one",
}


def declared(path):
    """The names in a header, by what they are, read in another way than the generator does."""
    text = re.sub(r"/\*.*?\*/", "", path.read_text(encoding="utf-8"), flags=re.S)
    return {
        "function": re.findall(r"^(?!typedef)[A-Za-z][\w *]*?\b(\w+)\(", text, re.M),
        "variable": re.findall(r"^extern SAI_API .*?(\w+)(?:\[\w+\])?;", text, re.M),
        "record": re.findall(r"^\} ?(\w+);", text, re.M),
        "callback": re.findall(r"^typedef .*\(\*(\w+)\)", text, re.M),
        "enum": re.findall(r"^enum (\w+)", text, re.M),
        "constant": re.findall(r"^#define ((?:SAI|SWSDK)_\w+)\b(?!$)", text, re.M)
        + re.findall(r"^\s+((?:SAI|SWSDK)_\w+) = ", text, re.M),
    }


def test_the_module_has_every_declared_name():
    names = [name for path in HEADERS for of_kind in declared(path).values() for name in of_kind]
    assert len(names) > 380
    missing = [name for name in names if not hasattr(sai, name) and name not in EXCEPT]
    assert missing == []
    assert [name for name in EXCEPT if name not in names or hasattr(sai, name)] == []


@pytest.mark.parametrize("path", HEADERS, ids=lambda path: path.name)
def test_each_is_what_it_is_in_the_header(path):
    names = declared(path)
    assert all(callable(getattr(sai, name)) and getattr(sai, name).__doc__ for name in names["function"])
    assert all(issubclass(getattr(sai, name), ctypes.Structure) for name in names["record"])
    assert all(issubclass(getattr(sai, name), int) for name in names["enum"])
    constants = {name: getattr(sai, name) for name in names["constant"] if name not in EXCEPT}
    assert all(isinstance(value, (int, str)) for value in constants.values())


def test_records_have_the_header_s_layout(tmp_path):
    """Compiled: every size, which the fields' order and types make."""
    records = [name for path in HEADERS for name in declared(path)["record"]] + ["bcm_port_info_t"]
    source = tmp_path / "sizes.c"
    includes = "".join(f"#include <swsdk/{path.name}>\n" for path in CONTROL)
    sizes = "".join(f'  printf("%zu\\n", sizeof({name}));\n' for name in records)
    source.write_text(f"#include <sai.h>\n#include <bcm/port.h>\n{includes}int main(void) {{\n{sizes}  return 0;\n}}\n")
    folders = [f"-I{ROOT / 'include'}", f"-I{ROOT / 'swsdk/include'}"]
    subprocess.run(["cc", *folders, source, "-o", tmp_path / "sizes"], check=True)
    compiled = subprocess.run([tmp_path / "sizes"], capture_output=True, text=True, check=True).stdout.split()
    assert [int(size) for size in compiled] == [ctypes.sizeof(getattr(sai, name)) for name in records]
