"""Threads and instruction sets."""

import pathlib
import re

import numpy
import orvik_fd
import pytest

HEADERS = pathlib.Path(__file__).resolve().parents[2] / "frame"


def test_forcingReachesTheKernels(small):
    avx, sets = orvik_fd.eInstructionSet.eIS_Avx, orvik_fd.instructionSets()
    assert sets[0] == orvik_fd.eInstructionSet.eIS_Generic
    orvik_fd.forceInstructionSets("CannyEdges2dImgLvl3", sets[:1])
    orvik_fd.releaseForcedInstructionSets("CannyEdges2dImgLvl3")
    if avx not in sets:
        pytest.skip("this machine has no AVX")
    orvik_fd.forceInstructionSets("CannyEdges2dImgLvl3", avx)
    whole = small.astype(numpy.int16)  # AVX serves floats alone
    with pytest.raises(orvik_fd.Error, match="avx"):
        orvik_fd.cannyEdges2dImg(whole, whole, lowThreshold=5, highThreshold=10)
    orvik_fd.releaseForcedInstructionSets("CannyEdges2dImgLvl3")
    orvik_fd.cannyEdges2dImg(whole, whole, lowThreshold=5, highThreshold=10)


@pytest.mark.parametrize("call, error, text", [
    (lambda: orvik_fd.forceInstructionSets("Canny", [0]), ValueError, "className: no class Canny .*CannyEdges2dImgLvl3"),
    (lambda: orvik_fd.forceInstructionSets("CannyEdges2dImgLvl3", [6]), ValueError, "no kernel of fma.*generic"),
    (lambda: orvik_fd.forceInstructionSets("CannyEdges2dImgLvl3", [3]), ValueError, "sets: 3 is no eInstructionSet"),
    (lambda: orvik_fd.forceInstructionSets("CannyEdges2dImgLvl3", []), ValueError, "1 to 3 are expected, not 0"),
    (lambda: orvik_fd.releaseForcedInstructionSets("Canny"), ValueError, "className"),
    (lambda: orvik_fd.setNbThreads(-1), ValueError, "n: -1"),
    (lambda: orvik_fd.setNbThreads(1.5), TypeError, "float"),
])
def test_whatCanNotBeForcedIsRefused(call, error, text):
    with pytest.raises(error, match=text):
        call()


def test_threadsAreSet():
    orvik_fd.setNbThreads(3)
    assert orvik_fd.getNbThreads() == 3
    orvik_fd.setNbThreads(0)
    assert orvik_fd.getNbThreads() >= 1


def test_enumerationsAreThoseOfTheLibrary():
    text = (HEADERS / "attr" / "Enumerations.h").read_text() + (HEADERS / "core" / "InstructionSet.h").read_text()
    ofLibrary = {
        name: {member: int(value) for member, value in re.findall(r"(\w+) = (\d+)", body)}
        for name, body in re.findall(r"enum (\w+) : [\w ]+\n\{(.*?)\};", text, re.DOTALL)
    }
    ofPackage = {
        name: {member.name: int(member) for member in getattr(orvik_fd, name)}
        for name in orvik_fd.__all__ if name[0] == "e" and name[1].isupper()
    }
    assert len(ofPackage) == 5
    for name, members in ofPackage.items():
        assert ofLibrary[name] == members
