"""What the header, the messages and the tables of results know of each function."""

import re

import header
import messages
import results
import roff
import sdk

# Where a comment says "Arguments and results are those of" another function.
SAME = re.compile(r"Arguments and results are those of (\w+)\(\)\.?")
# The verbs at the end of names. Functions whose names are the same but for them belong together.
VERBS = ("add|remove|del|delete|create|destroy|set|unset|get|clear|clean|reset|enable|disable|init|detach|install|read|"
         "write|show|config|all")
VERB = re.compile(rf"(_(?:{VERBS}))+$")
RESULTS = re.compile(r"(?:Unless a comment says otherwise, t|\bT)he results are (.*?\.)(?= |$)")


class Reference:
    def __init__(self, header_file, documents):
        self.documents = documents
        self.intro, self.sections = header.read(header_file)
        self.entries = {e.name: e for s in self.sections for e in s.entries}
        self.section_of = {e.name: s for s in self.sections for e in s.entries}
        self.types = {e.name: e for e in header.entries(self.sections, "type")}
        self.logged = messages.by_function()
        self.errors = [m for m in messages.index()[0] if m.level == "errors"]
        self.results = results.rows(self.logged)
        self.constants = sdk.headers_of_constants()
        self.problems = [f"{name}: docs/results has nothing of a table that {call} finds full"
                         for name, call in results.without_full(self.logged)]
        self.problems += [f"{name}: no row tells what a failure of {call} leads to"
                          for name, call in results.without_row(self.results)]

    def documented(self, entry):
        """The comment with an entry's arguments and results: its own, or that of the entry to which it refers."""
        for paragraph in entry.comment.text:
            if same := SAME.search(paragraph):
                return self.entries[same.group(1)].comment
        return entry.comment

    def result_of(self, entry):
        own = self.documented(entry).result
        if own or entry.returns == "void":
            return own
        for paragraph in self.section_of[entry.name].prose:
            if told := RESULTS.search(paragraph):
                return told.group(1)
        return ""

    def types_of(self, entry):
        """The records and enumerations that its call and its comment name, and those that these name."""
        comment = self.documented(entry)
        text = " ".join([entry.code, *comment.text, *comment.params.values(), comment.result])
        found = []
        waiting = re.findall(r"\w+", text)
        while waiting:
            name = waiting.pop(0)
            if name in self.types and self.types[name] not in found:
                found.append(self.types[name])
                waiting += re.findall(r"\w+", self.types[name].code)
        return found

    def headers_of(self, entry):
        """The SDK's headers whose constants a caller needs: those that are named for arguments and types."""
        named = [entry.comment, self.documented(entry), *(type_.comment for type_ in self.types_of(entry))]
        text = " ".join(said for comment in named for said in comment.params.values())
        constants = set(re.findall(r"\b(?:BCM_(?!E_)\w+|bcm[A-Z]\w+)", text)) & self.constants.keys()
        starts = re.findall(r"\b(BCM_\w+_)\*", text)
        constants |= {name for name in self.constants if name.startswith(tuple(starts))} if starts else set()
        return sorted({self.constants[name] for name in constants})

    def messages_logged(self, entry):
        return sorted(dict.fromkeys(self.logged.get(entry.name, [])), key=lambda m: m[1] == "debugging")

    def related(self, entry):
        """The functions that its comment names, its inverse and the rest of its family."""
        comment = self.documented(entry)
        text = " ".join([*entry.comment.text, *comment.text, *comment.params.values(), comment.result])
        names = {name for name in re.findall(r"\b(\w+)\b", text) if name in roff.NAMES}
        names |= roff.NAMES & {entry.name.replace("_register_", "_unregister_")}
        names |= {name for name in roff.NAMES if VERB.sub("", name) == VERB.sub("", entry.name)}
        names -= {entry.name}
        if not names:
            names = self.neighbors(entry)
        own = [(name, 3) for name in sorted(names)]
        return [*own, ("sai", 7), ("swsdk", 7)] if entry.name in self.results else [*own, ("sai", 7)]

    def neighbors(self, entry):
        """Those of its section whose names begin like its own, the longer the better; else those beside it;
        of the only one of a section, those that make the same SDK calls."""
        section = [e.name for e in self.section_of[entry.name].entries if e.kind != "type" and e.name != entry.name]
        words = entry.name.split("_")
        for length in range(len(words) - 1, 1, -1):
            start = "_".join(words[:length]) + "_"
            if alike := [name for name in section if name.startswith(start)]:
                return set(alike[:6])
        if section:
            return set(section[:3])
        same_calls = [callers for callers in results.callers().values() if entry.name in callers]
        return set().union(*same_calls) - {entry.name}

    def texts(self):
        """All that the comments of the header say."""
        for entry in self.entries.values():
            yield from [*entry.comment.text, *entry.comment.params.values(), entry.comment.result]
