"""Signals, the end of the program, processes made by fork: programs of their own."""

import os
import signal
import subprocess
import sys
import time

import pytest


def runProgram(program, timeout=60, **environment):
    return subprocess.run([sys.executable, "-c", program], env={**os.environ, **environment}, timeout=timeout,
                          capture_output=True, text=True)


@pytest.mark.parametrize("call", [
    "orvik_fd.harrisCorner2dImg(planes, 8.0)",
    "orvik_fd.harrisCorner2dImg_async(planes, 8.0).result()",
    "orvik_fd.harrisCorner2dImg(planes, 8.0, progress=lambda fraction: None)",
    # Few samples, so that the caller's own thread works.
    "orvik_fd.houghLines2dImg(numpy.ones((200, 200), bool), nbThetaBins=60000)",
])
def test_ctrlCCancels(call):
    program = f"""
import numpy, orvik_fd, sys, time
orvik_fd.setNbThreads(1)
planes = numpy.broadcast_to(numpy.random.default_rng(1).random((1200, 1200)).astype(numpy.float32), (300, 1200, 1200))
print("ready", flush=True)
begin = time.monotonic()
try:
    {call}
    print("ended")
except KeyboardInterrupt:
    print("interrupted", time.monotonic() - begin)
"""
    process = subprocess.Popen([sys.executable, "-c", program], stdout=subprocess.PIPE, text=True)
    assert process.stdout.readline() == "ready\n"
    time.sleep(0.7)
    process.send_signal(signal.SIGINT)
    answer = process.stdout.read().split()
    assert process.wait(60) == 0
    assert answer[0] == "interrupted", "the call took no more than a second, or does not look for signals"


@pytest.mark.parametrize("work, side, sigma", [
    ("None", 1200, 200.0),  # minutes, where the others would end by themselves
    ("handle.wait()", 600, 8.0),
    ("[orvik_fd.harrisCorner2dImg(planes[0, :64, :64], 1.0) for _ in iter(int, 1)]", 600, 8.0),
    ("[orvik_fd.harrisCorner2dImg(planes[:2], 1.0, progress=lambda fraction: None) for _ in iter(int, 1)]", 600, 8.0),
    ("[orvik_fd.harrisCorner2dImg_async(planes[:2], 1.0) for _ in iter(int, 1)]", 600, 8.0),
])
def test_theEndOfTheProgramWaitsNeitherForWorkNorForDaemonThreads(work, side, sigma):
    program = f"""
import numpy, orvik_fd, threading, time
planes = numpy.zeros((300, {side}, {side}), numpy.float32)
told = []
handle = orvik_fd.harrisCorner2dImg_async(planes, {sigma}, progress=told.append)
threading.Thread(target=lambda: {work}, daemon=True).start()
time.sleep(0.3)
"""
    for _ in range(3):
        ended = runProgram(program)
        assert (ended.returncode, ended.stderr) == (0, "")


@pytest.mark.parametrize("name, value, printed, warned", [
    ("ORVIK_MAX_INSTRUCTION_SET", "SSE2", "2", ""),
    ("ORVIK_MAX_INSTRUCTION_SET", "generic", "1", ""),
    ("ORVIK_MAX_INSTRUCTION_SET", "sse3", None, 'orvik: ORVIK_MAX_INSTRUCTION_SET is "sse3", which is ignored'),
    ("ORVIK_NUM_THREADS", "3", "3", ""),
    ("ORVIK_NUM_THREADS", "3x", None, 'orvik: ORVIK_NUM_THREADS is "3x", which is ignored'),
])
def test_theEnvironmentIsReadOrNamed(name, value, printed, warned):
    program = f"""
import orvik_fd
print(orvik_fd.getNbThreads() if {name!r} == "ORVIK_NUM_THREADS" else len(orvik_fd.instructionSets()))
"""
    done = runProgram(program, **{name: value})
    assert done.returncode == 0 and done.stderr.startswith(warned) and bool(done.stderr) == bool(warned)
    assert printed is None or done.stdout.strip() == printed


@pytest.mark.parametrize("program", [
    """
class Frame(numpy.ndarray):
    def __del__(self):  # as a run is started, which gives back what ended ones read
        told.extend(orvik_fd.harrisCorner2dImg_async(plain, 1.0) for _ in range(20) if self.shape == plain.shape)
handles = [orvik_fd.harrisCorner2dImg_async(plain.copy().view(Frame), 1.0) for _ in range(4)]
""",
    """
class Job:
    def __init__(self):
        self.handle = orvik_fd.harrisCorner2dImg_async(plain, 1.0, progress=self.report)
    def report(self, fraction):
        pass
    def __del__(self):
        self.handle.close()
        told.append(self)
Job()
""",
], ids=["starts runs", "closes its handle"])
def test_whatIsLetGoOfMayCallBack(program):
    ended = runProgram("""
import gc, numpy, orvik_fd, time
plain, told = numpy.zeros((50, 50), numpy.uint8), []
""" + program + """
time.sleep(0.2)
orvik_fd.harrisCorner2dImg_async(plain, 1.0).result()
gc.collect()
assert told
""", 20)
    assert (ended.returncode, ended.stderr) == (0, "")


def test_aForkedProcessWorksOnItsOwn():
    program = """
import numpy, orvik_fd, os, signal
plane = numpy.random.default_rng(3).random((600, 600)).astype(numpy.float32)
planes = numpy.broadcast_to(plane, (100, 600, 600))
expected = orvik_fd.harrisCorner2dImg(plane, 2.0)
handle = orvik_fd.harrisCorner2dImg_async(planes, 8.0)
if os.fork() == 0:
    signal.alarm(50)  # a hang ends by a signal
    assert (orvik_fd.harrisCorner2dImg(plane, 2.0) == expected).all()
    told = []
    assert (orvik_fd.harrisCorner2dImg_async(plane, 2.0, progress=told.append).result() == expected).all()
    assert told[-1] == 1
    for use in handle.wait, handle.done, handle.result, handle.cancel:
        try:
            use()
        except RuntimeError as e:
            assert "belongs to the process that started it" in str(e)
        else:
            assert False
    handle.close()
    os._exit(7)  # as processes of multiprocessing do: at exit() log4cplus waits for threads of the other process
assert os.waitpid(-1, 0)[1] == 7 << 8
assert (orvik_fd.harrisCorner2dImg(plane, 2.0) == expected).all()
handle.cancel()
"""
    ended = runProgram(program)
    assert (ended.returncode, ended.stderr) == (0, "")
