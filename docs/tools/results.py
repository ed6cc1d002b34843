"""The results of each function: what docs/results has, which tests find and keep.

docs/results/failures: what a function does after each failure of each of its SDK calls, from the fault sweep.
docs/results/refusals: what a function refuses, or the virtual chip refuses it, without any fault.

Their lines have tabs between: function, SDK call ("library": none), codes, result, why (refusals), the calls before or
all others that succeeded, what follows (failures), lines of the log.
"""

import re
from collections import defaultdict
from dataclasses import dataclass, field, replace

import log_lines
import messages
import sources

RESULTS = sources.repository() / "docs/results"
ALL = frozenset(range(-23, 0))
# SDK calls that change nothing in the chip.
READS = re.compile(r"_(get|find|traverse|t_init|multi_get|count|valid|map|sync)\w*$|^soc_linkscan|_to_\w+$")


@dataclass(frozen=True)
class Row:
    """A row of a function's table of results."""

    result: str
    when: str
    log: tuple  # texts of messages
    chip: str
    is_real_only: bool = False  # that is, the virtual chip answers so only when it is told to fail


@dataclass
class Failure:
    case: str
    call: str
    codes: frozenset
    result: str
    before: list
    then: str
    log: tuple
    is_in_turn: bool = False  # a later call fails because of it and gives the result


@dataclass
class Refusal:
    call: str
    code: int
    result: int
    reasons: dict = field(default_factory=dict)
    done: list = field(default_factory=list)
    log: tuple = ()


def names_of_codes():
    """BCM_E_ and SAI_E_ names by number."""
    root = sources.repository()
    sdk = re.findall(r"(BCM_E_\w+) = (-?\d+)", (root / "swsdk/include/bcm/error.h").read_text())
    own = re.findall(r"(SAI_E_\w+) = (-?\d+)", (root / "include/sai.h").read_text())
    return {int(number): name for name, number in sdk}, {int(number): name for name, number in own}


SDK_NAMES, OWN_NAMES = names_of_codes()
SCENES = {
    "(again)": "the same call was made before",
    "(alone)": "what it needs or names does not exist",
    "(full)": "no room is left",
    "(attached)": "before chip start-up",
    "(off)": "before chip start-up",
}
REASONS = [text for text, _ in messages.reasons()]
# The one begins with empty tables, the other has just deleted an entry.
ALWAYS_HAS_ROOM = {"sai_switch_chip_init", "sai_vport_destroy"}


def template(line, texts):
    """The message of which a line is an example."""
    fitting = [t for t in texts if any(log_lines.pattern_of(t).search(end) for end in (line, line.rstrip("?")))]
    if not fitting:
        raise messages.Mismatch(f"docs/results: no message of the function is '{line}'")
    return max(fitting, key=log_lines.fixed)


def log_of(fields, texts):
    return tuple(dict.fromkeys(template(line.split(" ", 1)[1], texts) for line in fields))


def read_failures(logged):
    """Failures by function. Where a later call fails in turn, all codes have the same consequences, but one looks
    different because the later call fails with it as well. A later failure that follows one or two codes alone is left
    out: the chip was told to contradict itself."""
    found = defaultdict(list)
    for line in (RESULTS / "failures").read_text().splitlines():
        name, call, codes, result, before, then, *lines = line.split("\t")
        function, _, case = name.partition(",")
        codes = ALL if codes == "all" else frozenset(int(code) for code in codes.split(","))
        found[function].append((Failure(case, call, codes, result, before.split(), then, ()), lines))
    kept = defaultdict(list)
    for function, rows in found.items():
        texts = [text for text, _ in logged.get(function, [])]
        in_turn = {}
        for f, lines in rows:
            if any(reason in line for line in lines for reason in REASONS[1:]):
                codes = in_turn.setdefault((f.case, f.call, f.then), f.codes)
                f.is_in_turn = f.codes == codes and len(codes) > 3
        for failure, lines in rows:
            if failure.is_in_turn:
                failure.codes = ALL
            elif (failure.case, failure.call, failure.then) in in_turn:
                continue
            failure.log = log_of(lines, texts)
            kept[function].append(failure)
    return kept


def read_refusals(logged):
    """Refusals by function, and the failures of SDK calls that the virtual chip has without being told to fail."""
    found = defaultdict(list)
    natural = defaultdict(set)
    for line in (RESULTS / "refusals").read_text().splitlines():
        function, call, code, *rest = line.split("\t")
        if not rest:
            natural[function].add((call, int(code)))
            continue
        result, reasons, done, *lines = rest
        refusal = Refusal(call, int(code), int(result), {}, done.split())
        for reason in reasons.split("; "):
            what, *values = reason.split(" ")
            refusal.reasons[what] = values
        refusal.log = log_of(lines, [text for text, _ in logged.get(function, [])])
        found[function].append(refusal)
    return found, natural


def listed(words, last="or"):
    words = list(words)
    return f" {last} ".join([", ".join(words[:-1]), words[-1]] if len(words) > 1 else words)


def examples(values):
    """Two of the values, small ones first."""
    numbers = sorted({int(v) for v in values}, key=lambda n: (n < 0, abs(n)))
    return listed(str(n) for n in numbers[:2])


def why(reasons, about_unit):
    """What was wrong, for a reader."""
    if about_unit:
        return "no such unit, or before chip start-up"
    if "(again)" in reasons:
        reasons = {what: values for what, values in reasons.items() if what not in ("(alone)", "(attached)")}
    said = []
    for what, values in reasons.items():
        if what in SCENES:
            said.append(SCENES[what])
            continue
        if "null" in values:
            said.append(f"`{what}` is null")
        if "text" in values:
            said.append(f"a text that `{what}` cannot be")
        if numbers := [value for value in values if value not in ("null", "text")]:
            said.append(f"`{what}` such as {examples(numbers)}")
    return "; ".join(dict.fromkeys(said))


def left(calls):
    """What the chip holds after these calls."""
    return "what the calls before did" if any(not READS.search(call) for call in calls) else "unchanged"


def own_name(number):
    return f"{OWN_NAMES[number]} ({number})" if number in OWN_NAMES else str(number)


def refusal_rows(refusals):
    """Rows that the virtual chip shows without being told to fail, with the call that decides."""
    merged = {}
    for refusal in refusals:
        about_unit = refusal.code in (-3, -17) and set(refusal.reasons) & {"unit", "(off)", "(attached)"}
        code = "BCM_E_UNIT or BCM_E_INIT" if about_unit else SDK_NAMES.get(refusal.code, refusal.code)
        chip = left(refusal.done) if refusal.result else "the other steps are done"
        reasons = merged.setdefault((refusal.call, code, refusal.result, refusal.log, chip), {})
        for what, values in refusal.reasons.items():
            reasons.setdefault(what, []).extend(values)
    for (call, code, result, log, chip), reasons in merged.items():
        answer = "refused by the library" if call == "library" else f"{call}() answers {code}"
        about_unit = code == "BCM_E_UNIT or BCM_E_INIT"
        if code == "BCM_E_EXISTS" and "(again)" in reasons:
            reasons = {"(again)": []}
        yield call, Row(own_name(result), f"{answer}: {why(reasons, about_unit)}", log, chip)


def with_other_cases(rows_, failures):
    """A call that refuses can come after others in another case than the one in which the refusal was seen."""
    after_others = {failure.call for failure in failures if left(failure.before) != "unchanged"}
    for call, row in rows_:
        is_first = row.chip == "unchanged" and call in after_others
        yield call, replace(row, chip="unchanged, or what the calls before did") if is_first else row


def failure_rows(failures, refused, natural):
    """What follows when an SDK call fails otherwise; calls and codes with the same consequences are in one row."""
    outcomes = {}
    for failure in failures:
        codes = failure.codes - {code for call, code in refused if call == failure.call}
        if not codes:
            continue
        result = "its code" if failure.result == "converted" else own_name(int(failure.result))
        if failure.then == "goes on":
            chip = "the other steps are done"
        elif failure.then in ("ends", "last"):
            chip = left(failure.before)
        else:
            chip = "some other steps are done"
        few = codes if len(codes) <= 3 else frozenset()
        calls = outcomes.setdefault((result, few, failure.log, chip), {})
        cases, own_codes = calls.setdefault(failure.call, (set(), set()))
        cases.add(failure.case.strip())
        own_codes.update(codes if not failure.is_in_turn else ())
    variants = defaultdict(int)
    for (_, few, *_), calls in outcomes.items():
        for call in calls:
            variants[call, few] += 1
    for (result, few, log, chip), calls in outcomes.items():
        told = [sorted(cases - {""}) if variants[call, few] > 1 else [] for call, (cases, _) in calls.items()]
        names = [f"{call}()" for call in calls]
        at_the_end = ""
        if told[0] and all(cases == told[0] for cases in told):
            at_the_end = f" ({listed(told[0])})"
        else:
            names = [name + (f" ({listed(cases)})" if cases else "") for name, cases in zip(names, told)]
        answer = "fails otherwise" if any(call in calls for call, _ in refused) else "fails"
        if few:
            answer = "answers " + listed(SDK_NAMES.get(code, str(code)) for code in sorted(few, reverse=True))
        seen = any((call, code) in natural for call, (_, codes) in calls.items() for code in codes)
        yield next(iter(calls)), Row(result, f"{listed(names)} {answer}{at_the_end}", log, chip, not seen)


def folded(rows_):
    """Steps whose failures are only logged are one row, where there are many of them."""
    alike = defaultdict(list)
    for call, row in rows_:
        if row.when.endswith("() fails") and row.result == own_name(0) and row.log and row.is_real_only:
            alike[row.chip].append((call, row))
    for chip, several in alike.items():
        if len(several) > 4:
            names = dict.fromkeys(f"{call}()" for _, row in several for call in re.findall(r"(\w+)\(\)", row.when))
            log = tuple(dict.fromkeys(text for _, row in several for text in row.log))
            one = Row(own_name(0), f"{listed(names)} fails; one of these is logged", log, chip, True)
            rows_ = [named for named in rows_ if named not in several[1:]]
            rows_[rows_.index(several[0])] = (several[0][0], one)
    return rows_


def rows(logged):
    """The rows of each function, in the order of its SDK calls."""
    failures = read_failures(logged)
    refusals, natural = read_refusals(logged)
    calls = defaultdict(dict)
    for function, call in steps():
        calls[function][call] = None
    found = {}
    for name in sorted(failures.keys() | refusals.keys()):
        order = ["library", *calls[name]]
        refused = {(refusal.call, refusal.code) for refusal in refusals[name]}
        refusals_of_it = list(with_other_cases(refusal_rows(refusals[name]), failures[name]))
        rows_ = folded([*refusals_of_it, *failure_rows(failures[name], refused, natural[name])])
        place = {call: i for i, call in enumerate(order)}
        found[name] = [row for call, row in sorted(rows_, key=lambda named: place.get(named[0], len(order)))]
    return found


def steps():
    """Pairs of a function of the library and an SDK call that it makes, in the order of its calls."""
    for line in (RESULTS / "failures").read_text().splitlines():
        name, call, *_ = line.split("\t")
        yield name.partition(",")[0], call


def without_row(found):
    """Pairs of a function and an SDK call of which no row tells."""
    told = {(name, call) for name, rows_ in found.items() for row in rows_
            for call in re.findall(r"(\w+)\(\)", row.when)}
    return sorted(set(steps()) - told)


def without_full(logged):
    """Pairs of a function and an SDK call whose table others have found full, and of which no row tells."""
    codes = {number for number, name in SDK_NAMES.items() if name in ("BCM_E_FULL", "BCM_E_RESOURCE")}
    _, natural = read_refusals(logged)
    full = {(name, call) for name, answers in natural.items() for call, code in answers if code in codes}
    tables = {call for _, call in full}
    return sorted({pair for pair in steps() if pair[1] in tables and pair[0] not in ALWAYS_HAS_ROOM} - full)


def callers():
    """The functions of the library that make each SDK call."""
    found = defaultdict(set)
    for function, call in steps():
        found[call].add(function)
    return found
