#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Pictures of words for training text recognition, with boxes of words and characters.

    python3 ocr_data.py --count 1000 --seed 7 --output data

Writes data/images/*.png and data/labels.json, which has COCO's keys: images, annotations (bbox as [left, top,
width, height] in pixels, the text beside it) and the categories "word" and "character". The same seed, fonts
and words give the same bytes.
"""
import argparse
import json
import pathlib
import random
import sys
import time

import zvex

WORDS = """the of and text light window river morning Grüße façade naïve Straße 2026 £9.99 North-East coffee
open daily station platform exit garden summer winter silver golden quiet electric paper northern""".split()
FONTS = ["DejaVu Sans", "DejaVu Sans:bold", "DejaVu Serif", "DejaVu Serif:bold", "DejaVu Sans Mono"]


def color(chance: random.Random, low: int, high: int) -> str:
    return "#" + "".join(f"{chance.randint(low, high):02x}" for _ in range(3))


def look(chance: random.Random) -> dict:
    """A random style: ink, a ground, and none to two effects or a preset."""
    dark = chance.random() < 0.5
    ink, ground = ((0, 110), (170, 255)) if dark else ((170, 255), (0, 90))
    options: dict = {"canvas": color(chance, *ground), "size": chance.randint(18, 72)}
    if chance.random() < 0.3:
        return {**options, "preset": chance.choice(list(zvex.presets()))}
    options["color"] = color(chance, *ink)
    if chance.random() < 0.4:
        options["stroke"] = f"{chance.randint(1, 3)}:{color(chance, *ink)}"
    if chance.random() < 0.4:
        options["outer_shadow"] = f"angle={chance.randrange(360)},distance={chance.randint(1, 4)},size={chance.randint(0, 6)}"
    return options


def corners(box: tuple) -> list:
    left, top, right, bottom = box
    return [round(v, 2) for v in (left, top, right - left, bottom - top)]


def labels(picture: zvex.Picture, text: str) -> list:
    """A box for each word and character, from those of the clusters."""
    found = []
    clusters = [(c, text[c.start:c.end]) for c in picture.clusters if text[c.start:c.end].strip()]
    for cluster, characters in clusters:
        found.append((2, characters, cluster.box))
    at = 0
    for word in text.split():
        start = text.index(word, at)
        at = start + len(word)
        boxes = [c.box for c, _ in clusters if start <= c.start < at]
        if boxes:
            found.append((1, word, (min(b[0] for b in boxes), min(b[1] for b in boxes),
                                    max(b[2] for b in boxes), max(b[3] for b in boxes))))
    return found


def job(chance: random.Random, words: list, fonts: list) -> dict:
    text = " ".join(chance.choice(words) for _ in range(chance.randint(1, 4)))
    return {"text": text, "font": chance.choice(fonts), "padding": chance.randint(0, 12), **look(chance)}


def make(given: argparse.Namespace) -> int:
    """The pictures and their labels; returns how many boxes."""
    words = given.words.read_text("utf-8").split() if given.words else WORDS
    if not words:
        raise ValueError(f"--words: {given.words} has none")
    chance = random.Random(given.seed)
    jobs = [job(chance, words, given.font or FONTS) for _ in range(given.count)]
    (given.output / "images").mkdir(parents=True, exist_ok=True)
    images: list = []
    annotations: list = []
    for number, picture in enumerate(zvex.map(jobs), 1):
        name = f"{number:06}.png"
        picture.save(given.output / "images" / name)
        images.append({"id": number, "file_name": name, "width": picture.width, "height": picture.height})
        for category, text, box in labels(picture, jobs[number - 1]["text"]):
            annotations.append({"id": len(annotations) + 1, "image_id": number, "category_id": category,
                                "bbox": corners(box), "iscrowd": 0, "text": text})
        if sys.stderr.isatty() and number % 50 == 0:
            print(f"\r{number} of {given.count}", end="", file=sys.stderr)
    (given.output / "labels.json").write_text(json.dumps(
        {"images": images, "annotations": annotations,
         "categories": [{"id": 1, "name": "word"}, {"id": 2, "name": "character"}]}, ensure_ascii=False), "utf-8")
    return len(annotations)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=100, help="pictures to make")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--output", type=pathlib.Path, default=pathlib.Path("ocr-data"))
    parser.add_argument("--words", type=pathlib.Path, help="a file with a word on each line, in place of the built-in ones")
    parser.add_argument("--font", action="append", help="a font's file or name; give it again for more")
    given = parser.parse_args()
    if given.count < 1:
        parser.error(f"--count: {given.count} is not 1 or more")
    began = time.monotonic()
    try:
        boxes = make(given)
    except (OSError, ValueError) as error:
        sys.exit(f"{parser.prog}: {error}")
    print(f"{given.count} pictures, {boxes} boxes in {time.monotonic() - began:.1f} s: {given.output}")


if __name__ == "__main__":
    main()
