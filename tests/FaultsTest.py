#!/usr/bin/env python3
"""Allocations and threads that can't be had in the first call of a process, one process each.

usage: FaultsTest.py DRIVER PRELOAD [--all] [unittest's arguments]

By default a sample of the allocations; with --all every one, which takes minutes.
"""
import concurrent.futures
import os
import random
import signal
import subprocess
import sys
import unittest

DRIVER, PRELOAD = sys.argv[1:3]
ALL = "--all" in sys.argv
sys.argv[1:] = [argument for argument in sys.argv[3:] if argument != "--all"]
CALLS = subprocess.run([DRIVER], check=True, text=True, stdout=subprocess.PIPE).stdout.split()
PAST_THE_LAST = 50
NB_SAMPLES = 8


def drive(call, nb_threads, *allocation, **environment):
    done = subprocess.run([DRIVER, call, str(nb_threads), *map(str, allocation)], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, env={**os.environ, "LD_PRELOAD": PRELOAD, **environment})
    if done.returncode in (0, PAST_THE_LAST):
        return done.returncode, ""
    status = signal.Signals(-done.returncode).name if done.returncode < 0 else done.returncode
    return done.returncode, f"{call}, {nb_threads} threads, {allocation or environment}: {status} {done.stderr[-200:]}"


def nb_allocations(call, nb_threads):
    """Of a first call, to within a few: how many depends on which thread comes first."""
    low, high = 0, 1 << 14
    while high - low > 4:
        middle = (low + high) // 2
        if drive(call, nb_threads, middle)[0] == PAST_THE_LAST:
            high = middle
        else:
            low = middle
    return high


class FirstCall(unittest.TestCase):
    def faults(self, jobs):
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            return [fault for fault in pool.map(lambda job: job(), jobs) if fault]

    def test_fails_by_an_exception_where_memory_runs_out_and_works_afterwards(self):
        chosen = random.Random(int(os.environ.get("ORVIK_TEST_SEED", "1")))
        jobs = []
        for call in CALLS:
            for nb_threads in 1, 3:
                if not ALL and chosen.random() < 0.5:
                    continue
                nb = nb_allocations(call, nb_threads)
                self.assertGreater(nb, 20, call)
                numbers = range(nb) if ALL else sorted(chosen.sample(range(nb), NB_SAMPLES))
                jobs += [lambda call=call, nb_threads=nb_threads, n=n: drive(call, nb_threads, n)[1] for n in numbers]
        self.assertEqual([], self.faults(jobs))

    def test_works_where_threads_can_not_be_created(self):
        # Of the attempts, those are chosen by which the library finds out.
        failing = [{"ORVIK_MAX_THREADS": str(n)} for n in range(7)] + [{"ORVIK_FAIL_THREAD": str(n)} for n in (0, 1)]
        jobs = [lambda call=call, nb_threads=nb_threads, how=how: drive(call, nb_threads, **how)[1]
                for call in ("cannyEdges2dImg", "cannyEdges2dImg_async", "multiSlice_houghLines2d")
                for nb_threads in (2, 6) for how in failing]
        self.assertEqual([], self.faults(jobs))


if __name__ == "__main__":
    unittest.main()
