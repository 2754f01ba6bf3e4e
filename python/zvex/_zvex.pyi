# SPDX-License-Identifier: Apache-2.0
from typing import Any, Dict, List, Tuple

__version__: str

class Pixels:
    """(height, width, 4) or (height, width) bytes that buffers and arrays may refer to."""
    __array_interface__: Dict[str, Any]
    def __buffer__(self, flags: int) -> memoryview: ...

class Span:
    start: int
    end: int
    box: Tuple[float, float, float, float]
    baseline: int

class Text:
    def __init__(self, json: str, fonts: Dict[str, bytes]) -> None: ...

class Picture(Pixels):
    width: int
    height: int
    baseline: int
    origin: Tuple[int, int]
    margins: Tuple[int, int, int, int]
    lines: List[Span]
    clusters: List[Span]
    warnings: List[str]
    def __init__(self, text: Text, utf8: bytes, draws: bool) -> None: ...
    def premultiplied(self) -> Pixels: ...
    def coverage(self) -> Pixels: ...
    def _encode(self, format: str, dpi: float, compression: bytes) -> bytes: ...
    def __bytes__(self) -> bytes: ...

def fonts(utf8: bytes) -> List[str]: ...

def options() -> Dict[str, str]:
    """The keywords of render, and what each does and takes."""

def presets() -> List[str]:
    """The styles that `preset` takes."""

def schema() -> str: ...
