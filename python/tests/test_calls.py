"""Calls: at once, in the background, cancelled, from several threads; arguments that are wrong."""

import contextlib
import gc
import inspect
import io
import threading
import time
import weakref

import numpy
import orvik_fd
import pytest

from conftest import inThreads


@pytest.fixture
def large(rng):
    return rng.random((1200, 1200)).astype(numpy.float32)


@pytest.fixture
def planes(large):
    return numpy.broadcast_to(large[:200, :200], (10, 200, 200))


def longCall(large):
    """Some seconds of work in many elements: a hundred planes, wide kernels."""
    return orvik_fd.harrisCorner2dImg_async(numpy.broadcast_to(large, (100,) + large.shape), 8.0)


def test_aHandleWaitsGivesTheResultAndIsClosed(large):
    expected = orvik_fd.harrisCorner2dImg(large, 2)
    handle = orvik_fd.harrisCorner2dImg_async(large, 2)
    assert handle.wait() and handle.done() and "ended" in repr(handle)
    handle.cancel()
    assert (handle.result() == expected).all() and handle.result(timeout=0) is handle.result()
    with handle, longCall(large) as other:
        assert "running" in repr(other)
    other.close()
    for use in handle.wait, handle.done, other.result, other.cancel:
        with pytest.raises(ValueError, match="the handle of harrisCorner2dImg_async is closed"):
            use()
    assert "closed" in repr(other)


def test_aLongCallIsCancelled(large):
    handle = longCall(large)
    assert not handle.done() and not handle.wait(0.05) and not handle.wait(0)
    with pytest.raises(TimeoutError, match="harrisCorner2dImg_async has not ended within 0.01 seconds"):
        handle.result(timeout=0.01)
    handle.cancel()
    for _ in range(2):
        with pytest.raises(orvik_fd.CancelledError, match="The run was cancelled on request"):
            handle.result()
    assert handle.done() and handle.wait()


def test_aFailedHandleTellsTheReasonEachTime(small):
    handle = orvik_fd.cannyEdges2dImg_async(small, small[:7], lowThreshold=1, highThreshold=2)
    for call in handle.result, handle.result, lambda: handle.wait() and orvik_fd.maxL2Norm2Msr(small, small[:7]):
        with pytest.raises(orvik_fd.Error, match=".56 x 40.*.56 x 7") as raised:
            call()
        assert isinstance(raised.value, ValueError)


def test_aDroppedHandleGoesOn(large):
    out, expected = numpy.zeros(large.shape, numpy.float32), orvik_fd.harrisCorner2dImg(large, 2)
    orvik_fd.harrisCorner2dImg_async(large, 2, out)
    assert any(time.sleep(0.02) or (out == expected).all() for _ in range(1000))


@pytest.mark.parametrize("call", [
    lambda large: orvik_fd.harrisCorner2dImg(large, 3),
    lambda large: orvik_fd.multiSlice_extractLocalExtrema2d(numpy.broadcast_to(large, (20,) + large.shape), 1, 1),
])
def test_otherThreadsGoOnMeanwhile(large, call):
    ticks, stop = [], threading.Event()
    threading.Thread(target=lambda: any(ticks.append(None) or stop.wait(0.001) for _ in iter(int, 1)), daemon=True).start()
    for _ in range(100):  # the machine may be busy with something else for some of the calls
        ticks.clear()
        call(large)
        if nbTicks := len(ticks) > 3:  # one on the way into a call and one on the way out are none
            break
    stop.set()
    assert nbTicks


def test_threadsCallAtOnceAndShareAHandle(rng):
    pictures = [rng.integers(0, 255, (97 + i, 120)).astype(numpy.uint8) for i in range(6)]
    expected = [orvik_fd.harrisCorner2d(p, 50, 3) for p in pictures]

    def work(i):
        for _ in range(20):
            assert (orvik_fd.harrisCorner2d(pictures[i], 50, 3) == expected[i]).all()
            assert (orvik_fd.harrisCorner2d_async(pictures[i], 50, 3).result() == expected[i]).all()

    inThreads(6, work)
    for _ in range(50):
        handle = orvik_fd.harrisCorner2dImg_async(pictures[0], 2)
        assert len(set(inThreads(4, lambda i: id(handle.result())))) == 1
        inThreads(4, lambda i: handle.close())


def test_progressIsTold(large, planes):
    ofPlanes, ofFew = [], []
    orvik_fd.harrisCorner2dImg(planes, 2, progress=ofPlanes.append)
    orvik_fd.harrisCorner2dImg_async(large[:20, :20], 2, progress=ofFew.append).result()
    assert ofPlanes == pytest.approx([i / 10 for i in range(1, 11)]) and ofFew[-1] == 1


def test_progressGoesToABarOfTqdm(planes):
    tqdm = pytest.importorskip("tqdm", reason="tqdm is not installed: python3-tqdm").tqdm
    for total in (None, 50):
        with tqdm(total=total, file=io.StringIO()) as bar:
            orvik_fd.harrisCorner2dImg(planes, 2, progress=bar)
            assert bar.n == pytest.approx(bar.total)


def test_anExceptionOfTheCallbackEndsTheCall(planes):
    told = {0.1: {}}
    with pytest.raises(KeyError, match="0.2"):
        orvik_fd.harrisCorner2dImg(planes, 2, progress=told.__getitem__)
    handle = orvik_fd.harrisCorner2dImg_async(planes, 2, progress=told.__getitem__)
    errors = inThreads(20, lambda i: pytest.raises(KeyError, handle.result).value)
    assert str(errors[0]) == "0.2" and len(set(errors)) == 1


def test_aCallbackMayCallButNotWait(large):
    counts, gate = [], threading.Event()
    for nbThreads in 1, 2:
        orvik_fd.setNbThreads(nbThreads)
        orvik_fd.harrisCorner2dImg(large[:100, :100], 2, progress=lambda fraction: counts.append(
            len(orvik_fd.extractLocalExtrema2d(large[:500, :500], 3, 3, maxNbExtrema=5))))
    assert set(counts) == {5}
    other = orvik_fd.harrisCorner2dImg_async(large[:20, :20], 2, progress=lambda fraction: gate.wait(60))
    for use in (other.wait, other.result, other.close, lambda: handle.wait(1)):
        begun = threading.Event()
        handle = orvik_fd.harrisCorner2dImg_async(large[:20, :20], 2, progress=lambda fraction: begun.wait() and use())
        begun.set()
        with pytest.raises(RuntimeError, match="a progress callback can't wait"):
            handle.result()
    gate.set()


@pytest.mark.parametrize("use", [
    lambda owner: {"inImg": owner}, lambda owner: {"outImg": owner}, lambda owner: {"progress": lambda fraction: owner},
    lambda owner: {"progress": lambda fraction: owner.refuse()}])
@pytest.mark.parametrize("ask", [lambda handle: None, lambda handle: handle.result()])
def test_whatHoldsItsHandleIsCollected(large, use, ask):
    def drop():
        owner = numpy.zeros((30, 30), numpy.float32).view(orvik_fd.LabelArray)  # which takes attributes
        owner.handle = orvik_fd.harrisCorner2dImg_async(**{"inImg": large[:30, :30], **use(owner)})
        with contextlib.suppress(AttributeError):
            ask(owner.handle)
        return weakref.ref(owner)

    alive = [drop(), drop()]
    time.sleep(0.3)
    orvik_fd.harrisCorner2dImg_async(large[:30, :30], 2).result()  # the next call gives back what earlier ones read
    gc.collect()
    assert [owner() for owner in alive] == [None, None]


@pytest.mark.parametrize("error, calls", [
    (ValueError, """extractLocalExtrema2d(small, -1, 1) ~ inFeaturesDistX: -1 is negative
        extractLocalExtrema2d(small, 1, 2**32) ~ inFeaturesDistY: 4294967296 is outside 0 to
        extractLocalExtrema2d(small, 1, 1, maxNbExtrema=2**64) ~ maxNbExtrema: .* outside
        extractLocalExtrema2d(small, 1, 1, localExtremumType=4) ~ localExtremumType: 4 .*eLET_Minima
        cannyEdges2dImg(gx, gx, 0, gx.copy(), lowThreshold=1, highThreshold=1) ~ outImg: ePOP_Labels .*not of float32
        cannyEdges2dImg(small, small, 7, lowThreshold=1, highThreshold=2) ~ inOptimizationPolicy: 7
        harrisCorner2d(small, -3, 3) ~ maxNbCorners: -3 is negative
        harrisCorner2d(small, 3, -3) ~ featuresDist: -3 is negative
        harrisCorner2dImg(small, 1e300) ~ inOptGradStdDev: 1e.300 is beyond
        forceInstructionSets("Canny", [0]) ~ className: no class Canny .*CannyEdges2dImgLvl3
        forceInstructionSets("CannyEdges2dImgLvl3", [6]) ~ no kernel of fma.*generic
        forceInstructionSets("CannyEdges2dImgLvl3", [3]) ~ sets: 3 is no eInstructionSet
        forceInstructionSets("CannyEdges2dImgLvl3", []) ~ 1 to 3 are expected, not 0
        releaseForcedInstructionSets("Canny") ~ className
        setNbThreads(-1) ~ n: -1"""),
    (TypeError, """extractLocalExtrema2d(small, 1.0, 1) ~ inFeaturesDistX: a whole number
        extractLocalExtrema2d(small, 1, 1, threshold="x") ~ threshold: a number
        extractLocalExtrema2d(small, 1, 1, localExtremumType=eInstructionSet(0)) ~ localExtremumType: .*eLocalExtremumType
        extractLocalExtrema2d(small, 1, 1, maximum=5) ~ extractLocalExtrema2d.* 'maximum'
        extractLocalExtrema2d(small, 1) ~ 'inFeaturesDistY'
        cannyEdges2dImg(small, small, lowThreshold=None, highThreshold=1) ~ lowThreshold
        harrisCorner2d(small, featuresDist=3) ~ maxNbCorners
        harrisCorner2d(small, maxNbCorners=3) ~ featuresDist
        harrisCorner2d(small, maxNbCorners=3, featuresDist=3, featuresDistX=3) ~ not both
        gaussianGradient2dImg(small) ~ stdDev
        harrisCorner2dImg(small, progress=3) ~ progress: .*not int
        houghLines2d_async(small).wait("long") ~ timeout: a number is expected, not 'long'
        setNbThreads(1.5) ~ float"""),
    (orvik_fd.Error, "houghLines2dImg(small, nbThetaBins=0) ~ 0 along theta"),
    (MemoryError, "houghLines2dImg(small, nbThetaBins=2**31 - 1, rhoStep=1e-6) ~ there is no memory"),
], ids=["ValueError", "TypeError", "Error", "MemoryError"])
def test_wrongArgumentsAreRefusedByName(run, error, calls):
    for call, text in (line.split(" ~ ") for line in calls.splitlines()):
        with pytest.raises(error, match=text):
            run(call.strip())


def test_helpTellsWhatAFunctionDoes():
    functions = [f for f in (getattr(orvik_fd, name) for name in orvik_fd.__all__) if inspect.isfunction(f)]
    assert len(functions) > 20
    for function in functions:
        text = inspect.getdoc(function)
        assert len(text) > 20, function.__name__
        for name, parameter in inspect.signature(function).parameters.items():
            assert name in text, f"{function.__name__} does not tell of {name}"
            assert parameter.annotation is not inspect.Parameter.empty
    assert orvik_fd.cannyEdges2dImg_async.__annotations__["return"] == orvik_fd.Handle[numpy.ndarray]
    assert str(inspect.signature(orvik_fd.maxL2Norm2Msr)).startswith("(in1: numpy.ndarray, in2: numpy.ndarray, *, progress")
