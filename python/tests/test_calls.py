"""Calls: at once, in the background, cancelled, from several threads; arguments that are wrong."""

import gc
import inspect
import os
import threading
import time
import typing
import weakref

import numpy
import orvik_fd
import pytest

from conftest import inThreads


@pytest.fixture
def large(rng):
    return rng.random((1200, 1200)).astype(numpy.float32)


def longCall(large, **more):
    """Some seconds of work in many elements: a hundred planes, wide kernels."""
    return orvik_fd.harrisCorner2dImg_async(numpy.broadcast_to(large, (100,) + large.shape), 8.0, **more)


def test_aHandleWaitsAndGivesTheResult(large):
    expected = orvik_fd.harrisCorner2dImg(large, 2)
    handle = orvik_fd.harrisCorner2dImg_async(large, 2)
    assert handle.wait() and handle.done()
    assert (handle.result() == expected).all()
    assert "ended" in repr(handle)
    handle.cancel()
    assert handle.result(timeout=0) is handle.result()


def test_aLongCallIsCancelled(large):
    handle = longCall(large)
    assert not handle.done() and not handle.wait(0.05) and not handle.wait(0)
    with pytest.raises(TimeoutError, match="harrisCorner2dImg_async has not ended within 0.01 seconds"):
        handle.result(timeout=0.01)
    assert "running" in repr(handle)
    handle.cancel()
    for _ in range(2):
        with pytest.raises(orvik_fd.CancelledError, match="The run was cancelled on request"):
            handle.result()
    assert handle.done() and handle.wait()


def test_aClosedHandleSaysSo(large):
    with longCall(large) as handle:
        pass
    handle.close()
    assert "closed" in repr(handle)
    for use in (handle.wait, handle.done, handle.result, handle.cancel):
        with pytest.raises(ValueError, match="the handle of harrisCorner2dImg_async is closed"):
            use()


def test_aFailedHandleTellsTheReasonEachTime(small):
    handle = orvik_fd.cannyEdges2dImg_async(small, small[:7], lowThreshold=1, highThreshold=2)
    assert handle.wait()
    atOnce = lambda: orvik_fd.cannyEdges2dImg(small, small[:7], lowThreshold=1, highThreshold=2)
    for call in (handle.result, handle.result, atOnce):
        with pytest.raises(orvik_fd.Error, match="InGxGreyImg2d .56 x 40.*InGyGreyImg2d .56 x 7") as raised:
            call()
        assert isinstance(raised.value, ValueError)


def test_aDroppedHandleGoesOn(large):
    out = numpy.zeros((300, 300), numpy.float32)
    orvik_fd.harrisCorner2dImg_async(large[:300, :300], 2, out)
    expected = orvik_fd.harrisCorner2dImg(large[:300, :300], 2)
    for _ in range(500):
        if (out == expected).all():
            break
        time.sleep(0.01)
    assert (out == expected).all()


@pytest.mark.parametrize("call", [
    lambda large: orvik_fd.harrisCorner2dImg(large, 3),
    lambda large: orvik_fd.multiSlice_extractLocalExtrema2d(numpy.broadcast_to(large, (20,) + large.shape), 1, 1),
])
def test_otherThreadsGoOnMeanwhile(large, call):
    nbTicks = 0
    stop = threading.Event()

    def tick():
        nonlocal nbTicks
        while not stop.wait(0.001):
            nbTicks += 1

    def ticksInACall(i):
        before = nbTicks
        call(large)
        return nbTicks - before

    ticker = threading.Thread(target=tick)
    ticker.start()
    try:  # the machine may be busy with something else for some of the calls
        assert any(ticksInACall(i) > 3 for i in range(100)), "a tick on the way into a call and one on the way out are none"
    finally:
        stop.set()
        ticker.join()


def test_threadsCallAtOnce(rng):
    pictures = [rng.integers(0, 255, (97 + i, 120)).astype(numpy.uint8) for i in range(6)]
    expected = [orvik_fd.harrisCorner2d(p, 50, 3) for p in pictures]

    def work(i):
        for _ in range(20):
            assert (orvik_fd.harrisCorner2d(pictures[i], 50, 3) == expected[i]).all()
            assert (orvik_fd.harrisCorner2d_async(pictures[i], 50, 3).result() == expected[i]).all()

    inThreads(6, work)


def test_progressIsTold(large):
    fractions = []
    orvik_fd.harrisCorner2dImg(numpy.broadcast_to(large[:200, :200], (10, 200, 200)), 2, progress=fractions.append)
    assert fractions == sorted(fractions) and fractions[-1] == 1.0 and len(fractions) == 10
    fractions.clear()
    orvik_fd.harrisCorner2dImg_async(large[:20, :20], 2, progress=fractions.append).result()
    assert fractions and fractions[-1] == 1.0


def test_progressGoesToABarOfTqdm(large):
    tqdm = pytest.importorskip("tqdm", reason="tqdm is not installed: python3-tqdm").tqdm
    with open(os.devnull, "w") as nowhere:
        for total in (None, 50):
            with tqdm(total=total, file=nowhere) as bar:
                orvik_fd.harrisCorner2dImg(numpy.broadcast_to(large[:200, :200], (10, 200, 200)), 2, progress=bar)
                assert bar.n == pytest.approx(bar.total)
    with pytest.raises(TypeError, match="progress: .*not int"):
        orvik_fd.harrisCorner2dImg(large, progress=3)


def test_anExceptionOfTheCallbackEndsTheCall(large):
    def refuse(fraction):
        raise LookupError(f"enough at {fraction}")

    planes = numpy.broadcast_to(large[:200, :200], (10, 200, 200))
    with pytest.raises(LookupError, match="enough at 0.1"):
        orvik_fd.harrisCorner2dImg(planes, 2, progress=refuse)
    handle = orvik_fd.harrisCorner2dImg_async(planes, 2, progress=refuse)

    def ask(i):
        raised = []
        for _ in range(20):
            with pytest.raises(LookupError, match="enough at 0.1") as error:
                handle.result()
            raised.append(error.value)
        return raised

    assert len({id(error) for raised in inThreads(4, ask) for error in raised}) == 1


def test_aCallbackMayCall(large):
    for nbThreads in (1, 2):
        counts = []
        orvik_fd.setNbThreads(nbThreads)
        orvik_fd.harrisCorner2dImg(large[:100, :100], 2, progress=lambda fraction: counts.append(
            len(orvik_fd.extractLocalExtrema2d(large[:500, :500], 3, 3, maxNbExtrema=5))))
        assert set(counts) == {5}


def test_aCallbackCanNotWait(large):
    orvik_fd.setNbThreads(2)
    gate = threading.Event()
    other = orvik_fd.harrisCorner2dImg_async(large[:20, :20], 2, progress=lambda fraction: gate.wait(60))
    for use in (other.wait, other.result, other.close, lambda: handle.wait(1)):
        begun = threading.Event()
        handle = orvik_fd.harrisCorner2dImg_async(large[:20, :20], 2, progress=lambda fraction: begun.wait() and use())
        begun.set()
        with pytest.raises(RuntimeError, match="a progress callback can't wait"):
            handle.result()
    gate.set()


def test_threadsShareAHandle(large):
    for _ in range(50):
        handle = orvik_fd.harrisCorner2dImg_async(large[:30, :30], 2)
        results = inThreads(4, lambda i: handle.result())
        assert all(result is results[0] for result in results)
        inThreads(4, lambda i: handle.close())


@pytest.mark.parametrize("use", [
    lambda owner: {"outImg": owner}, lambda owner: {"progress": owner.told},
    lambda owner: {"progress": owner.refuse}, lambda owner: {"inImg": owner}])
@pytest.mark.parametrize("ask", [lambda handle: None, lambda handle: handle.result()])
def test_whatHoldsItsHandleIsCollected(large, use, ask):
    class Owner(numpy.ndarray):
        def told(self, fraction):
            pass

        def refuse(self, fraction):
            raise LookupError

    def drop():
        owner = numpy.zeros((30, 30), numpy.float32).view(Owner)
        owner.handle = orvik_fd.harrisCorner2dImg_async(**{"inImg": large[:30, :30], **use(owner)})
        try:
            ask(owner.handle)
        except LookupError:
            pass
        return weakref.ref(owner)

    alive = [drop(), drop()]
    time.sleep(0.3)
    orvik_fd.harrisCorner2dImg_async(large[:30, :30], 2).result()  # the next call gives back what earlier ones read
    gc.collect()
    assert [owner() for owner in alive] == [None, None]


@pytest.mark.parametrize("call, error, text", [
    (lambda a: orvik_fd.extractLocalExtrema2d(a, -1, 1), ValueError, "inFeaturesDistX: -1 is negative"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1, 2**32), ValueError, "inFeaturesDistY: 4294967296 is outside 0 to"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1.0, 1), TypeError, "inFeaturesDistX: a whole number"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1, 1, maxNbExtrema=2**64), ValueError, "maxNbExtrema: .* outside"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1, 1, threshold="x"), TypeError, "threshold: a number"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1, 1, localExtremumType=4), ValueError, "localExtremumType: 4 .*eLET_Minima"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1, 1, localExtremumType=orvik_fd.eCornerResponseType.eCRT_Harris),
     TypeError, "localExtremumType: .*eLocalExtremumType"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1, 1, maximum=5), TypeError, "extractLocalExtrema2d.* 'maximum'"),
    (lambda a: orvik_fd.extractLocalExtrema2d(a, 1), TypeError, "'inFeaturesDistY'"),
    (lambda a: orvik_fd.cannyEdges2dImg(a, a, lowThreshold=None, highThreshold=1), TypeError, "lowThreshold"),
    (lambda a: orvik_fd.cannyEdges2dImg(a, a, 0, a.astype(numpy.float32), lowThreshold=1, highThreshold=1), ValueError,
     "outImg: ePOP_Labels .*not of float32"),
    (lambda a: orvik_fd.cannyEdges2dImg(a, a, 7, lowThreshold=1, highThreshold=2), ValueError, "inOptimizationPolicy: 7"),
    (lambda a: orvik_fd.harrisCorner2d(a, featuresDist=3), TypeError, "maxNbCorners"),
    (lambda a: orvik_fd.harrisCorner2d(a, maxNbCorners=3), TypeError, "featuresDist"),
    (lambda a: orvik_fd.harrisCorner2d(a, maxNbCorners=3, featuresDist=3, featuresDistX=3), TypeError, "not both"),
    (lambda a: orvik_fd.harrisCorner2d(a, -3, 3), ValueError, "maxNbCorners: -3 is negative"),
    (lambda a: orvik_fd.harrisCorner2d(a, 3, -3), ValueError, "featuresDist: -3 is negative"),
    (lambda a: orvik_fd.harrisCorner2dImg(a, 1e300), ValueError, "inOptGradStdDev: 1e.300 is beyond"),
    (lambda a: orvik_fd.gaussianGradient2dImg(a), TypeError, "stdDev"),
    (lambda a: orvik_fd.houghLines2dImg(a, nbThetaBins=0), orvik_fd.Error, "0 along theta"),
    (lambda a: orvik_fd.houghLines2dImg(a, nbThetaBins=2**31 - 1, rhoStep=1e-6), MemoryError, "there is no memory"),
    (lambda a: orvik_fd.houghLines2d_async(a).wait("long"), TypeError, "timeout: a number is expected, not 'long'"),
    (lambda a: orvik_fd.maxL2Norm2Msr(a, a.astype(numpy.int8)), orvik_fd.Error, "buffer type"),
])
def test_wrongArgumentsAreRefusedByName(small, call, error, text):
    with pytest.raises(error, match=text):
        call(small)


def test_numbersOfNumPyAreNumbers(small):
    found = orvik_fd.extractLocalExtrema2d(small, numpy.uint8(2), numpy.int64(2), threshold=numpy.float32(100))
    assert (found == orvik_fd.extractLocalExtrema2d(small, 2, 2, threshold=100)).all()


def test_helpTellsWhatAFunctionDoes():
    functions = [getattr(orvik_fd, name) for name in orvik_fd.__all__]
    functions = [f for f in functions if inspect.isfunction(f)]
    assert len(functions) > 20
    for function in functions:
        text = inspect.getdoc(function)
        assert len(text) > 20, function.__name__
        for name, parameter in inspect.signature(function).parameters.items():
            assert name in text, f"{function.__name__} does not tell of {name}"
            assert parameter.annotation is not inspect.Parameter.empty
    assert "Handle" in orvik_fd.cannyEdges2dImg_async.__doc__
    assert typing.get_type_hints(orvik_fd.cannyEdges2dImg)["return"] is numpy.ndarray
    assert typing.get_type_hints(orvik_fd.cannyEdges2dImg_async)["return"] == orvik_fd.Handle[numpy.ndarray]
    assert str(inspect.signature(orvik_fd.maxL2Norm2Msr)).startswith("(in1: numpy.ndarray, in2: numpy.ndarray, *, progress")
