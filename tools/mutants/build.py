"""Chooses the faults and builds a copy of the tree that holds them all, each behind its switch."""
import os
import re
import shutil
import subprocess
from pathlib import Path

import sites as finding

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutants"
TREE = WORK / "tree"
BUILD = WORK / "build"
FAULTS = WORK / "faults.tsv"

FOLDERS = ("platform", "core", "model", "events", "bus", "screens", "config_screens", "technician")
PROGRAMS = FOLDERS + ("simulator", "data", "fuzz", "system")
# How often each kind is drawn, where there are enough of it.
WEIGHTS = {"turned": 20, "edge": 14, "off by one": 16, "dropped call": 26, "swapped": 8,
           "flipped": 8, "and/or": 8}
LEAST = 60
# A fault in these ends strange processes of the machine or sets its clock.
UNSAFE = ("src/platform/Processes.cpp", "src/platform/SystemClock.cpp")
# So many more are built than run, for those that don't compile.
SPARE = 1.3


def sources(folder):
    return sorted((ROOT / "src" / folder).rglob("*.cpp"))


def all_sites(folder):
    found = []
    for path in sources(folder):
        file = path.relative_to(ROOT).as_posix()
        if file in UNSAFE:
            continue
        found += finding.nested(finding.find(file, path.read_text(encoding="utf-8")))
    return found


def quotas(total):
    lines = {f: sum(p.read_text(encoding="utf-8").count("\n") for p in sources(f)) for f in FOLDERS}
    return {f: max(LEAST, round(total * lines[f] / sum(lines.values()))) for f in FOLDERS}


def choose(folder, count, seed):
    """`count` faults of the folder in a drawn order that depends on the seed and on the faults
    alone: what changes in one place of the sources leaves the choice of the others."""
    kinds = {kind: [] for kind in finding.KINDS}
    for site in all_sites(folder):
        kinds[site.kind].append(site)
    for found in kinds.values():
        found.sort(key=lambda s: s.rank(seed))
    chosen, drawn = [], {kind: 0 for kind in kinds}
    while len(chosen) < count and any(kinds.values()):
        kind = min((k for k in kinds if kinds[k]), key=lambda k: (drawn[k] + 1) / WEIGHTS[k])
        drawn[kind] += 1
        chosen.append(kinds[kind].pop(0))
    return chosen


def chosen_like(table):
    """The faults of a former table that are in today's sources."""
    known = {site.key: site for folder in FOLDERS for site in all_sites(folder)}
    rows = read_rows(table)
    return [known[key_of(row)] for row in rows if key_of(row) in known], len(rows)


COLUMNS = ("number", "file", "line", "kind", "what", "text", "ordinal")


def key_of(row):
    return "\t".join(row[c] for c in ("file", "kind", "what", "text", "ordinal"))


def read_rows(path):
    with open(path, encoding="utf-8") as table:
        heads = table.readline().rstrip("\n").split("\t")
        return [dict(zip(heads, line.rstrip("\n").split("\t"))) for line in table]


def write_faults(faults):
    with open(FAULTS, "w", encoding="utf-8") as table:
        table.write("\t".join(COLUMNS) + "\n")
        for number, site in sorted(faults.items()):
            values = (number, site.file, site.lines[0], site.kind, site.what, site.text, site.ordinal)
            table.write("\t".join(str(v) for v in values) + "\n")


def write_if_changed(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.write_text(text, encoding="utf-8")


def copy_tree():
    """What git knows, so that nothing else of the folder gets in; files that stay the same keep
    their times."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                            check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
    names = {name for name in listed if name and (ROOT / name).exists()}
    for name in names:
        source, target = ROOT / name, TREE / name
        if name.startswith("src/") and name.endswith(".cpp") or name == "tests/CMakeLists.txt":
            continue  # written by what follows
        if not target.exists() or source.read_bytes() != target.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    for old in TREE.rglob("*"):
        if old.is_file() and old.relative_to(TREE).as_posix() not in names:
            old.unlink()
    tests = (ROOT / "tests" / "CMakeLists.txt").read_text(encoding="utf-8")
    write_if_changed(TREE / "tests" / "CMakeLists.txt", tests +
                     "target_sources(test_main INTERFACE ${CMAKE_SOURCE_DIR}/tools/mutants/Listener.cpp)\n")


def write_sources(faults):
    by_file = {}
    for number, site in faults.items():
        by_file.setdefault(site.file, {})[number] = site
    for path in (ROOT / "src").rglob("*.cpp"):
        file = path.relative_to(ROOT).as_posix()
        text = path.read_text(encoding="utf-8")
        if file in by_file:
            text = finding.rewrite(text, by_file[file])
        write_if_changed(TREE / file, text)


def configure():
    subprocess.run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                    "-DKORVANELLE_BENCHMARKS=OFF", "-DKORVANELLE_UNITY=OFF", "-DCMAKE_AUTOGEN_ORIGIN_DEPENDS=OFF",
                    f"-DCMAKE_CXX_FLAGS=-O0 -w -I{TREE}/tools/mutants"], check=True, stdout=subprocess.DEVNULL)


def compile_targets(targets, jobs):
    result = subprocess.run(["nice", "cmake", "--build", BUILD, "-j", str(jobs), "--target", *targets, "--", "-k0"],
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    (WORK / "compile.log").write_text(result.stdout, encoding="utf-8")
    return result.returncode == 0, result.stdout


def to_drop(log, faults):
    """The faults on the lines that the compiler names with its errors; all of a file that fails
    without naming such a line."""
    named, failed = set(), set()
    for match in re.finditer(r"^FAILED: (\S+)", log, re.M):
        failed.add(re.sub(r"CMakeFiles/\w+\.dir/", "", match.group(1)).removesuffix(".o"))
    for match in re.finditer(r"^(?:In file included from )?(\S+?):(\d+):\d+:\s+(?:error|required from)", log, re.M):
        named.add((os.path.relpath(BUILD / match.group(1), TREE), int(match.group(2))))
    dropped = set()
    for number, site in faults.items():
        if any((site.file, line) in named for line in range(site.lines[0], site.lines[1] + 1)):
            dropped.add(number)
    unnamed = failed - {faults[number].file for number in dropped}
    return dropped | {number for number, site in faults.items() if site.file in unnamed}


def build(total, seed, like, jobs):
    if like:
        listed, former = chosen_like(like)
        print(f"{len(listed)} of {former} former faults are in today's sources")
    else:
        listed = []
        for folder, quota in quotas(total).items():
            listed += choose(folder, round(quota * SPARE), seed)
    faults = dict(enumerate(listed))
    copy_tree()
    write_sources(faults)
    configure()
    for stale in (WORK / "cover.json", WORK / "matrix.tsv"):
        stale.unlink(missing_ok=True)
    for _ in range(40):
        done, log = compile_targets(FOLDERS, jobs)
        if done:
            break
        dropped = to_drop(log, faults)
        if not dropped:
            raise SystemExit(f"What doesn't compile is not a fault's: see {WORK / 'compile.log'}")
        print(f"{len(dropped)} faults don't compile", flush=True)
        print(*(f"  {faults[n].file}:{faults[n].lines[0]} {faults[n].kind}: {faults[n].what}" for n in sorted(dropped)),
              sep="\n", flush=True)
        for number in dropped:
            del faults[number]
        write_sources(faults)
    if not like:
        keep, left = {}, quotas(total)
        for number, site in faults.items():
            folder = site.file.split("/")[1]
            if left[folder] > 0:
                left[folder] -= 1
                keep[number] = site
        faults = keep  # the spare ones stay compiled and are never switched on
    write_faults(faults)
    done, _ = compile_targets([f"test_{p}" for p in PROGRAMS] + ["korvanelle_base"], jobs)
    if not done:
        raise SystemExit(f"The tests don't compile: see {WORK / 'compile.log'}")
    print(f"{len(faults)} faults are built in")
