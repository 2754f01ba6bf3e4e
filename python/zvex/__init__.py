# SPDX-License-Identifier: Apache-2.0
"""Text with layer effects: strokes, shadows, glows, gradients, patterns, bevels.

    >>> import numpy, zvex
    >>> picture = zvex.render("Gold", font="DejaVu Sans:bold", size=96, preset="gold")
    >>> picture.save("gold.png")
    >>> numpy.asarray(picture).shape  # rows, columns; red, green, blue, alpha
    (119, 283, 4)

Keywords are the options of ``zvtext render`` with ``_`` for ``-``; ``help(zvex.render)`` lists them. Lengths are
pixels, y grows downwards. Offsets into a text count code points, as Python's own do.
"""
from __future__ import annotations

import contextlib
import inspect
import json
import math
import numbers
import os
import re
import secrets
from collections import deque
from concurrent.futures import Future, ThreadPoolExecutor
from typing import TYPE_CHECKING, Any, Deque, Dict, Iterable, Iterator, List, Mapping, Optional, Tuple, Union

from . import _zvex
from ._zvex import Pixels, Span, __version__, options, presets

if TYPE_CHECKING:
    from PIL.Image import Image  # type: ignore[import]

__all__ = ["Error", "Picture", "Pixels", "Span", "Text", "__version__", "fonts", "map", "options", "presets", "render",
           "schema"]

Font = Union[str, bytes, "os.PathLike[str]"]
Path = Union[str, "os.PathLike[str]"]


class Error(ValueError):
    """What is wrong: `option` is the keyword, and what lies in it ("stroke width"); `reason` says why."""

    def __init__(self, option: str, reason: str) -> None:
        super().__init__(option, reason)
        self.option = option
        self.reason = reason

    def __str__(self) -> str:
        return f"{self.option}: {self.reason}"


class Picture(_zvex.Picture):
    """A rendered text.

    `numpy.asarray(picture)` is (height, width, 4) uint8: red, green, blue and alpha, not premultiplied, in the
    picture's own memory, which must not be written. `width`, `height`, `origin` (where the first line begins, on
    its baseline), `baseline` and `margins` (left, top, right, bottom: what the effects take around the text) are
    pixels. `lines` and `clusters` are Spans: `start` and `end` in the text, `box`, `baseline`. `premultiplied()`
    has the same pixels with colours multiplied by alpha, `coverage()` the glyphs alone, (height, width) uint8.
    `warnings` names characters that no font has. A measured one has no rows of pixels.
    """

    def encode(self, format: str = "png", *, dpi: float = 72, compression: str = "default") -> bytes:
        """The content of a file: "png" or "webp" (lossless). `dpi`, 1 to 10000, is noted in a PNG. `compression` is
        "fast", "default" or "small"."""
        kind = str(format).lower()
        if kind not in ("png", "webp"):
            raise Error("format", f"{format!r} is not png or webp")
        if not isinstance(dpi, numbers.Real) or not 1 <= dpi <= 10000:
            raise Error("dpi", f"{dpi!r} is not a number from 1 to 10000")
        return self._encode(kind, float(dpi), str(compression).encode("utf-8", "replace"))

    def save(
        self, path: Path, *, format: Optional[str] = None, dpi: float = 72, compression: str = "default"
    ) -> None:
        """Writes what `encode` makes, in the format of the path's ending if none is given. The file appears when
        it is complete, and keeps the mode of the one that it replaces. Links are followed; devices and FIFOs are
        written to."""
        try:
            name = os.fsdecode(path)
        except TypeError as error:
            raise Error("path", str(error)) from None
        data = self.encode(format or os.path.splitext(name)[1][1:] or "png", dpi=dpi, compression=compression)
        try:
            _write(name, data)
        except (OSError, ValueError) as error:
            raise Error("path", f"cannot write {name!r}: {getattr(error, 'strerror', error)}") from None

    def to_pil(self) -> "Image":
        """A Pillow image, mode RGBA, with pixels of its own."""
        from PIL import Image  # type: ignore[import]

        pixels = bytes(self)
        if not pixels:
            raise Error("picture", "it was measured, not drawn")
        return Image.frombuffer("RGBA", (self.width, self.height), pixels, "raw", "RGBA", 0, 1)

    def _repr_png_(self) -> bytes:
        return self.encode()


def _write(name: str, data: bytes) -> None:
    there = os.path.exists(name)
    if os.path.islink(name) and not there:
        raise ValueError("it is a link that leads to no file")
    if there and not os.path.isfile(name):
        with open(name, "wb") as stream:
            stream.write(data)
        return
    target = os.path.realpath(name)
    mode = os.stat(target).st_mode & 0o777 if there else 0o666
    part = os.path.join(os.path.dirname(target), f".zvex-{secrets.token_hex(8)}.part")
    try:
        with open(part, "xb", opener=lambda path, flags: os.open(path, flags, mode)) as file:
            if there:
                os.chmod(file.fileno(), mode)  # whatever the umask
            file.write(data)
        os.replace(part, target)
    finally:
        with contextlib.suppress(OSError, ValueError):
            os.unlink(part)


def _plain(value: Any) -> Any:
    """What json cannot write by itself: paths, and numbers of array libraries."""
    if isinstance(value, os.PathLike):
        return os.fspath(value)
    if getattr(value, "ndim", None) == 0:
        return value.item()
    raise TypeError(f"{type(value).__name__} is not a string, a number, a list or a dict")


def _number(text: str) -> Union[int, List[str]]:
    """A list for infinity and NaN, which no option takes."""
    value = float(text)
    return int(text) if math.isfinite(value) else [str(value)]


def _read(given: Mapping[str, Any]) -> Tuple[str, Dict[str, bytes]]:
    """The options as a JSON object, and the fonts that were given as bytes under the names they have there."""
    data: Dict[str, bytes] = {}

    def named(value: Any) -> Any:
        if isinstance(value, str):
            return value
        try:
            copied = bytes(memoryview(value))
        except TypeError:
            return value
        name = f"bytes {len(data)}"
        data[name] = copied
        return name

    values: Dict[str, Any] = {}
    for option, value in given.items():
        try:
            if option == "font":
                value = named(value)
            if option == "fallback" and value is not None:
                value = [named(one) for one in value] if isinstance(value, (list, tuple)) else [named(value)]
            text = json.dumps(value, default=_plain, ensure_ascii=False)
            (option + text).encode("utf-8")
            values[option.replace("_", "-")] = json.loads(text, parse_int=_number, parse_constant=_number)
        except UnicodeEncodeError:
            raise Error(option, "it has a lone surrogate") from None
        except (TypeError, ValueError, RecursionError) as error:
            raise Error(option, str(error)) from None
    return json.dumps(values, ensure_ascii=False), data


def _utf8(text: str) -> bytes:
    if not isinstance(text, str):
        raise Error("text", f"{type(text).__name__} is not a str")
    try:
        return text.encode("utf-8")
    except UnicodeEncodeError as error:
        raise Error("text", f"it has a lone surrogate at {error.start}") from None


class Text:
    """Options for many texts. What the pictures share is kept between them: fonts, buffers.

    >>> title = zvex.Text(font="DejaVu Sans:bold", size=64, stroke="4:#202020")
    >>> pictures = [title.render(word) for word in ("one", "two")]

    Threads that share one wait for each other; give each its own.
    """

    def __init__(self, *, font: Font, **given: Any) -> None:
        try:
            self._text = _zvex.Text(*_read({"font": font, **given}))
        except Error as error:
            raise Error(error.option, re.sub(r'\["(nan|-?inf)"\]', r"\1", error.reason)) from None

    def render(self, text: str) -> Picture:
        """The picture of the text. Other threads run meanwhile."""
        return Picture(self._text, _utf8(text), True)

    def measure(self, text: str) -> Picture:
        """The same without pixels: size, margins, lines and clusters. `trim` has no effect."""
        return Picture(self._text, _utf8(text), False)


def render(text: str, *, font: Font, **given: Any) -> Picture:
    """The picture of `text`, which may have several lines.

    `font` is a file's path, a name such as "Noto Serif:bold", or a font file's bytes; `fallback` one or a list
    of them. `style` is a dict, a JSON string or a file's path, an effect a string or a dict. Raises Error, which
    names the option, and MemoryError. The keywords:
    """
    return Text(font=font, **given).render(text)


render.__doc__ = inspect.cleandoc(render.__doc__ or "") + "\n\n" + "\n".join(
    f"{name}: {what}" for name, what in options().items())


def fonts(text: str) -> List[str]:
    """The system's fonts that have all characters of the text, best first, eight at most."""
    return _zvex.fonts(_utf8(text))


def schema() -> Dict[str, Any]:
    """The JSON Schema of styles."""
    result: Dict[str, Any] = json.loads(_zvex.schema())
    return result


def map(jobs: Iterable[Mapping[str, Any]], *, workers: Optional[int] = None) -> Iterator[Picture]:
    """The pictures of `jobs`, dicts of render's arguments, in their order, drawn by several threads.

    `workers` is as many as the cores that the process may use; 0 means that, too. Four jobs for each are under way at the most, so
    that the memory does not grow with their number. The first error is raised in its place and ends it.
    """
    if workers is not None and (not isinstance(workers, numbers.Integral) or workers < 0):
        raise Error("workers", f"{workers!r} is not a number of threads")
    count = workers or len(os.sched_getaffinity(0))
    pending: Deque[Future[Picture]] = deque()
    with ThreadPoolExecutor(count) as pool:
        try:
            for job in jobs:
                if len(pending) == 4 * count:
                    yield pending.popleft().result()
                pending.append(pool.submit(_render_job, job))
            while pending:
                yield pending.popleft().result()
        finally:
            for future in pending:
                future.cancel()


def _render_job(job: Mapping[str, Any]) -> Picture:
    try:
        return render(**job)
    except TypeError as error:  # it is no mapping, or lacks the text or the font
        raise Error("jobs", str(error)) from None
