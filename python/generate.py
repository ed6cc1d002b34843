"""usage: generate.py SAI_HEADER SDK_INCLUDE_FOLDER OUTPUT_FOLDER

Makes the module's tables and its type hints from the headers of the library and of the virtual chip, so that the module
itself needs no header.
"""
import pathlib
import pprint
import sys

import headers
import stubs


def table(name, entries):
    return [f"{name} = {{", *(f"    {key!r}: {pprint.pformat(entries[key], width=110)}," for key in entries), "}"]


def main(sai_header, sdk_folder, output):
    interface = headers.read(pathlib.Path(sai_header), pathlib.Path(sdk_folder))
    lines = ['"""Made from the headers by generate.py."""']
    for name in ("constants", "enums", "records", "handlers", "functions"):
        lines += table(name.upper(), getattr(interface, name))
    files = {"_interface.py": lines, "_interface.pyi": stubs.TABLES, "__init__.pyi": stubs.lines_of(interface)}
    for name, of_it in files.items():
        (pathlib.Path(output) / name).write_text("\n".join(of_it) + "\n", encoding="utf-8")


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except headers.BadHeader as error:
        sys.exit(f"generate.py: {error}")
