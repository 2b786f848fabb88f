"""Runs the tests that reach each fault with the fault switched on, and notes which fail."""
import itertools
import json
import os
import resource
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from concurrent.futures import ThreadPoolExecutor

from build import BUILD, COLUMNS, FAULTS, PROGRAMS, WORK, read_rows

COVER = WORK / "cover.json"
MATRIX = WORK / "matrix.tsv"
# So many s of tests are run for a fault in one program at a time: those first that reach the
# fewest faults, and no more once one has seen it.
CHUNK = 4.0
# Portions of the program of its own folder, and of each other one, that a fault is tried on.
OWN_PORTIONS, OTHER_PORTIONS = 5, 1
# More than so many tests that end by a time-out or a crash tell nothing new.
MOST_STOPS = 4
MEMORY = 6 << 30


def programs(with_system):
    return [p for p in PROGRAMS if with_system or p != "system"]


def environment(**more):
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8")
    env.update({name: str(value) for name, value in more.items()})
    return env


class Log:
    """What the listener wrote: [(test, passed, ms, reached)], what started last without an end,
    and what was reached before the first test."""

    def __init__(self, path):
        self.ended, self.open, self.before = [], None, set()
        reached, first = set(), True
        lines = open(path, encoding="utf-8").read().split("\n") if os.path.exists(path) else []
        for line in lines:
            word, *rest = line.split("\t")
            if word == "between":
                self.before |= {int(n) for n in rest}
            elif word == "start" and rest:
                self.open = rest[0]
            elif word == "reached":
                reached = {int(n) for n in rest}
            elif word == "end" and len(rest) == 3:
                self.ended.append((rest[0], rest[1] == "passed", int(rest[2]), reached))
                self.open = None


def run_program(program, tests, limit, active=-1):
    """One process for these tests: its log and whether it ended by itself."""
    folder = tempfile.mkdtemp(prefix="mutant")
    log = os.path.join(folder, "log")
    env = environment(MUTANTS_LOG=log, MUTANTS_LIMIT=limit, MUTANTS_ACTIVE=active, TMPDIR=folder)
    command = ["nice", str(BUILD / "tests" / f"test_{program}"), "--gtest_filter=" + ":".join(tests)]
    process = subprocess.Popen(command, env=env, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                               preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY)))
    try:
        code = process.wait(timeout=limit * (len(tests) + 1) if len(tests) < 3 else limit * 3)
    except subprocess.TimeoutExpired:
        code = -9
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
    result = Log(log)
    shutil.rmtree(folder, ignore_errors=True)
    return result, code in (0, 1)


def list_tests(program):
    listed = subprocess.run([str(BUILD / "tests" / f"test_{program}"), "--gtest_list_tests"], env=environment(),
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=True).stdout
    suite, names = "", []
    for line in listed.split("\n"):
        name = line.split("#")[0].rstrip()
        if not name.startswith(" ") and name.endswith("."):
            suite = name.strip()
        elif name.startswith("  ") and "DISABLED_" not in suite + name:
            names.append(suite + name.strip())
    return names


def cover(jobs, with_system):
    """Each test in a process of its own, as ctest runs them: what it reaches and how long it takes.
    One that fails without a fault is left out. Programs that were covered before aren't again."""
    found = json.loads(COVER.read_text(encoding="utf-8")) if COVER.exists() else []
    known = {entry["program"] for entry in found}

    def one(entry):
        program, test = entry
        log, clean = run_program(program, [test], 120)
        passed = clean and bool(log.ended) and log.ended[0][1]
        reached = (log.ended[0][3] | log.before) if log.ended else set()
        if not passed:
            print(f"fails without a fault, left out: {program} {test}", flush=True)
        return {"program": program, "test": test, "passed": passed,
                "ms": log.ended[0][2] if log.ended else 0, "reached": sorted(reached)}

    for program in programs(with_system):
        if program not in known:
            with ThreadPoolExecutor(jobs) as pool:
                found += pool.map(one, [(program, test) for test in list_tests(program)])
            COVER.write_text(json.dumps(found), encoding="utf-8")
    return found


def chunks(tests, specificity, ms):
    """The tests in portions of CHUNK seconds, the most special first."""
    portion, took = [], 0.0
    for test in sorted(tests, key=lambda t: (specificity[t], t)):
        if portion and took + ms[test] / 1000 > CHUNK:
            yield portion
            portion, took = [], 0.0
        portion.append(test)
        took += ms[test] / 1000
    if portion:
        yield portion


def seen_by(program, tests, active, ms):
    """Which of the tests fail with the fault; a crash or a time-out is a failure, and the rest is
    run again without that test."""
    seen, left, stops = set(), list(tests), 0
    limit = 5 + 5 * max(ms[t] for t in tests) // 1000
    while left and stops < MOST_STOPS:
        log, clean = run_program(program, left, limit, active)
        seen |= {test for test, passed, _, _ in log.ended if not passed}
        done = {test for test, _, _, _ in log.ended}
        left = [t for t in left if t not in done]
        if log.open is not None:
            seen.add(log.open)
            left = [t for t in left if t != log.open]
        elif not clean and not log.ended:
            # It doesn't come as far as a test.
            seen |= set(left)
            break
        elif not clean and log.ended:
            seen.add(log.ended[-1][0])
        elif left:
            break
        stops += not clean
    return seen


class Runner:
    def __init__(self, covered, with_system):
        self.with_system = with_system
        self.ms, self.specificity, self.reaching = {}, {}, {}
        for entry in covered:
            if not entry["passed"]:
                continue
            name = (entry["program"], entry["test"])
            self.ms.setdefault(entry["program"], {})[entry["test"]] = entry["ms"]
            self.specificity[name] = len(entry["reached"])
            for number in entry["reached"]:
                self.reaching.setdefault(number, {}).setdefault(entry["program"], []).append(entry["test"])

    def portions(self, row):
        """What to run for a fault: own folder's program first, the others only for what it doesn't
        see."""
        number, own = int(row["number"]), row["file"].split("/")[1]
        for program in sorted(programs(self.with_system), key=lambda p: p != own):
            tests = self.reaching.get(number, {}).get(program, [])
            special = {t: self.specificity[program, t] for t in tests}
            most = OWN_PORTIONS if program == own else OTHER_PORTIONS
            for portion in itertools.islice(chunks(tests, special, self.ms.get(program, {})), most):
                yield program, portion

    def run(self, row, portions):
        """Until a portion has a test that sees it: (tests that do, tests run)."""
        seen, ran = set(), 0
        for program, portion in portions:
            found = seen_by(program, portion, int(row["number"]), self.ms[program])
            seen |= {f"{program}:{t}" for t in found}
            ran += len(portion)
            if seen:
                break
        return seen, ran


def order(rows):
    """A folder's turn after the other's, so that a run that is cut short tells of all."""
    by_folder = {}
    for row in rows:
        by_folder.setdefault(row["file"].split("/")[1], []).append(row)
    parts = [(i / len(own), row) for own in by_folder.values() for i, row in enumerate(own)]
    return [row for _, row in sorted(parts, key=lambda part: part[0])]


def run(jobs, minutes, with_system):
    runner = Runner(cover(jobs, with_system), with_system)
    rows = read_rows(FAULTS)
    done = {row["number"] for row in read_rows(MATRIX)} if MATRIX.exists() else set()
    end = time.monotonic() + minutes * 60 if minutes else None
    lock = threading.Lock()
    with open(MATRIX, "a", encoding="utf-8") as matrix, ThreadPoolExecutor(jobs) as pool:
        if not done:
            matrix.write("\t".join(COLUMNS + ("reached", "ran", "seen")) + "\n")

        def late():
            return end and time.monotonic() > end

        def write(row, seen, ran):
            reached = sum(len(t) for t in runner.reaching.get(int(row["number"]), {}).values())
            values = [row[c] for c in COLUMNS] + [str(reached), str(ran), " ".join(sorted(seen))]
            with lock:
                matrix.write("\t".join(values) + "\n")
                matrix.flush()

        def quick(row):
            if row["number"] in done or late():
                return None
            portions = list(runner.portions(row))
            seen, ran = runner.run(row, portions[:1])
            if seen or len(portions) < 2:
                write(row, seen, ran)
                return None
            return row, portions[1:], ran

        def slow(entry):
            row, portions, before = entry
            if not late():
                seen, ran = runner.run(row, portions)
                write(row, seen, before + ran)

        # What the first portion sees is most of it: those that need more wait for the end.
        hard = [entry for entry in pool.map(quick, order(rows)) if entry]
        print(f"{len(hard)} faults need more than the most special tests", flush=True)
        hard.sort(key=lambda entry: len(entry[1]))
        list(pool.map(slow, hard))
