"""Finds the places of a C++ file that take a small fault, and writes the file anew with each chosen
fault behind a switch of Mutants.h.

The code is formatted by clang-format, so binary operators stand between spaces and brackets of
templates don't: tokens are enough. What is taken wrongly doesn't compile and is dropped then.
Every fault is made of insertions around a piece of the text and replaced operators, never of a copy
of code that holds another fault, so that faults nest; no line is added or taken away.
"""
import hashlib
import re
from dataclasses import dataclass, field

TURNED = {"<": ">=", ">": "<=", "<=": ">", ">=": "<", "==": "!=", "!=": "=="}
EDGE = {"<": "Less", "<=": "LessEqual", ">": "Greater", ">=": "GreaterEqual"}
KINDS = ("turned", "edge", "off by one", "dropped call", "swapped", "flipped", "and/or")

SYMMETRIC = {"min", "max", "abs", "qMin", "qMax"}
KEYWORDS = ("return", "throw", "delete", "new", "if", "for", "while", "switch", "case", "static",
            "const", "using", "auto", "else", "do", "try", "catch", "default", "break", "continue",
            "goto", "co_return")


@dataclass
class Site:
    """A fault: `wraps` are (start, end, before, after), `swaps` (start, end, text); "@" is the
    number of the fault."""
    file: str
    start: int
    end: int
    kind: str
    what: str
    wraps: list
    swaps: list = field(default_factory=list)
    lines: tuple = (0, 0)
    text: str = ""
    ordinal: int = 0

    @property
    def key(self):
        """Stays the same when lines move: file, kind, text of the line, how many alike before."""
        return "\t".join((self.file, self.kind, self.what, self.text, str(self.ordinal)))

    def rank(self, seed):
        return hashlib.sha1(f"{seed}\t{self.key}".encode()).hexdigest()


def masked(text):
    """The text with comments, literals and directives of the preprocessor made spaces."""
    pattern = re.compile(
        r'//[^\n]*|/\*.*?\*/|R"([^(]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])+\''
        r'|(?m:^[ \t]*#(?:[^\n]*\\\n)*[^\n]*)', re.S)

    def blank(match):
        piece = match.group(0)
        if piece[0] in "\"'R" and len(piece) > 1:
            return '"' + re.sub(r"[^\n]", "_", piece[1:-1]) + '"'
        return re.sub(r"[^\n]", " ", piece)

    return pattern.sub(blank, text)


def partners(code):
    """Where each bracket's partner is."""
    found, stack = {}, []
    for at, char in enumerate(code):
        if char in "([{":
            stack.append(at)
        elif char in ")]}" and stack:
            start = stack.pop()
            found[start], found[at] = at, start
    return found


def bodies(code, pairs):
    """The extents of the functions' bodies; constexpr functions aside."""
    found, at, head = [], 0, 0
    while at < len(code):
        char = code[at]
        if char in ";}":
            head = at + 1
        elif char == "{":
            title = code[head:at]
            opened = title.split("(")[0]
            end = pairs.get(at, len(code) - 1)
            if re.search(r"\b(namespace|class|struct|extern)\b", opened):
                head = at + 1
            elif "(" in title and not re.search(r"\bconstexpr\b|=\s*$", title):
                word = re.search(r"(\w+)\s*$", title)
                if word and re.search(r"\)\s*:[^:]", title) and word.group(1) not in ("const", "noexcept"):
                    at = end
                else:
                    found.append((at, end))
                    at, head = end, end + 1
            else:
                at = end
                if re.search(r"\)\s*(const\s*)?$", title):
                    head = end + 1
        at += 1
    return found


def reach_left(code, at, low, pairs, stops):
    """The start of the operand that ends before `at`."""
    pos = at - 1
    while pos > low:
        char = code[pos]
        if char in ")]}":
            if char == "}" and re.match(r"\s*[\w*&(]", code[pos + 1:at + 1]) and "\n" in code[pos:at]:
                break
            pos = pairs.get(pos, low)
        elif char in "([{;,":
            break
        elif stops.match(code, pos):
            break
        pos -= 1
    start = pos + 1
    matched = stops.match(code, pos) if pos > low else None
    if matched:
        start = matched.end()
    start += len(code[start:at]) - len(code[start:at].lstrip())
    return start


def reach_right(code, at, high, pairs, stops):
    """The end of the operand that starts at `at`."""
    pos = at
    while pos < high:
        char = code[pos]
        if char in "([{":
            pos = pairs.get(pos, high)
        elif char in ")]};,":
            break
        elif stops.match(code, pos):
            break
        pos += 1
    return at + len(code[at:pos].rstrip())


WORDS = r"\b(?:return|co_return|throw|else)\b|"
ASSIGNS = r"[+\-*/|&^%]=(?= |\n)|<<=|>>=|=(?=\s)(?<![=!<>]=)"
STOPS = {
    "compare": re.compile(WORDS + r"&&|\|\||(?<=\s)[?:&|^](?=\s)|(?<=\s)(?:==|!=|<=|>=|<|>)(?=\s)|" + ASSIGNS),
    "&&": re.compile(WORDS + r"\|\||(?<=\s)[?:](?=\s)|" + ASSIGNS),
    "||": re.compile(WORDS + r"(?<=\s)[?:](?=\s)|" + ASSIGNS),
}


class Finder:
    """All sites of one file."""

    def __init__(self, file, text):
        self.file, self.text = file, text
        self.code = masked(text)
        self.pairs = partners(self.code)
        self.sites = []
        for low, high in bodies(self.code, self.pairs):
            self.operators(low, high)
            self.literals(low, high)
            self.statements(low, high)
            self.arguments(low, high)
            self.conditions(low, high)
        self.name()

    def add(self, kind, what, start, end, wraps, swaps=()):
        statement = max(self.code.rfind(c, 0, start) for c in ";{}")
        line = self.code.rfind("\n", 0, start)
        head = self.code[min(statement, line) + 1:start]
        if re.search(r"\b(constexpr|static_assert|case|template|operator|Guard|sizeof|alignas)\b", head):
            return
        if start < end:
            self.sites.append(Site(self.file, start, end, kind, what, list(wraps), list(swaps)))

    def operators(self, low, high):
        for match in re.compile(r"(?<=\s)(<=|>=|==|!=|<|>|&&|\|\|)(?=\s)").finditer(self.code, low, high):
            op, at, after = match.group(1), match.start(), match.end()
            stops = STOPS.get(op, STOPS["compare"])
            start = reach_left(self.code, at, low, self.pairs, stops)
            right = STOPS["compare"] if op not in STOPS else re.compile(
                stops.pattern + (r"|&&|\|\|" if op == "&&" else r"|\|\|"))
            begin = after + len(self.code[after:]) - len(self.code[after:].lstrip())
            end = reach_right(self.code, begin, high, self.pairs, right)
            if start >= at or end <= begin:
                continue
            left = len(self.code[:at].rstrip())
            if op in STOPS:
                other = "||" if op == "&&" else "&&"
                inner = ("(mutants::On(@) != bool(", "))")
                self.add("and/or", f"{op} as {other}", start, end,
                         [(start, end, "(mutants::On(@) != (", "))"), (start, left, *inner),
                          (begin, end, *inner)])
                continue
            self.add("turned", f"{op} as {TURNED[op]}", start, end,
                     [(start, end, "(mutants::On(@) != (", "))")])
            if op in EDGE:
                other = op[0] if len(op) == 2 else op + "="
                self.add("edge", f"{op} as {other}", start, end,
                         [(start, end, f"mutants::{EDGE[op]}(@, ", ")")], [(left, after, ",")])

    def literals(self, low, high):
        for match in re.compile(r"(?<![\w.'])\d+[uU]?(?![\w.'])").finditer(self.code, low, high):
            self.add("off by one", f"{match.group(0)} and 1", match.start(), match.end(),
                     [(match.start(), match.end(), "(", " + mutants::On(@))")])

    def statements(self, low, high):
        pattern = re.compile(r"(?:(?<=[;{})])|(?<=\belse))(\s+)(?=[A-Za-z_:+\-*(])")
        for match in pattern.finditer(self.code, low, high):
            start = match.end()
            end = start
            while end < high and self.code[end] not in ";}":
                end = self.pairs.get(end, end) + 1 if self.code[end] in "([{" else end + 1
            piece = self.code[start:end]
            word = re.match(r"\w*", piece).group(0)
            if self.code[end:end + 1] != ";" or word in KEYWORDS or word.startswith("Q_") or "Guard(" in piece[:40]:
                continue
            if self.code[match.start() - 1] == ")" and not self.closes_a_head(match.start() - 1):
                continue
            callee = re.match(r"[\w:.>\-<]*(?:(?:\([^;]*?\)|\[[^;]*?\])[\w:.>\-]*)*", piece).group(0)
            is_call = piece.endswith(")") and callee == piece and "(" in piece
            is_set = re.match(r"(?:\+\+|--)?[\w.>\-:]+(?:\[[^\]]*\])*(?:\s(?:[+\-|&]?=)\s.*)?$", piece, re.S) and \
                re.match(r"\+\+|--|\S+\s\S?=\s", piece)
            if is_call or is_set:
                what = "call" if is_call else "assignment"
                self.add("dropped call", what, start, end,
                         [(start, end, "mutants::On(@) ? void() : void(", ")")])

    def closes_a_head(self, at):
        start = self.pairs.get(at, 0)
        return re.search(r"\b(if|for|while)\s*$", self.code[:start][-12:]) is not None

    def arguments(self, low, high):
        simple = r"[A-Za-z_][\w.]*(?:(?:->|::)\w+)*(?:\(\))?"
        pattern = re.compile(rf"(\w+)\(({simple}), ({simple})(?=[,)])")
        for match in pattern.finditer(self.code, low, high):
            name, first, second = match.groups()
            if name in SYMMETRIC or name in KEYWORDS or first == second or \
                    "nullptr" in (first, second):
                continue
            one, two = match.span(2), match.span(3)
            self.add("swapped", f"{first}, {second}", match.start(2), match.end(3), [],
                     [(*one, f"(mutants::On(@) ? ({second}) : ({first}))"),
                      (*two, f"(mutants::On(@) ? ({first}) : ({second}))")])

    def conditions(self, low, high):
        for match in re.compile(r"\bif \(").finditer(self.code, low, high):
            start = match.end()
            end = self.pairs.get(start - 1, start)
            piece = self.code[start:end]
            if ";" in piece or re.search(r"(?<![=!<>])=(?!=)", piece):
                continue
            # A condition that is one comparison is turned already.
            if any(s.kind == "turned" and (s.start, s.end) == (start, end) for s in self.sites):
                continue
            self.add("flipped", "condition", start, end,
                     [(start, end, "mutants::On(@) != bool(", ")")])

    def name(self):
        """Lines, text and ordinal of each site."""
        starts = [0] + [m.end() for m in re.finditer("\n", self.text)]
        lines = self.text.split("\n")
        seen = {}
        number = 0
        self.sites.sort(key=lambda s: (s.start, -s.end, KINDS.index(s.kind)))
        for site in self.sites:
            while number + 1 < len(starts) and starts[number + 1] <= site.start:
                number += 1
            last = number + self.text.count("\n", starts[number], site.end)
            site.lines = (number + 1, last + 1)
            site.text = re.sub(r"\s+", " ", lines[number].strip())
            alike = (site.kind, site.what, site.text)
            site.ordinal = seen[alike] = seen.get(alike, 0) + 1


def find(file, text):
    return Finder(file, text).sites


def nested(sites):
    """The sites without those that cross a former one or touch what it replaces."""
    kept, spans, taken = [], [], []
    for site in sites:
        own = [(w[0], w[1]) for w in site.wraps] + [(s[0], s[1]) for s in site.swaps]
        # Operators that are replaced stand between operands: nothing else reaches into them.
        crosses = any(a < c < b < d or c < a < d < b for a, b in own for c, d in spans)
        inside = any(a < d and c < b for a, b, _ in site.swaps for c, d in taken)
        if site.kind == "swapped":
            inside = inside or any(a <= c and d <= b for a, b in own for c, d in spans)
        inside = inside or any(kind == "swapped" and c <= a and b <= d
                               for a, b in own for c, d, kind in
                               [(s[0], s[1], k.kind) for k in kept for s in k.swaps])
        if not crosses and not inside:
            kept.append(site)
            spans += own
            taken += [(s[0], s[1]) for s in site.swaps]
    return kept


def rewrite(text, numbered):
    """The text with the faults of `numbered`, {number: site}, behind their switches."""
    opens, closes, swaps = {}, {}, {}
    order = 0
    # The operator that an edge replaces stands between nothing but its own operands, so of wraps of
    # the same extent it is the innermost.
    for number, site in sorted(numbered.items(), key=lambda item: (item[1].kind == "edge", item[0])):
        for start, end, before, after in site.wraps:
            opens.setdefault(start, []).append((-end, order, before.replace("@", str(number))))
            closes.setdefault(end, []).append((-start, -order, after.replace("@", str(number))))
            order += 1
        for start, end, new in site.swaps:
            swaps[start] = (end, new.replace("@", str(number)))
    out, at = [], 0
    marks = sorted(set(opens) | set(closes) | set(swaps) | {len(text)})
    for mark in marks:
        if mark > at:
            out.append(text[at:mark])
            at = mark
        out += [piece for _, _, piece in sorted(closes.get(mark, []))]
        out += [piece for _, _, piece in sorted(opens.get(mark, []))]
        if mark in swaps:
            at, new = swaps[mark]
            out.append(new + "\n" * text.count("\n", mark, at))
    return '#include "Mutants.h"\n#line 1\n' + "".join(out)
