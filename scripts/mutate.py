#!/usr/bin/env python3
"""Fault injection: applies one-line faults to the library, rebuilds the test
programs, runs ctest and records which faults some test catches.

    scripts/mutate.py SOURCE_DIR BUILD_DIR [MUTANT_LIST] [ID ...]

MUTANT_LIST (default scripts/mutants.txt) has one fault a line:
    id, path, line, old, new (tab-separated)
`old` must occur on that line of `path`; its first occurrence becomes `new`.
The build directory must be configured already; the source is restored after
each fault. Results go to BUILD_DIR/mutants.tsv and stdout.
"""
import os, signal, subprocess, sys, time

# A stopped run still restores the source (the finally clause below).
signal.signal(signal.SIGTERM, lambda *_: sys.exit("stopped"))

src, build_dir = sys.argv[1], sys.argv[2]
listing = sys.argv[3] if len(sys.argv) > 3 else os.path.join(os.path.dirname(__file__), "mutants.txt")
only = set(sys.argv[4:])
targets = ["kelfont_base_tests", "kelfont_common_tests", "kelfont_native_tests", "kelfont_api_tests",
           "kelfont_tools_tests", "kelfont_host_program"]
# The install, Java and benchmark tests only check linking, loading and running.
exclude = "kelfont_install|JavaBindings|kelfont_bench_smoke"

def run(cmd, timeout=None):
    return subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=timeout)

def build():
    return run(["cmake", "--build", build_dir, "-j2", "--target"] + targets).returncode == 0

mutants = []
for raw in open(listing, encoding="utf-8"):
    if not raw.strip() or raw.startswith("#"):
        continue
    ident, path, line, old, new = [f.strip() for f in raw.rstrip("\n").split("\t", 4)]
    if not only or ident in only:
        mutants.append((ident, path, int(line), old, new))

def ctest():
    r = run(["ctest", "--test-dir", build_dir, "-j2", "--timeout", "120", "-E", exclude], timeout=1800)
    failed = " ".join(l.split(" - ")[1].split()[0] for l in r.stdout.splitlines() if " - " in l and "(" in l)
    return r.returncode == 0, failed

if not build():
    sys.exit("the unmutated build fails")
passed, failed = ctest()
if not passed:
    sys.exit("the unmutated tests fail: " + failed)
out = open(os.path.join(build_dir, "mutants.tsv"), "w")
caught = 0
for ident, path, line, old, new in mutants:
    full = os.path.join(src, path)
    text = open(full, encoding="utf-8").read()
    lines = text.split("\n")
    if old not in lines[line - 1]:
        print(f"{ident}\tBAD ANCHOR {path}:{line}", flush=True)
        continue
    lines[line - 1] = lines[line - 1].replace(old, new, 1)
    start = time.time()
    try:
        open(full, "w", encoding="utf-8").write("\n".join(lines))
        if not build():
            verdict, failed = "nobuild", ""
        else:
            try:
                passed, failed = ctest()
                verdict = "MISSED" if passed else "caught"
            except subprocess.TimeoutExpired:
                verdict, failed = "caught", "timeout"
    finally:
        open(full, "w", encoding="utf-8").write(text)
    caught += verdict == "caught"
    row = f"{ident}\t{verdict}\t{int(time.time() - start)}s\t{failed[:300]}"
    print(row, flush=True)
    out.write(row + "\n")
    out.flush()
build()
print(f"caught {caught} of {len(mutants)}")
