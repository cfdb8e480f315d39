"""The forms of a function: at once, in the background, for every plane. A function prepares a Run; these run it."""

from __future__ import annotations

import atexit
import functools
import inspect
import os
import threading
import types
import typing
from typing import Any, Callable, Generic, Optional, ParamSpec, Protocol, Tuple, TypeVar, Union

from . import _core
from ._core import Named
from ._core import Run as Run

__all__ = ["Handle"]

P = ParamSpec("P")
One = TypeVar("One")  #: what a function gives
Every = TypeVar("Every")  #: what its multiSlice_ form gives
T = TypeVar("T")


class ProgressBar(Protocol):
    """What a bar of tqdm has."""

    n: Any
    total: Any

    def update(self, n: Any = ...) -> Any: ...


#: Called with the fraction, from 0 to 1, of the current stage that is done, or a bar of tqdm, which then shows it.
Progress = Union[Callable[[float], Any], ProgressBar]

# Threads of the library must not come to the interpreter after its end.
atexit.register(_core.endAll)
os.register_at_fork(after_in_child=_core.forgetAll)

if not typing.TYPE_CHECKING:
    Run.__class_getitem__ = classmethod(types.GenericAlias)  # as the stub has it, for annotations that are looked at


def newRun(className: str, progress: Optional[Progress]) -> Run[Any, Any]:
    """A call of that class, not yet run."""
    return Run(className, None if progress is None else _callbackOf(progress))


class Handle(Generic[T]):
    """A call that runs in the background.

    It goes on when the handle is dropped. Arrays that it reads must not be changed until its end, those that it writes
    not be read. As a context manager it is closed at the end of the block.
    """

    def __init__(self, run: Run[Any, Any], everyPlane: bool, functionName: str):
        self._run: Optional[Run[Any, Any]] = run
        self._name = functionName
        self._result: Optional[Tuple[T]] = None
        self._lock = threading.RLock()  # a signal's handler may close this in the middle of result()
        run.start(everyPlane)

    def wait(self, timeout: Optional[float] = None) -> bool:
        """Waits for the end, at most `timeout` seconds. Whether the call has ended, well or not. Ctrl-C cancels it.

        Raises RuntimeError in a progress callback, which would hold up the threads that it waits for, unless the call has
        ended.
        """
        return self._open().wait(timeout)

    def done(self) -> bool:
        """Whether the call has ended, well or not."""
        return self._open().isDone()

    def result(self, timeout: Optional[float] = None) -> T:
        """Waits for the end and gives what the function itself would give; the same object each time.

        Raises TimeoutError when it takes longer than `timeout` seconds, and each time what the call failed with:
        CancelledError, if it was cancelled. Otherwise as wait().
        """
        run = self._open()
        if not run.wait(timeout):
            raise TimeoutError(f"{self._name} has not ended within {timeout} seconds")
        with self._lock:
            if self._result is None:
                self._result = (self._open().getResult(),)
            return self._result[0]

    def cancel(self) -> None:
        """Ends the call as soon as the lines in hand are done. Without effect on one that has ended."""
        self._open().cancel()

    def close(self) -> None:
        """Cancels the call unless it has ended, waits, and lets go of its arrays. Then only close() can be called."""
        run = self._run
        if run is not None and run.isOwn():
            run.cancel()
            run.wait(None)
        with self._lock:
            self._run = None
            self._result = None

    def __enter__(self) -> "Handle[T]":
        return self

    def __exit__(self, *exception: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        run = self._run
        state = "closed" if run is None else "foreign" if not run.isOwn() else "ended" if run.isDone() else "running"
        return f"<Handle of {self._name}, {state}>"

    def _open(self) -> Run[Any, Any]:
        run = self._run
        if run is None:
            raise ValueError(f"the handle of {self._name} is closed")
        return run


_handle: Any = Handle  # a type checker takes an index for a type that it must know


def foreground(prepare: Callable[P, Run[One, Every]]) -> Callable[P, One]:
    """The function itself."""

    def call(*args: P.args, **kwargs: P.kwargs) -> One:
        return prepare(*args, **kwargs).execute(False)  # type: ignore[no-any-return]

    return _dress(call, prepare, "{0}", lambda one, every: one)


def background(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Handle[One]]:
    """Its form in the background."""

    def call(*args: P.args, **kwargs: P.kwargs) -> Handle[One]:
        return Handle(prepare(*args, **kwargs), False, call.__name__)

    return _dress(call, prepare, "{0}_async", lambda one, every: _handle[one],
                  "In the background: gives a Handle, whose result() is that of {0}.")


def everyPlane(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Every]:
    """Its form for images of any number of planes."""
    return _every(prepare, "planes, of shape (y, x) to (t, c, z, y, x): each plane by itself. Gives a dictionary from (z, c, t)")


def everyVolume(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Every]:
    """Its form for images of any number of volumes."""
    return _every(prepare, "volumes, of shape (z, y, x) to (t, c, z, y, x): each volume by itself. Gives a dictionary from "
                           "(0, c, t)")


def _every(prepare: Callable[P, Run[One, Every]], ofWhat: str) -> Callable[P, Every]:
    def call(*args: P.args, **kwargs: P.kwargs) -> Every:
        return prepare(*args, **kwargs).execute(True)  # type: ignore[no-any-return]

    return _dress(call, prepare, "multiSlice_{0}", lambda one, every: every,
                  f"{{0}} for images of any number of {ofWhat} to lists. Otherwise as {{0}}:")


def everyPlaneBackground(prepare: Callable[P, Run[One, Every]]) -> Callable[P, Handle[Every]]:
    """Both."""

    def call(*args: P.args, **kwargs: P.kwargs) -> Handle[Every]:
        return Handle(prepare(*args, **kwargs), True, call.__name__)

    return _dress(call, prepare, "multiSlice_{0}_async", lambda one, every: _handle[every],
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
    return None if value is None else Named(name, value)


def _callbackOf(progress: Any) -> Any:
    if callable(progress):
        return progress
    if all(hasattr(progress, name) for name in ("update", "n", "total")):
        if progress.total is None:
            progress.total = 1
        return lambda fraction: progress.update(fraction * progress.total - progress.n)
    raise TypeError(f"progress: a callable or a bar of tqdm is expected, not {type(progress).__name__}")


def _dress(call: T, prepare: Callable[..., Any], name: str, returned: Callable[[Any, Any], Any], lead: str = "") -> T:
    """Gives a form the name, the types and the documentation that it is known by."""
    dressed: Any = call
    base = prepare.__name__.lstrip("_")
    inspect.unwrap(prepare).__qualname__ = base  # what messages about wrong arguments say
    functools.update_wrapper(dressed, prepare)
    dressed.__name__ = dressed.__qualname__ = name.format(base)
    dressed.__module__ = "orvik_fd"
    hints = typing.get_type_hints(prepare)
    hints["return"] = returned(*typing.get_args(hints["return"]))
    dressed.__annotations__ = hints
    signature = inspect.signature(prepare)
    dressed.__signature__ = signature.replace(
        parameters=[one.replace(annotation=hints[one.name]) for one in signature.parameters.values()],
        return_annotation=hints["return"])
    if lead:
        dressed.__doc__ = lead.format(base) + "\n\n" + (inspect.getdoc(prepare) or "")
    return call
