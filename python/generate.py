"""usage: generate.py HEADER OUTPUT

Makes the module's tables from the library's header: enumerators, records with their fields, and functions with their
parameters, each as plain Python data, so that the module itself needs no header.
"""
import re
import sys

INTEGER = re.compile(r"u?int(8|16|32|64)_t")


class BadHeader(Exception):
    pass


def parameter_of(text, comment):
    """A parameter as (name, C type, role): "in", "needed" if it must not be null, "out" for what the function returns,
    or "inout"."""
    match = re.fullmatch(r"\s*(.+?)([a-z_0-9]+)(?:\[(\d+)\])?\s*", text)
    if not match:
        raise BadHeader(f"cannot read the parameter {text!r}")
    c_type, name, count = re.sub(r"\s*\*", "*", match[1]).strip(), match[2], match[3]
    if count:
        return name, f"{c_type}[{count}]", "out"
    if c_type == "const uint8_t*":
        bytes_of_it = 16 if re.search(rf"@param {name} [^@]* 16 bytes", comment) else 6
        return name, f"const uint8_t[{bytes_of_it}]", "in"
    if re.search(rf"@param {name} [^@]*without a bound", comment):
        return name, f"{c_type[:-1]}[]", "out"
    taken = re.search(rf"@param {name}\s+(takes|in:) ", comment)
    if c_type.endswith("*") and INTEGER.fullmatch(c_type[:-1]):
        return name, c_type, "inout" if taken else "out"
    return name, c_type, "needed" if re.search(rf"@param {name} [^@]*, not null", comment) else "in"


def functions_of(text):
    """Each function by its name: (kind of its result, C type of its result, parameters)."""
    declarations = re.findall(r"/\*\*((?:[^*]|\*(?!/))*)\*/\nSAI_API ([^;]*);", text)
    if len(declarations) != len(re.findall(r"^SAI_API [^;]*\(", text, re.M)) or not declarations:
        raise BadHeader("a function has no comment")
    functions = {}
    for comment, prototype in declarations:
        comment = re.sub(r"\s*\n \* ?", " ", comment)
        prototype = " ".join(prototype.split())
        match = re.fullmatch(r"(.+?)([a-z_0-9]+)\((.*)\)(?: SAI_PRINTF)?", prototype)
        if not match:
            raise BadHeader(f"cannot read the declaration {prototype!r}")
        returned, name, parameters = match[1].replace(" ", ""), match[2], match[3]
        # A negative result is a code unless the comment says that the result is something else.
        what = re.search(r"@return (.*)", comment)
        is_code = what is None or re.match(r"(always )?0", what[1]) or re.search("converted result|sai_result", what[1])
        kind = "none" if returned == "void" else "code" if returned == "int32_t" and is_code else "number"
        listed = [] if parameters == "void" else [p for p in parameters.split(",") if p.strip() != "..."]
        functions[name] = (kind, returned, [parameter_of(p, comment) for p in listed])
    return functions


def records_of(text):
    """Each record by its name: a list of fields, (name, C type, count or None)."""
    records = {}
    for body, name in re.findall(r"^typedef struct[^{;]*\{(.*?)\n\} ?([a-z_0-9]+);", text, re.M | re.S):
        body = re.sub(r"/\*.*?\*/", "", body, flags=re.S)
        fields = []
        for field in filter(None, (f.strip() for f in body.split(";"))):
            match = re.fullmatch(r"([A-Za-z_0-9 ]+?\*?) ([a-z_0-9]+)(?:\[(\w+)\])?", field)
            if not match:
                raise BadHeader(f"cannot read the field {field!r} of {name}")
            fields.append((match[2], match[1], match[3]))
        records[name] = fields
    if len(records) != len(re.findall(r"^typedef struct", text, re.M)):
        raise BadHeader("a record cannot be read")
    return records


def constants_of(text):
    enumerators = re.findall(r"^  (SAI_[A-Z_0-9]+) = (-?\w+),", text, re.M)
    macros = re.findall(r"^#define (SAI_[A-Z_0-9]+) (\d\w*)$", text, re.M)
    return {name: int(value.rstrip("U"), 0) for name, value in enumerators + macros}


def table(name, entries):
    return [f"{name} = {{", *(f"    {key!r}: {value!r}," for key, value in entries.items()), "}"]


def main(header, output):
    with open(header, encoding="utf-8") as file:
        text = file.read()
    lines = ['"""Made from the library\'s header by generate.py."""']
    lines += table("CONSTANTS", constants_of(text))
    lines += table("RECORDS", records_of(text))
    lines += table("FUNCTIONS", functions_of(text))
    with open(output, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except BadHeader as error:
        sys.exit(f"{sys.argv[1]}: {error}")
