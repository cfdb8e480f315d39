"""The forms of a function: at once, in the background, for every plane. A function prepares a Run; these run it."""

from __future__ import annotations

import atexit
import functools
import inspect
from typing import Any, Callable, Generic, Optional, ParamSpec, Tuple, TypeVar, Union

from . import _core
from ._core import Run as Run

P = ParamSpec("P")
One = TypeVar("One")  #: what a function gives
Every = TypeVar("Every")  #: what its multiSlice_ form gives
T = TypeVar("T")

#: Called with the fraction, from 0 to 1, of the current stage that is done, or a bar of tqdm, which then shows it.
Progress = Union[Callable[[float], Any], Any]

# Threads of the library must not come to the interpreter after its end.
atexit.register(_core.endAll)


def newRun(className: str, progress: Optional[Progress]) -> Run[Any, Any]:
    """A call of that class, not yet run."""
    return Run(className, None if progress is None else _callbackOf(progress))


class Handle(Generic[T]):
    """A call that runs in the background.

    It goes on when the handle is dropped. Arrays that it reads must not be changed until its end, those that it writes
    not be read. As a context manager it is closed at the end of the block.
    """

    def __init__(self, run: "Run[Any, Any]", everyPlane: bool, functionName: str):
        self._run: Optional[Run[Any, Any]] = run
        self._name = functionName
        self._result: Optional[Tuple[T]] = None
        run.start(everyPlane)

    def wait(self, timeout: Optional[float] = None) -> bool:
        """Waits for the end, at most `timeout` seconds. Whether the call has ended, well or not. Ctrl-C cancels it."""
        return self._open().wait(timeout)

    def done(self) -> bool:
        """Whether the call has ended, well or not."""
        return self._open().isDone()

    def result(self, timeout: Optional[float] = None) -> T:
        """Waits for the end and gives what the function itself would give; the same object each time.

        Raises TimeoutError when it takes longer than `timeout` seconds, and each time what the call failed with:
        CancelledError, if it was cancelled. Ctrl-C cancels the call.
        """
        run = self._open()
        if self._result is None:
            if not run.wait(timeout):
                raise TimeoutError(f"{self._name} has not ended within {timeout} seconds")
            self._result = (run.getResult(),)
        return self._result[0]

    def cancel(self) -> None:
        """Ends the call as soon as the lines in hand are done. Without effect on one that has ended."""
        self._open().cancel()

    def close(self) -> None:
        """Cancels the call unless it has ended, waits, and lets go of its arrays. Then only close() can be called."""
        if self._run is not None:
            self._run.cancel()
            self._run.wait(None)
            self._run = None
            self._result = None

    def __enter__(self) -> "Handle[T]":
        return self

    def __exit__(self, *exception: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "closed" if self._run is None else "ended" if self._run.isDone() else "running"
        return f"<Handle of {self._name}, {state}>"

    def _open(self) -> "Run[Any, Any]":
        if self._run is None:
            raise ValueError(f"the handle of {self._name} is closed")
        return self._run


def foreground(prepare: Callable[P, Run[One, Every]]) -> Callable[P, One]:
    """The function itself."""

    def call(*args: P.args, **kwargs: P.kwargs) -> One:
        return prepare(*args, **kwargs).execute(False)  # type: ignore[no-any-return]

    return _dress(call, prepare, "{0}", "")


def background(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Handle[One]]:
    """Its form in the background."""

    def call(*args: P.args, **kwargs: P.kwargs) -> Handle[One]:
        return Handle(prepare(*args, **kwargs), False, call.__name__)

    return _dress(call, prepare, "{0}_async", "In the background: gives a Handle, whose result() is that of {0}.")


def everyPlane(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Every]:
    """Its form for images of any number of planes."""

    def call(*args: P.args, **kwargs: P.kwargs) -> Every:
        return prepare(*args, **kwargs).execute(True)  # type: ignore[no-any-return]

    return _dress(call, prepare, "multiSlice_{0}",
                  "{0} for an image of any number of planes: gives a dictionary from (z, c, t) to lists.")


def everyPlaneBackground(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Handle[Every]]:
    """Both."""

    def call(*args: P.args, **kwargs: P.kwargs) -> Handle[Every]:
        return Handle(prepare(*args, **kwargs), True, call.__name__)

    return _dress(call, prepare, "multiSlice_{0}_async",
                  "In the background: gives a Handle, whose result() is that of multiSlice_{0}.")


def shortForms(*forms: Tuple[str, ...], unless: Tuple[str, ...]) -> Callable[[Callable[P, T]], Callable[P, T]]:
    """Lets a function be called with fewer positional arguments that mean others than its first ones.

    A form is taken when it has as many names as there are positional arguments, and none of its names nor of those in
    `unless`, which the long form alone has, is a keyword.
    """

    def decorate(function: Callable[P, T]) -> Callable[P, T]:
        @functools.wraps(function)
        def call(*args: P.args, **kwargs: P.kwargs) -> T:
            for form in forms:
                if len(args) == len(form) and not any(name in kwargs for name in (*form, *unless)):
                    return function(**dict(zip(form, args)), **kwargs)  # type: ignore[call-arg, arg-type]
            return function(*args, **kwargs)

        return call

    return decorate


def named(name: str, value: Any) -> Any:
    """A leaf's value that comes from an argument of another name, which messages then tell."""
    return None if value is None else (name, value)


def _callbackOf(progress: Any) -> Any:
    if callable(progress):
        return progress
    if hasattr(progress, "update") and hasattr(progress, "n"):
        if progress.total is None:
            progress.total = 1
        return lambda fraction: progress.update(fraction * progress.total - progress.n)
    raise TypeError(f"progress: a callable or a bar of tqdm is expected, not {type(progress).__name__}")


def _dress(call: T, prepare: Callable[..., Any], name: str, lead: str) -> T:
    """Gives a form the name and the documentation that it is known by."""
    dressed: Any = call
    base = prepare.__name__.lstrip("_")
    inspect.unwrap(prepare).__qualname__ = base  # what messages about wrong arguments say
    functools.update_wrapper(dressed, prepare)
    dressed.__name__ = dressed.__qualname__ = name.format(base)
    dressed.__module__ = "orvik_fd"
    # What a call gives is told by its own form; the arguments are those of all.
    dressed.__signature__ = inspect.signature(prepare).replace(return_annotation=inspect.Signature.empty)
    if lead:
        dressed.__doc__ = lead.format(base) + "\n\n" + (inspect.getdoc(prepare) or "")
    return call
