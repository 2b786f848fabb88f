"""What the table of a run says: the share of faults seen, those that nothing sees, and the tests
that can go without losing one."""
import json
import re
from collections import Counter

from build import FAULTS, FOLDERS, ROOT, key_of, read_rows
from run import COVER, MATRIX


def test_lines():
    """{program: {test: (file, lines)}} of the sources: from the macro to the closing brace."""
    found = {}
    for path in sorted((ROOT / "tests").rglob("*.cpp")):
        program = path.parent.relative_to(ROOT / "tests").parts[0]
        text = path.read_text(encoding="utf-8")
        for match in re.finditer(r"^(TEST|TEST_F|TEST_P)\(\s*(\w+),\s*(\w+)\) \{.*?^\}", text, re.M | re.S):
            found.setdefault(program, {})[f"{match.group(2)}.{match.group(3)}"] = (
                path.relative_to(ROOT).as_posix(), match.group(0).count("\n") + 1)
    return found


def source_name(test):
    """Without what a parameterised test's instance adds: "All/Suite.Name/3" is "Suite.Name"."""
    suite, name = test.split(".", 1)
    return suite.split("/")[1 if suite.count("/") else 0] + "." + name.split("/")[0]


def seen_of(rows):
    """{fault: its tests, named as in the sources}."""
    result = {}
    for row in rows:
        tests = set()
        for entry in row["seen"].split():
            program, test = entry.split(":", 1)
            tests.add((program, source_name(test)))
        result[int(row["number"])] = tests
    return result


def cover_set(seen, lines):
    """Tests that together see all faults: those that alone see one, then whatever sees most new
    faults for its lines; at last those that the others make needless are taken out again."""
    by_test = {}
    for number, tests in seen.items():
        for test in tests:
            by_test.setdefault(test, set()).add(number)
    left = {n for n, tests in seen.items() if tests}
    kept = {next(iter(tests)) for tests in seen.values() if len(tests) == 1}
    for test in kept:
        left -= by_test[test]
    while left:
        best = max(by_test, key=lambda t: (len(by_test[t] & left) / lines(t) ** 0.5, t))
        kept.add(best)
        left -= by_test[best]
    times = Counter(n for test in kept for n in by_test[test])
    for test in sorted(kept, key=lambda t: (-lines(t), t)):
        if all(times[n] > 1 for n in by_test[test]):
            kept.remove(test)
            times.subtract(by_test[test])
    return kept, by_test


def lost_of_others(seen, lines):
    """Tests kept for one half of the faults, and what they lose of the other half, in percent: how
    far the list of tests can be trusted for faults that were not drawn."""
    halves = [{n: t for n, t in seen.items() if t and n % 2 == half} for half in (0, 1)]
    lost = 0
    for chosen, other in (halves, halves[::-1]):
        kept, _ = cover_set(chosen, lines)
        lost += sum(not tests & kept for tests in other.values())
    return 100 * lost / max(1, sum(map(len, halves)))


def shares(rows, seen):
    lines = []
    for folder in FOLDERS + ("all",):
        own = [r for r in rows if folder in ("all", r["file"].split("/")[1])]
        hit = sum(bool(seen[int(r["number"])]) for r in own)
        bare = sum(r["reached"] == "0" for r in own)
        if own:
            lines.append((folder, len(own), hit, 100 * hit / len(own), bare))
    return lines


def report(unseen_path, redundant_path):
    rows = read_rows(MATRIX)
    seen = seen_of(rows)
    print("| Folder | Faults | Seen | Share | Reached by no test |\n|---|---|---|---|---|")
    for folder, count, hit, share, bare in shares(rows, seen):
        print(f"| {folder} | {count} | {hit} | {share:.0f} % | {bare} |")
    kinds = Counter(r["kind"] for r in rows)
    hits = Counter(r["kind"] for r in rows if seen[int(r["number"])])
    print("\n| Kind | Faults | Seen | Share |\n|---|---|---|---|")
    for kind, count in kinds.most_common():
        print(f"| {kind} | {count} | {hits[kind]} | {100 * hits[kind] / count:.0f} % |")

    with open(unseen_path, "w", encoding="utf-8") as out:
        for row in sorted(rows, key=lambda r: (r["file"], int(r["line"]))):
            if not seen[int(row["number"])]:
                reach = "reached by no test" if row["reached"] == "0" else f"reached by {row['reached']}"
                out.write(f"{row['file']}:{row['line']}\t{row['kind']}: {row['what']}\t{reach}\t{row['text']}\n")

    sources = test_lines()

    def size(test):
        return sources.get(test[0], {}).get(test[1], ("", 10))[1]

    kept, by_test = cover_set(seen, size)
    alone = Counter(next(iter(tests)) for tests in seen.values() if len(tests) == 1)
    covered = json.loads(COVER.read_text(encoding="utf-8"))
    ms, skipped = Counter(), set()
    for entry in covered:
        test = (entry["program"], source_name(entry["test"]))
        ms[test] += entry["ms"]
        if not entry["passed"]:
            skipped.add(test)
    files = {}
    for program in FOLDERS:
        for name, (file, count) in sources.get(program, {}).items():
            if (program, name) in ms:
                files.setdefault(file, []).append(((program, name), count))
    can_go = 0
    with open(redundant_path, "w", encoding="utf-8") as out:
        out.write("# Of each test: can it go without losing a fault (go/keep), lines, faults seen, faults that only it\n"
                  "# sees, ms. All marked go may go together. Tests of what isn't in src/ (simulator, data, fuzz) are\n"
                  "# not listed: the faults don't ask them. See docs/tests.md on how far the list holds.\n")
        planned = Counter(r["file"].split("/")[1] for r in read_rows(FAULTS))
        ran = Counter(r["file"].split("/")[1] for r in rows)
        for folder in FOLDERS:
            out.write(f"# {folder}: {ran[folder]} of {planned[folder]} faults run\n")
        for file, tests in sorted(files.items()):
            gone = sum(count for test, count in tests if test not in kept and test not in skipped)
            can_go += gone
            out.write(f"\n{file}: {gone} of {sum(c for _, c in tests)} lines of tests can go\n")
            for test, count in sorted(tests, key=lambda t: (t[0] in kept, -t[1])):
                word = "fails" if test in skipped else "keep" if test in kept else "go"
                out.write(f"  {word}\t{count}\t{len(by_test.get(test, ()))}\t{alone[test]}\t{ms[test]}\t{test[1]}\n")
    total = sum(count for tests in files.values() for _, count in tests)
    print(f"\n{can_go} of {total} lines of tests can go without losing a fault; {len(rows)} faults run.\n"
          f"Chosen on half of the faults, the tests kept lose {lost_of_others(seen, size):.0f} % of the other half.")


def compare(former):
    """What a former table's faults do in this one."""
    before, now = read_rows(former), read_rows(MATRIX)
    was = {key_of(r): bool(r["seen"]) for r in before}
    same = [r for r in now if key_of(r) in was]
    print(f"{len(same)} of {len(was)} former faults are in this table: "
          f"{sum(was[key_of(r)] for r in same)} seen before, {sum(bool(r['seen']) for r in same)} now")
    for row in same:
        if was[key_of(row)] != bool(row["seen"]):
            print(f"{'lost' if was[key_of(row)] else 'won'}\t{row['file']}:{row['line']}\t{row['kind']}: {row['what']}"
                  f"\t{row['text']}")
