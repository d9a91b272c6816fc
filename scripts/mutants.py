#!/usr/bin/env python3
"""Mutation check of the plugin's code: how many small faults does the test suite catch?

A maintainer's tool, not run by CI. Each mutant is one small change to one plugin source (a
comparison turned, `&&` for `||`, a constant off by one, `true` for `false`). The mutants are
listed in scripts/mutants.list, one per line: FILE <TAB> TEXT <TAB> REPLACEMENT [<TAB> NOTE],
where TEXT occurs exactly once in FILE. The list is fixed so that two runs (before and after a
change to the tests) judge the same faults; `generate` writes a fresh one.

  scripts/mutants.py generate [--count N] [--seed S] > scripts/mutants.list
  scripts/mutants.py run [--list FILE] [--build DIR] [--only N,M,...]

`run` configures DIR (default build-mutants), then for each mutant: applies it, rebuilds, runs
ctest (stopping at the first failure), and restores the file. A mutant that does not build is
left out of the count; one whose suite fails or times out is caught. The sources are restored
even when the run is interrupted.
"""
import argparse
import os
import random
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PLUGIN_FOLDERS = ["base", "config", "backend", "frontend", "cache", "core", "services"]

# (pattern, replacement) pairs tried on a line, outside string and character literals.
OPERATORS = [
    (r"==", "!="), (r"!=", "=="),
    (r" <= ", " < "), (r" >= ", " > "), (r" < ", " <= "), (r" > ", " >= "),
    (r"&&", "||"), (r"\|\|", "&&"),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
]
SKIP = re.compile(r'^\s*(#|//|\*|/\*)|"|\'|template|static_assert|operator|\(\*\w+\)|^\s*case ')


def plugin_sources():
    out = subprocess.run(["git", "-C", ROOT, "ls-files", *PLUGIN_FOLDERS], check=True,
                         capture_output=True, text=True).stdout.split()
    return [f for f in out if f.endswith(".cpp")]


def candidates(path):
    text = open(os.path.join(ROOT, path)).read()
    lines = text.splitlines()
    for line in lines:
        stripped = line.strip()
        code = stripped.split("//")[0].rstrip()  # a trailing comment is not mutated
        if not code or SKIP.search(line) or text.count(stripped) != 1:
            continue
        for pattern, repl in OPERATORS:
            m = re.search(pattern, code)
            if m:
                yield stripped, stripped[:m.start()] + repl + stripped[m.end():]
        m = re.search(r"(?<![\w.\[])([1-9]\d*)(?![\w.\]])", code)
        if m:
            n = int(m.group(1))
            yield stripped, stripped[:m.start()] + str(n + 1) + stripped[m.end():]


def generate(args):
    rng = random.Random(args.seed)
    pool = [(f, a, b) for f in plugin_sources() for a, b in candidates(f)]
    rng.shuffle(pool)
    chosen, used_lines = [], set()
    for f, a, b in pool:  # at most one mutant per line
        if (f, a) not in used_lines:
            used_lines.add((f, a))
            chosen.append((f, a, b))
        if len(chosen) == args.count:
            break
    for f, a, b in sorted(chosen):
        print(f"{f}\t{a}\t{b}")


def load(list_path):
    mutants = []
    for lineno, line in enumerate(open(list_path), 1):
        if not line.strip() or line.startswith("#"):
            continue
        parts = line.rstrip("\n").split("\t")
        if len(parts) < 3:
            sys.exit(f"{list_path}:{lineno}: want FILE<TAB>TEXT<TAB>REPLACEMENT")
        mutants.append((lineno, *parts[:3], parts[3] if len(parts) > 3 else ""))
    return mutants


def sh(cmd, timeout=None):
    try:
        return subprocess.run(cmd, cwd=ROOT, capture_output=True, text=True, timeout=timeout).returncode
    except subprocess.TimeoutExpired:
        return "timeout"


def run(args):
    build = args.build
    if sh(["cmake", "-S", ".", "-B", build, "-DCMAKE_BUILD_TYPE=RelWithDebInfo"]) != 0 or \
       sh(["cmake", "--build", build, f"-j{args.jobs}"]) != 0:
        sys.exit("mutants: the unmutated tree does not build")
    if sh(["ctest", "--test-dir", build, f"-j{args.jobs}", "--timeout", "300"]) != 0:
        sys.exit("mutants: the unmutated suite fails; fix it first")
    only = {int(x) for x in args.only.split(",")} if args.only else None
    built = caught = 0
    missed, stale = [], []
    for lineno, path, text, repl, note in load(args.list):
        if only and lineno not in only:
            continue
        full = os.path.join(ROOT, path)
        original = open(full).read() if os.path.exists(full) else ""
        if original.count(text) != 1:
            stale.append(lineno)
            print(f"{lineno:4} stale    {path}: text not found once", flush=True)
            continue
        try:
            open(full, "w").write(original.replace(text, repl))
            if sh(["cmake", "--build", build, f"-j{args.jobs}"]) != 0:
                print(f"{lineno:4} no-build {path}: {repl}", flush=True)
                continue
            built += 1
            rc = sh(["ctest", "--test-dir", build, f"-j{args.jobs}", "--stop-on-failure",
                     "--timeout", "120"], timeout=1800)
            if rc != 0:
                caught += 1
                print(f"{lineno:4} caught   {path}: {repl}", flush=True)
            else:
                missed.append(lineno)
                print(f"{lineno:4} MISSED   {path}: {text}  ->  {repl}  {note}", flush=True)
        finally:
            open(full, "w").write(original)
    sh(["cmake", "--build", build, f"-j{args.jobs}"])  # leave the build matching the sources
    print(f"mutants: {caught} of {built} that built were caught"
          f" ({100.0 * caught / built if built else 0:.0f} %); missed: lines {missed or 'none'}"
          + (f"; stale: lines {stale}" if stale else ""))


def main():
    p = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    sub = p.add_subparsers(dest="cmd", required=True)
    g = sub.add_parser("generate")
    g.add_argument("--count", type=int, default=60)
    g.add_argument("--seed", type=int, default=17)
    r = sub.add_parser("run")
    r.add_argument("--list", default=os.path.join(ROOT, "scripts", "mutants.list"))
    r.add_argument("--build", default="build-mutants")
    r.add_argument("--jobs", type=int, default=os.cpu_count() or 2)
    r.add_argument("--only", default="")
    args = p.parse_args()
    generate(args) if args.cmd == "generate" else run(args)


if __name__ == "__main__":
    main()
