#!/usr/bin/env python3
"""Small faults in src/ and the tests that see them: see docs/tests.md."""
import argparse

import build
import report
import run


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("step", choices=("build", "run", "report", "compare"))
    parser.add_argument("--faults", type=int, default=1200, help="how many, over all folders")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--like", help="build: take the faults of this table; compare: compare with it")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--minutes", type=float, help="run: stop then; the next run goes on from there")
    parser.add_argument("--system", action="store_true", help="run: the tests of the whole program as well")
    options = parser.parse_args()
    if options.step == "build":
        build.build(options.faults, options.seed, options.like, options.jobs)
    elif options.step == "run":
        run.run(options.jobs, options.minutes, options.system)
    elif options.step == "report":
        report.report(build.WORK / "unseen.txt", build.WORK / "redundant.txt")
    elif options.like:
        report.compare(options.like)
    else:
        parser.error("compare needs --like")


main()
