"""Reads the interface's headers: constants, records, callbacks and functions, each with its comment.

What C cannot say stands in the comments: parameter_of(), kind_of() and note_on() have the words for it.
"""
import dataclasses
import re

INTEGERS = {
    **{name: name for name in (f"{sign}int{bits}_t" for sign in ("", "u") for bits in (8, 16, 32, 64))},
    "uint8": "uint8_t", "uint16": "uint16_t", "uint32": "uint32_t", "unsigned char": "uint8_t", "unsigned": "uint32_t",
    "int": "int32_t", "long": "int64_t", "long long": "int64_t", "unsigned long long": "uint64_t", "size_t": "uint64_t",
}
COMMENT = r"/\*\*((?:[^*]|\*(?!/))*)\*/"


class BadHeader(Exception):
    pass


@dataclasses.dataclass
class Interface:
    """Plain data, as the module's tables have it."""

    constants: dict = dataclasses.field(default_factory=dict)
    enums: dict = dataclasses.field(default_factory=dict)  # name: (has bits, comment, {enumerator: value})
    records: dict = dataclasses.field(default_factory=dict)  # name: (comment, [(field, type, count, note)])
    handlers: dict = dataclasses.field(default_factory=dict)  # name: [(parameter, type)]
    functions: dict = dataclasses.field(default_factory=dict)  # name: see function_of()


def plain(comment):
    """A comment's text without its frame."""
    return re.sub(r"^[ \t]*\*? ?", "", comment.strip(), flags=re.M).strip()


def number(text):
    return int(text.strip("()").rstrip("uUL"), 0)


# ------------------------------------------------------------------------------------------------------ constants ----


def read_constants(interface, text):
    macros = re.findall(r'^#define ([A-Z]\w+) (\(?-?(?:0x[0-9A-Fa-f]+|\d+)(?:[uU]|ULL)?\)?|"[^"]*")(?: */\*.*)?$', text, re.M)
    for name, value in macros:
        interface.constants[name] = value.strip('"') if value.startswith('"') else number(value)
    for comment, name, body, typedef in re.findall(
        COMMENT + r"\n(?:typedef )?enum (\w+) \{(.*?)\n\} ?(\w*);", text, re.S
    ):
        enumerators = re.findall(r"^  ([A-Z]\w+) = (\S+?),?(?:\s*/\*.*)?$", body, re.M)
        values = {enumerator: number(value) for enumerator, value in enumerators}
        interface.enums[typedef or name] = (bool(re.search(r"\b[Bb]its\b", comment)), plain(comment), values)
        interface.constants |= values


def read_numbered_enumerators(interface, text):
    """The SDK's numbers that its headers count: statistics, controls, actions."""
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    lists = dict(re.findall(r"^#define (\w+)\(\w+\)((?:.*\\\n)+.*)$", text, re.M))  # macros that name all of a kind
    for body in re.findall(r"^typedef enum \w+ \{(.*?)\n\}", text, re.M | re.S):
        for name, listed in lists.items():
            names = ", ".join(re.findall(r"\((\w+)\)", listed))
            body = re.sub(rf"\b{name}\(\w+\)", f"{names},", body)
        value = -1
        for item in filter(None, (item.strip() for item in body.split(","))):
            name, _, given = (part.strip() for part in item.partition("="))
            if given and not re.fullmatch(r"-?\w+", given):
                break
            value = number(given) if given else value + 1
            interface.constants[name] = value


def note_on(interface, c_type, comment):
    """What an integer is beyond its type: an IPv4 address in "host order" or "network order", or of an enum."""
    if c_type == "uint32_t" and re.search(r"IPv4 (?:\w+ )?address|in (?:host|network) (?:byte )?order", comment):
        return "network order" if "network" in comment else "host order"
    for word, star in re.findall(r"(\w+)(\*?)", comment):
        for name, (_, _, enumerators) in interface.enums.items():
            if word == name or word in enumerators:
                return name
            if star and word.endswith("_") and all(enumerator.startswith(word) for enumerator in enumerators):
                return name
    return None


# ------------------------------------------------------------------------------------------- records and callbacks ----


def resolved(c_type, typedefs):
    """A C type by the names of INTEGERS."""
    c_type = re.sub(r"\s*\*", "*", c_type.strip())
    const, base, stars = re.fullmatch(r"(const )?(.*?)(\**)", c_type).groups()
    base = typedefs.get(base, base)
    return f"{const or ''}{INTEGERS.get(base, base)}{stars}"


def fields_of(interface, body, typedefs):
    fields = []
    text = re.sub(r"^ */\*\*(?!<).*?\*/$", "", body, flags=re.S | re.M)  # a comment before its field
    for c_type, name, count, comment in re.findall(
        r"^\s*([\w ]+?\**) ?(\w+)(?:\[(\w+)\])?;[ ]*((?:/\*\*<(?:[^*]|\*(?!/))*\*/)?)", text, re.M
    ):
        c_type = resolved(c_type, typedefs)
        base, _, items = c_type.partition("[")
        count = count or items.rstrip("]") or None
        count = interface.constants[count] if count in interface.constants else count and int(count)
        note = None if count or base.endswith("*") else note_on(interface, base, comment)
        fields.append((name, base, count, note))
    if len(fields) != len(re.findall(r";", re.sub(r"/\*.*?\*/", "", body, flags=re.S))):
        raise BadHeader(f"cannot read the fields {body!r}")
    return fields


def read_records(interface, text, typedefs, only=None):
    found = re.findall(rf"(?:{COMMENT}\n)?typedef struct\s*\w*\s*\{{(.*?)\n\}} ?(\w+);", text, re.S)
    for comment, body, name in found:
        if only is None or name in only:
            interface.records[name] = (plain(comment), fields_of(interface, body, typedefs))
    if only is None and len(found) != len(re.findall(r"^typedef struct", text, re.M)):
        raise BadHeader("a record cannot be read")
    for name, parameters in re.findall(r"^typedef void \(\*(\w+)\)\(([^)]*)\);", text, re.M):
        split = [re.fullmatch(r"\s*(.+?)(\w+)", p) for p in " ".join(parameters.split()).split(",")]
        interface.handlers[name] = [(p[2], resolved(p[1], typedefs)) for p in split]


def typedefs_of(text):
    """The SDK's names of types: a name for another one, or an enum."""
    plain_ones = re.findall(r"^typedef (\w[\w ]*?) (\w+)(?:\[(\d+)\])?;", text, re.M)
    enums = re.findall(r"^typedef enum.*?\n\} (\w+);", text, re.M | re.S)
    names = {name: f"{INTEGERS.get(to, to)}{f'[{count}]' if count else ''}" for to, name, count in plain_ones}
    return names | {name: "int32_t" for name in enums}


# ------------------------------------------------------------------------------------------------------ functions ----


def parameter_of(interface, text, comment, in_swsdk):
    """A parameter as (name, C type, role, note, limits). Roles:

    "in": given, null too if it is a pointer; "needed": given, not null; "out": returned; "inout": both;
    "room": returned, a text or bytes; "size": its size; "data": given, bytes or records; "length": their number;
    "reason": a text for a failure's exception; "lines": a function that is told lines, which are returned;
    "nothing": null, as functions of Python's need no data beside them.
    """
    match = re.fullmatch(r"\s*(.+?)([a-z_0-9]+)(?:\[(\w+)\])?\s*", text)
    if not match:
        raise BadHeader(f"cannot read the parameter {text!r}")
    c_type, name, count = resolved(match[1], {}), match[2], match[3]
    said = re.search(rf"@param {name}\s+((?:(?!@).)*)", comment)
    said = said[1] if said else ""
    limits = re.search(r"(\d+) to (\d+); not checked", said)
    limits = tuple(map(int, limits.groups())) if limits else None
    role, note = "in", None
    if count in interface.constants:
        role = "reason"
    elif count:
        c_type, role = f"{c_type}[{count}]", "out"
    elif c_type in ("char*", "void*") and re.search("buf", name):
        role = "room"
    elif (name, c_type) == ("size", "uint64_t") or name.endswith("_len"):
        role = "size"
    elif c_type == "void*":
        role = "nothing"
    elif c_type == "const void*" or re.search(r"\bcount\b", said) and c_type.startswith("const swsdk_"):
        role = "data"
    elif name in ("length", "count") and in_swsdk:
        role = "length"
    elif c_type == "swsdk_line_t":
        role = "lines"
    elif c_type == "const uint8_t*":
        c_type = f"const uint8_t[{16 if '16 bytes' in said else 6}]"
    elif "without a bound" in said:
        c_type, role = f"{c_type[:-1]}[]", "out"
    elif c_type.endswith("*") and c_type[:-1] in INTEGERS:
        role = "inout" if re.match(r"(takes|in:) ", said) else "out"
    elif in_swsdk and re.fullmatch(r"swsdk_\w+\*", c_type):
        role = "out"  # the virtual chip writes the records that it is given; the library changes fields of them
    elif "not null" in said:
        role = "needed"
    if c_type in INTEGERS and role == "in":
        note = note_on(interface, c_type, said)
    return name, c_type, role, note, limits


def kind_of(returned, result, in_swsdk):
    """What a function's result is: "none"; "code", of which a negative one is a failure; "refusal", -1 is one; "length"
    of a text; or a "number"."""
    if returned == "void":
        return "none"
    if in_swsdk:
        moves = re.match("length of what was moved", result)
        is_length = re.match("length of", result)
        return "moved" if moves else "length" if is_length else "refusal" if "-1 when" in result else "number"
    # A negative result is a code unless the comment says that the result is something else.
    is_code = not result or re.match(r"(always )?0", result) or re.search("converted result|sai_result", result)
    return "code" if returned == "int32_t" and is_code else "number"


def read_functions(interface, text, in_swsdk):
    """Each function by its name: its library, kind of result, C type of its result, what -1 means, whether callbacks
    must not call it, its parameters, and its comment."""
    begin = "" if in_swsdk else "SAI_API "
    found = re.findall(rf"{COMMENT}\n{begin}((?!typedef|extern)[a-z][\w *]*?)(\w+)\(([^;]*?)\)(?: SAI_PRINTF)?;", text)
    if len(found) != len(re.findall(rf"^{begin}(?!typedef)[a-z][\w ]*\*? ?\w+\(", text, re.M)):
        raise BadHeader("a function has no comment")
    for comment, returned, name, parameters in found:
        line = " ".join(plain(comment).split())
        if same := re.search(r"Arguments and results are those of (\w+)\(\)", line):
            line = " ".join(interface.functions[same[1]][-1].split())
        result = re.search(r"@return (.*)", line)
        result = result[1] if result else ""
        refused = re.search(r"-1 when (.*?)(?:, and nothing is changed.*|; .*|\.|$)", result)
        listed = [] if parameters == "void" else [p for p in parameters.split(",") if p.strip() != "..."]
        interface.functions[name] = (
            "swsdk" if in_swsdk else "sai",
            kind_of(returned.strip(), result, in_swsdk),
            resolved(returned, {}),
            refused[1] if refused else "",
            "Not to be called from a callback" in line or "No other call may be running" in line,
            [parameter_of(interface, " ".join(p.split()), line, in_swsdk) for p in listed],
            plain(comment),
        )


def read(sai_header, sdk_folder):
    """The interface of the library and of the virtual chip, and what of the SDK's headers they name."""
    interface = Interface()

    def text_of(path):
        return path.read_text(encoding="utf-8")

    sdk = {path.name: text_of(path) for path in sorted((sdk_folder / "bcm").glob("*.h"))}
    typedefs = typedefs_of("\n".join(sdk.values()))
    controls = [text_of(path) for path in sorted((sdk_folder / "swsdk").glob("*.h"))]
    sai = text_of(sai_header)
    read_numbered_enumerators(interface, "\n".join(sdk.values()))
    for text in (*sdk.values(), sai, *controls):
        read_constants(interface, text)
    sdk_enums = [name for name in interface.enums if name.startswith("bcm_") and name != "bcm_error_t"]
    for name in sdk_enums:
        del interface.enums[name]
    read_records(interface, sdk["port.h"], typedefs, only={"bcm_port_info_t"})
    interface.handlers |= {"bcm_linkscan_handler_t": handler_of(sdk["link.h"], typedefs)}
    for text in (sai, *controls):
        read_records(interface, text, typedefs)
    read_functions(interface, sai, in_swsdk=False)
    for text in controls:
        read_functions(interface, text, in_swsdk=True)
    return interface


def handler_of(text, typedefs):
    own = Interface()
    read_records(own, text, typedefs, only=())
    (parameters,) = own.handlers.values()
    return parameters
