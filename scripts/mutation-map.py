#!/usr/bin/env python3
"""Which host-test checks catch which planted faults: the map behind a cut of the tests.

  python3 scripts/mutation-map.py [--count N] [--seed S] [--files GLOB ...] [--jobs J] [--raw F]

Plants the mutants of ../shared/tools/mutate.py (same operators, same pool, shuffled by --seed;
--count 0 takes the whole pool, about 900 mutants, some 45 minutes with two jobs), rebuilds the
host tests without sanitizers in clones of HEAD, runs them, and notes for every caught mutant
which tests failed and at which check (file:line of each failed EXPECT/ASSERT). Then prints:

  - per test, how many mutants it catches and how many only it catches;
  - per check line, the same two figures; a line that catches nothing, or nothing alone, is a
    candidate for a cut, unless it guards what no mutant can plant (an order, a lifetime, a
    value that only a header or a string literal holds);
  - the surviving mutants.

--raw keeps one JSON line per mutant in F for later questions.
"""
import argparse
import collections
import fnmatch
import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

HERE = os.path.dirname(os.path.abspath(__file__))
REPO = os.path.dirname(HERE)
sys.path.insert(0, os.path.join(REPO, '..', 'shared', 'tools'))
import mutate  # noqa: E402  (the operators and the pool are the measuring tool's own)

CHECK = re.compile(r'(tests/[\w/]+\.(?:cpp|h)):(\d+): Failure')


def clone_and_build():
    work = os.path.join(tempfile.mkdtemp(prefix='mutation-map-'), 'repo')
    subprocess.check_call(['git', 'clone', '-q', REPO, work])
    build = os.path.join(work, 'build', 'map')
    quiet = dict(cwd=work, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    subprocess.run(['cmake', '-S', '.', '-B', build, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=Debug',
                    '-DLUMIVANE_TESTS=ON', '-DLUMIVANE_SANITIZE=OFF'], **quiet)
    subprocess.run(['cmake', '--build', build, '--target', 'lumivane_host_tests'], **quiet)
    return work, build


def run_share(mutants, count):
    """Tries mutants in order in a clone of its own until `count` of them compiled."""
    work, build = clone_and_build()
    binary = os.path.join(build, 'tests', 'lumivane_host_tests')
    records = []
    for rel, i, s, e, rep, what in mutants:
        if count and len(records) >= count:
            break
        path = os.path.join(work, rel)
        with open(path) as f:
            original = f.readlines()
        mutated = list(original)
        mutated[i] = original[i][:s] + rep + original[i][e:]
        with open(path, 'w') as f:
            f.writelines(mutated)
        try:
            built = subprocess.run(['cmake', '--build', build, '--target', 'lumivane_host_tests'],
                                   cwd=work, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            if built.returncode != 0:
                continue
            try:
                p = subprocess.run([binary], cwd=work, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, timeout=120)
                text, code = p.stdout.decode(errors='replace'), p.returncode
            except subprocess.TimeoutExpired as t:
                text, code = (t.stdout or b'').decode(errors='replace'), 'timeout'
            failed = sorted(set(re.findall(r'\[  FAILED  \] (\w+\.\w+)', text)))
            started = re.findall(r'\[ RUN      \] (\w+\.\w+)', text)
            if code != 0 and not failed and started:
                failed = [started[-1]]  # a crash or a hang ends the run inside this test
            records.append(dict(mutant=f'{rel}:{i + 1}: {what}', caught=code != 0,
                                tests=failed,
                                checks=sorted({f'{m[0]}:{m[1]}' for m in CHECK.findall(text)})))
        finally:
            with open(path, 'w') as f:
                f.writelines(original)
            os.utime(path)
    shutil.rmtree(os.path.dirname(work), ignore_errors=True)
    return records


def report(records):
    caught = [r for r in records if r['caught']]
    print(f'{len(records)} mutants, {len(caught)} caught')
    for key, title in (('tests', 'test'), ('checks', 'check line')):
        total, alone = collections.Counter(), collections.Counter()
        for r in caught:
            for k in r[key]:
                total[k] += 1
            if len(r[key]) == 1:
                alone[r[key][0]] += 1
        print(f'\n{title}: caught, caught alone')
        for k in sorted(total):
            print(f'  {total[k]:4d} {alone[k]:4d}  {k}')
    print('\nsurviving:')
    for r in records:
        if not r['caught']:
            print('  ' + r['mutant'])


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument('--count', type=int, default=100, help='0: the whole pool')
    ap.add_argument('--seed', type=int, default=1)
    ap.add_argument('--files', nargs='*', default=['src/*'])
    ap.add_argument('--jobs', type=int, default=2)
    ap.add_argument('--raw')
    a = ap.parse_args()
    pool = []
    for root, _, files in os.walk(os.path.join(REPO, 'src')):
        for name in sorted(files):
            rel = os.path.relpath(os.path.join(root, name), REPO)
            if rel.startswith('src/platform/') or not name.endswith(('.cpp', '.h')):
                continue
            if any(fnmatch.fnmatch(rel, g) for g in a.files):
                with open(os.path.join(REPO, rel)) as f:
                    pool.extend(mutate.candidates(rel, f.readlines()))
    pool.sort()
    random.Random(a.seed).shuffle(pool)
    share = -(-a.count // a.jobs) if a.count else 0
    with ThreadPoolExecutor(a.jobs) as ex:
        parts = ex.map(lambda j: run_share(pool[j::a.jobs], share), range(a.jobs))
    records = [r for part in parts for r in part]
    if a.raw:
        with open(a.raw, 'w') as f:
            f.writelines(json.dumps(r) + '\n' for r in records)
    report(records)


if __name__ == '__main__':
    main()
