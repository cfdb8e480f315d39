"""Threads and instruction sets."""

from __future__ import annotations

import operator
from typing import Iterable, List, Union

from . import _core
from .enumerations import eInstructionSet, memberOf

__all__ = ["forceInstructionSets", "getNbThreads", "instructionSets", "releaseForcedInstructionSets", "setNbThreads"]


def instructionSets() -> List[eInstructionSet]:
    """The sets that this machine has, the plainest first. ORVIK_MAX_INSTRUCTION_SET in the environment hides those above."""
    return [eInstructionSet(number) for number in _core.instructionSets()]


def forceInstructionSets(className: str, sets: Union[eInstructionSet, Iterable[eInstructionSet]]) -> None:
    """Lets later runs of a class use its kernels of exactly these sets.

    Arguments:
        className: of Level 3, such as "CannyEdges2dImgLvl3".
        sets: one to three that a kernel needs together; one as a rule.

    A run on samples for which the class has no such kernel then fails with a message that says so. Not to be called while
    the class runs.

    Raises ValueError for a class that has no kernels, or none of these sets on this machine, with what there is in its
    text; TypeError for what is no name or set.
    """
    try:
        given = [sets] if isinstance(sets, int) else list(sets)
    except TypeError:
        raise TypeError(f"sets: members of eInstructionSet are expected, not {sets!r}") from None
    if None in given:
        raise TypeError("sets: members of eInstructionSet are expected, not None")
    _core.forceInstructionSets(_name(className), [memberOf(eInstructionSet, sets=one)["sets"] for one in given])


def releaseForcedInstructionSets(className: str) -> None:
    """Lets later runs of the Level 3 class className use its fastest kernels again."""
    _core.releaseForcedInstructionSets(_name(className))


def _name(className: str) -> str:
    if not isinstance(className, str):
        raise TypeError(f"className: a string is expected, not {className!r}")
    return className


def setNbThreads(n: int) -> None:
    """Lets later runs use up to n threads; 0 asks for ORVIK_NUM_THREADS in the environment, else one per processor."""
    number = operator.index(n)
    if not 0 <= number <= 1024:
        raise ValueError(f"n: {n} is outside 0 to 1024")
    _core.setNbThreads(number)


def getNbThreads() -> int:
    """Threads that a run may use."""
    return _core.getNbThreads()
