#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Draws the same words with zvex and with Pillow, in turn, into arrays in memory, and prints a Markdown table.

    scripts/python && PYTHONPATH=build/release/python python3 benchmarks/beside_pillow.py

A thread draws the words alone, then two threads share them. docs/performance.md says what is measured. With --answer it
is Pillow's side of `scripts/compare --titles`: it answers requests in lines (benchmarks/peers/README.md).
"""
import argparse
import os
import random
import statistics
import sys
import threading
import time

import numpy
import PIL
from PIL import Image, ImageDraw, ImageFilter, ImageFont

FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"
FILL, EDGE = "#ff8800", "#202020"
LOOKS = {"plain": "plain", "stroke": "stroke", "shadow": "stroke and blurred shadow"}


def unit_of(size):
    """The stroke's width, the blur's standard deviation, and how far the glyphs' shadow is moved down: pixels."""
    return size // 16


def distinct_words(count):
    chance = random.Random(1)
    parts = "ba ce di fo gu ha ji ko lu me na po qui ro se ta vu wy xa ze".split()
    words = set()
    while len(words) < count:
        words.add("".join(chance.choice(parts) for _ in range(chance.randint(2, 5))).capitalize())
    return sorted(words)


class Zvex:
    def __init__(self, size, look):
        import zvex  # pylint: disable=import-outside-toplevel
        unit = unit_of(size)
        looks = {} if look == "plain" else {"stroke": f"{unit}:{EDGE}"}
        if look == "shadow":
            looks["outer_shadow"] = f"angle=90,distance={unit},size={3 * unit},opacity=1"
        self.text = zvex.Text(font=FONT, size=size, color=FILL, **looks)

    def draw(self, word):
        return numpy.asarray(self.text.render(word))


class Pillow:
    """Every canvas fits its ink."""

    def __init__(self, size, look, layout):
        self.font = ImageFont.truetype(FONT, size, layout_engine=layout)
        self.unit = unit_of(size)
        self.stroke = 0 if look == "plain" else self.unit
        self.shadow = look == "shadow"

    def draw(self, word):
        left, top, right, bottom = self.font.getbbox(word, stroke_width=self.stroke, anchor="ls")
        reach = 3 * self.unit - self.stroke if self.shadow else 0  # of the blur beyond the stroke
        canvas = right - left + 2 * reach, bottom - top + 2 * reach
        at = reach - left, reach - top - (self.unit if self.shadow else 0)
        front = Image.new("RGBA", canvas)
        ImageDraw.Draw(front).text(at, word, FILL, self.font, "ls", stroke_width=self.stroke, stroke_fill=EDGE)
        if not self.shadow:
            return numpy.asarray(front)
        cast = Image.new("L", canvas)
        ImageDraw.Draw(cast).text((at[0], at[1] + self.unit), word, 255, self.font, "ls")
        picture = Image.new("RGBA", canvas)
        picture.putalpha(cast.filter(ImageFilter.GaussianBlur(self.unit)))
        picture.alpha_composite(front)
        return numpy.asarray(picture)


def check_same_ink(word, ours, theirs):
    """The ink's size within 2 pixels and 1 %, its amount within 5 %."""
    def ink(pixels):
        strong = pixels[..., 3] >= 64
        return numpy.array([numpy.ptp(numpy.nonzero(strong.any(axis))[0]) + 1 for axis in (0, 1)]), pixels[..., 3].sum()
    (size, amount), (their_size, their_amount) = ink(ours), ink(theirs)
    if (abs(size - their_size) > 2 + size / 100).any() or abs(amount / their_amount - 1) > 0.05:
        sys.exit(f"{word}: {size} and {amount} of ink, Pillow {their_size} and {their_amount}")


def rate(renderer, words):
    """Pictures for each second of the processor: other programs of the machine do not count."""
    began = time.thread_time()
    for word in words:
        renderer.draw(word)
    return len(words) / (time.thread_time() - began)


def rate_of_threads(make, words, count):
    """Pictures for each second that passes, and how many cores the threads got."""
    threads = []
    for i in range(count):
        renderer = make()
        threads.append(threading.Thread(target=lambda renderer=renderer, i=i: rate(renderer, words[i::count])))
    began, used = time.perf_counter(), time.process_time()
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    passed = time.perf_counter() - began
    return len(words) / passed, (time.process_time() - used) / passed


def answer(line, fonts):
    """Of `titles LOOK SIZE WAY WORD...` or `title FILE LOOK SIZE WAY WORD`."""
    kind, *rest = line.split()
    file = rest.pop(0) if kind == "title" else None
    look, size, _, *words = rest
    if look not in LOOKS:
        return "none"
    if (look, size) not in fonts:
        fonts[look, size] = Pillow(int(size), look, ImageFont.Layout.RAQM)
    renderer = fonts[look, size]
    if file is not None:
        pixels = renderer.draw(words[0])
        pixels.tofile(file)
        return f"written {pixels.shape[1]}"
    began = time.perf_counter()
    for word in words:
        renderer.draw(word)
    return str(1000 * (time.perf_counter() - began))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--words", type=int, default=2000, help="all different")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--sizes", type=int, nargs="+", default=[64], help="pixels")
    parser.add_argument("--answer", action="store_true", help="requests of scripts/compare on standard input")
    given = parser.parse_args()
    if given.answer:
        fonts = {}
        for line in sys.stdin:
            print(answer(line, fonts), flush=True)
        return
    import zvex  # pylint: disable=import-outside-toplevel
    words = distinct_words(given.words)
    load = os.getloadavg()[0]

    print(f"zvex {zvex.__version__}, Pillow {PIL.__version__}; {len(words)} words, median of {given.rounds} rounds\n")
    print("| Pictures a second of one core | zvex | Pillow | Pillow, no shaping | Ratio | Ratio, no shaping |")
    print("|---|--:|--:|--:|--:|--:|")
    for size in given.sizes:
        for look, called in LOOKS.items():
            renderers = [Zvex(size, look), Pillow(size, look, ImageFont.Layout.RAQM),
                         Pillow(size, look, ImageFont.Layout.BASIC)]
            for word in words[:50]:
                check_same_ink(word, renderers[0].draw(word), renderers[1].draw(word))
            rounds = [[rate(renderer, words) for renderer in renderers] for _ in range(given.rounds)]
            zv, shaped, plain = (statistics.median(rates) for rates in zip(*rounds))
            print(f"| {size} px, {called} | {zv:.0f} | {shaped:.0f} | {plain:.0f} | {zv / shaped:.1f} | {zv / plain:.1f} |", flush=True)

    print("\n| Threads | Pictures a second | Cores they got |\n|--:|--:|--:|")
    counts = (1, 2)
    rounds = [[rate_of_threads(lambda: Zvex(given.sizes[0], "shadow"), words, count) for count in counts]
              for _ in range(4 * given.rounds)]
    for count, results in zip(counts, zip(*rounds)):
        pictures, cores = max(results, key=lambda result: result[1])
        print(f"| {count} | {pictures:.0f} | {cores:.2f} |")
    print(f"\nWith the shadow; of {4 * given.rounds} rounds those in which other programs left the most. The machine has "
          f"{len(os.sched_getaffinity(0))} cores; its load was {load:.1f} at the start.")


if __name__ == "__main__":
    main()
