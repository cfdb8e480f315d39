"""Signals, the end of the program, processes made by fork: programs of their own."""

import os
import signal
import subprocess
import sys
import time

import pytest

BEGIN = """
import gc, numpy, orvik_fd, os, signal, sys, threading, time
signal.signal(signal.SIGINT, signal.default_int_handler)  # shells let what they run in the background ignore it
plane = numpy.random.default_rng(3).random((600, 600)).astype(numpy.float32)
planes = numpy.broadcast_to(plane, (300, 600, 600))
plain, told = numpy.zeros((50, 50), numpy.uint8), []
"""


def runProgram(program, **environment):
    """What it says, on the error stream first. It must end well."""
    command = [sys.executable, "-c", BEGIN + program]
    ended = subprocess.run(command, env={**os.environ, **environment}, timeout=60, capture_output=True, text=True)
    assert ended.returncode == 0, ended.stderr
    return ended.stderr + ended.stdout


@pytest.mark.parametrize("call", [
    "orvik_fd.harrisCorner2dImg(planes, 8.0)",
    "orvik_fd.harrisCorner2dImg_async(planes, 8.0).result()",
    "orvik_fd.harrisCorner2dImg(planes, 8.0, progress=lambda fraction: None)",
    # Few samples, so that the caller's own thread works.
    "orvik_fd.houghLines2dImg(numpy.ones((200, 200), bool), nbThetaBins=60000)",
])
def test_ctrlCCancels(call):
    program = f"""
orvik_fd.setNbThreads(1)
print("ready", flush=True)
try:
    {call}
except KeyboardInterrupt:
    print("interrupted")
"""
    process = subprocess.Popen([sys.executable, "-c", BEGIN + program], stdout=subprocess.PIPE, text=True)
    assert process.stdout.readline() == "ready\n"
    time.sleep(0.7)
    process.send_signal(signal.SIGINT)
    assert process.communicate(timeout=60)[0] == "interrupted\n", "it took less than a second, or does not look for signals"


@pytest.mark.parametrize("work, sigma", [
    ("None", 100.0),  # minutes, where the others would end by themselves
    ("handle.wait()", 8.0),
    ("[orvik_fd.harrisCorner2dImg(plane[:64, :64], 1.0) for _ in iter(int, 1)]", 8.0),
    ("[orvik_fd.harrisCorner2dImg(planes[:2], 1.0, progress=lambda fraction: None) for _ in iter(int, 1)]", 8.0),
    ("[orvik_fd.harrisCorner2dImg_async(planes[:2], 1.0) for _ in iter(int, 1)]", 8.0),
])
def test_theEndOfTheProgramWaitsNeitherForWorkNorForDaemonThreads(work, sigma):
    for _ in range(3):
        assert runProgram(f"""
handle = orvik_fd.harrisCorner2dImg_async(planes, {sigma}, progress=told.append)
threading.Thread(target=lambda: {work}, daemon=True).start()
time.sleep(0.3)
""") == ""


@pytest.mark.parametrize("name, value, told", [
    ("ORVIK_MAX_INSTRUCTION_SET", "SSE2", "3 2\n"),
    ("ORVIK_MAX_INSTRUCTION_SET", "generic", "3 1\n"),
    ("ORVIK_MAX_INSTRUCTION_SET", "sse3", 'orvik: ORVIK_MAX_INSTRUCTION_SET is "sse3", which is ignored'),
    ("ORVIK_NUM_THREADS", "3x", 'orvik: ORVIK_NUM_THREADS is "3x", which is ignored'),
])
def test_theEnvironmentIsReadOrNamed(name, value, told):
    program = "print(orvik_fd.getNbThreads(), len(orvik_fd.instructionSets()))"
    assert runProgram(program, **{"ORVIK_NUM_THREADS": "3", name: value}).startswith(told)


@pytest.mark.parametrize("program", [
    """
class Frame(numpy.ndarray):
    def __del__(self):  # as a run is started, which gives back what ended ones read
        told.extend(orvik_fd.harrisCorner2dImg_async(plain, 1.0) for _ in range(20) if self.shape == plain.shape)
handles = [orvik_fd.harrisCorner2dImg_async(plain.copy().view(Frame), 1.0) for _ in range(4)]
""",
    """
class Job:
    def start(self):
        self.handle = orvik_fd.harrisCorner2dImg_async(plain, 1.0, progress=lambda fraction: self)
    def __del__(self):
        self.handle.close()
        told.append(self)
Job().start()
""",
], ids=["starts runs", "closes its handle"])
def test_whatIsLetGoOfMayCallBack(program):
    assert runProgram(program + """
time.sleep(0.2)
orvik_fd.harrisCorner2dImg_async(plain, 1.0).result()
gc.collect()
assert told
""") == ""


def test_aForkedProcessWorksOnItsOwn():
    assert runProgram("""
expected = orvik_fd.harrisCorner2dImg(plane, 2.0)
handle = orvik_fd.harrisCorner2dImg_async(planes[:50], 8.0)
if os.fork() == 0:
    signal.alarm(50)  # a hang ends by a signal
    assert (orvik_fd.harrisCorner2dImg(plane, 2.0) == expected).all()
    assert (orvik_fd.harrisCorner2dImg_async(plane, 2.0, progress=told.append).result() == expected).all() and told[-1] == 1
    for use in handle.wait, handle.done, handle.result, handle.cancel:
        try:
            use()
            assert False
        except RuntimeError as e:
            assert "belongs to the process that started it" in str(e)
    handle.close()
    os._exit(7)  # as processes of multiprocessing do
assert os.waitpid(-1, 0)[1] == 7 << 8
assert (orvik_fd.harrisCorner2dImg(plane, 2.0) == expected).all()
handle.cancel()
""") == ""


@pytest.mark.parametrize("before", [
    "pass",
    "orvik_fd.harrisCorner2dImg(numpy.zeros((600, 600), numpy.float32), 2.0)",  # there are threads of the library
    "pytest.raises(orvik_fd.Error, orvik_fd.harrisCorner2dImg, numpy.zeros((9, 9), numpy.uint8), -1.0)",  # a failure was told
])
def test_aForkedProcessEndsByExit(before):
    assert runProgram(f"""
import os, pytest, signal
{before}
if os.fork() == 0:
    signal.alarm(50)
    {before}
    sys.exit(7)
assert os.wait()[1] == 7 << 8
""") == ""
