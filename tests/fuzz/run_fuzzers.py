#!/usr/bin/env python3
"""Runs the fuzzers of a build, each for a time, and prints a table. Ends with 1 when one has found something.

Usage: run_fuzzers.py BUILD [--seconds N] [TARGET ...]

BUILD is the folder of the preset fuzz. What the fuzzers learn stays in BUILD/fuzz/corpus, so that the next run goes on
from there; inputs that break something are kept in BUILD/fuzz/found.
"""

import argparse
import concurrent.futures
import os
import re
import subprocess
import sys
from pathlib import Path

SEEDS = Path(__file__).resolve().parent / "corpus"
# An input may take so many seconds, all memory so many MB, a single allocation so many MB.
LIMITS = ["-timeout=20", "-rss_limit_mb=2048", "-malloc_limit_mb=128", "-max_len=8192"]
FACTS = {"runs": r"stat::number_of_executed_units: +(\d+)", "per s": r"stat::average_exec_per_sec: +(\d+)",
         "peak MB": r"stat::peak_rss_mb: +(\d+)"}


def run(build, target, seconds):
    """The row of the table, and the inputs that were found."""
    work, found = build / "fuzz/corpus" / target, build / "fuzz/found"
    work.mkdir(parents=True, exist_ok=True)
    found.mkdir(parents=True, exist_ok=True)
    log = build / "fuzz" / f"{target}.log"
    dictionary = SEEDS.parent / "dictionaries" / target
    command = [build / "tests/fuzz" / f"fuzz_{target}", f"-max_total_time={seconds}", *LIMITS, "-print_final_stats=1",
               f"-artifact_prefix={found / target}-", *([f"-dict={dictionary}"] if dictionary.exists() else []),
               work, SEEDS / target]
    with open(log, "w", encoding="utf-8") as output:
        try:
            code = subprocess.run(command, stdout=output, stderr=output, check=False, timeout=2 * seconds + 300).returncode
        except subprocess.TimeoutExpired:
            code = "it did not end"
    text = log.read_text(encoding="utf-8", errors="replace")
    row = {"target": target, "seeds": str(len(list((SEEDS / target).iterdir())))}
    for name, pattern in FACTS.items():
        row[name] = (re.findall(pattern, text) or ["-"])[-1]
    row["edges"] = (re.findall(r" cov: (\d+)", text) or ["-"])[-1]
    row["result"] = "ok" if code == 0 else f"FOUND, see {log}"
    return row, re.findall(r"Test unit written to (\S+)", text)


def print_table(rows):
    widths = {key: max(len(key), *(len(row[key]) for row in rows)) for key in rows[0]}
    for row in [{key: key for key in widths}, *rows]:
        print("  ".join(row[key].ljust(width) for key, width in widths.items()).rstrip())


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("targets", nargs="*", default=sorted(folder.name for folder in SEEDS.iterdir()))
    options = parser.parse_intermixed_args()

    rows, inputs = [], []
    workers = len(os.sched_getaffinity(0))
    print(f"{len(options.targets)} fuzzers, {options.seconds} s each, {workers} at a time", flush=True)
    with concurrent.futures.ThreadPoolExecutor(workers) as pool:
        jobs = [pool.submit(run, options.build.resolve(), target, options.seconds) for target in options.targets]
        for job in concurrent.futures.as_completed(jobs):
            row, found = job.result()
            print(f"  {row['target']}: {row['runs']} runs, {row['result']}", flush=True)
            rows.append(row)
            inputs += found
    print_table(sorted(rows, key=lambda row: row["target"]))
    for path in inputs:
        print(f"found: {path}\n  again: {options.build}/tests/fuzz/fuzz_{Path(path).name.split('-')[0]} {path}\n"
              f"  when mended: put it into {SEEDS}/{Path(path).name.split('-')[0]}/ under a name that says what it is")
    return int(any(row["result"] != "ok" for row in rows))


if __name__ == "__main__":
    sys.exit(main())
