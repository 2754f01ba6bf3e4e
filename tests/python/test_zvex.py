# SPDX-License-Identifier: Apache-2.0
# The module against zvtext, against wrong arguments of every kind, and under threads and processes.
# ZVTEXT is the program; ZVEX_TEST_RENDERS how long the searches for leaks and crashes are (3,000).
import gc
import json
import math
import multiprocessing
import os
import pathlib
import random
import re
import resource
import subprocess
import threading

import numpy
import pytest

import zvex

FONT = "DejaVu Sans:bold"
ZVTEXT = os.environ["ZVTEXT"]
RENDERS = int(os.environ.get("ZVEX_TEST_RENDERS", "3000"))
SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"


def raw(folder, *arguments):
    """The picture that zvtext makes, as its rows, and what it says of it."""
    environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
    subprocess.run([ZVTEXT, "render", *arguments, "--format", "raw", "-o", folder / "p", "--metrics", folder / "m"],
                   check=True, stdout=subprocess.DEVNULL, env=environment)
    metrics = json.loads((folder / "m").read_text())
    pixels = numpy.frombuffer((folder / "p").read_bytes(), numpy.uint8)
    return pixels.reshape(metrics["height"], metrics["width"], 4), metrics


@pytest.mark.parametrize("preset", sorted(zvex.presets()))
def test_presets_are_those_of_the_program(tmp_path, preset):
    expected, _ = raw(tmp_path, "Preset ß", "--font", FONT, "--size", "60", "--preset", preset)
    assert numpy.array_equal(zvex.render("Preset ß", font=FONT, size=60, preset=preset), expected)


OPTIONS = [
    {"stroke": "4:#202020", "outer_shadow": "angle=100,size=9", "color": "#f80"},
    {"style": {"effects": [{"type": "bevel", "size": 5}]}, "padding": "3,4", "letter_spacing": 0.1},
    {"width": 200, "align": "center", "max_lines": 2, "canvas": "#123456", "trim": True},
    {"fallback": ["DejaVu Serif", "DejaVu Sans Mono"], "no_fallback": True, "scale": 1.5, "opacity": "50%"},
    {"style": '\n// red\n{"color": "#f00"}'},
    {"text_rendering": "plain", "background": "#eee", "gravity": "bottom", "height": 200},
]


@pytest.mark.parametrize("given", OPTIONS, ids=lambda given: next(iter(given)))
def test_options_are_those_of_the_program(tmp_path, given):
    words = []
    for name, value in given.items():
        for one in value if isinstance(value, list) else [value]:
            flag = "--" + name.replace("_", "-")
            words += [flag] if one is True else [flag, json.dumps(one) if isinstance(one, dict) else str(one)]
    expected, metrics = raw(tmp_path, "Two words\nand a line", "--font", FONT, "--size", "40", *words)
    picture = zvex.render("Two words\nand a line", font=FONT, size=40, **given)
    assert numpy.array_equal(picture, expected)
    assert picture.margins == tuple(metrics["margins"][side] for side in ("left", "top", "right", "bottom"))
    assert picture.baseline == metrics["baseline"]


def test_a_font_is_a_path_a_name_or_bytes(tmp_path):
    data = open(SANS, "rb").read()
    by_name = numpy.asarray(zvex.render("Aß", font=FONT))
    for font in (SANS, pathlib.Path(SANS), data, bytearray(data), memoryview(data), numpy.frombuffer(data, numpy.uint8)):
        assert numpy.array_equal(zvex.render("Aß", font=font), by_name)
    assert numpy.array_equal(zvex.render("Aß", font=FONT, fallback=None), by_name)
    alone = zvex.render("Aß", font=data, fallback=[open(SANS, "rb").read()], no_fallback=True)
    assert numpy.array_equal(alone, by_name)


def test_arrays_share_the_pictures_memory():
    picture = zvex.render("Shared", font=FONT, color="#ff8000")
    array = numpy.asarray(picture)
    assert array.shape == (picture.height, picture.width, 4) and array.dtype == numpy.uint8
    assert array.ctypes.data == numpy.asarray(picture).ctypes.data
    inside = array[array[..., 3] == 255]
    assert len(inside) > 100 and (inside == [255, 128, 0, 255]).all()
    with pytest.raises(ValueError):
        array[0, 0, 0] = 1
    given = picture.__array_interface__
    assert given["shape"] == array.shape and given["data"] == (array.ctypes.data, True)
    del picture
    gc.collect()
    assert (array[array[..., 3] == 255] == inside).all()  # the array keeps the memory


def test_premultiplied_and_coverage():
    picture = zvex.render("Soft", font=FONT, color="#80ff8000", opacity=0.5)
    straight = numpy.asarray(picture).astype(int)
    multiplied = numpy.asarray(picture.premultiplied()).astype(int)
    alpha = straight[..., 3:]
    assert (multiplied[..., 3:] == alpha).all()
    assert (abs(multiplied[..., :3] * 255 - straight[..., :3] * alpha) <= 128).all()
    bare = zvex.render("Soft", font=FONT)
    shadowed = zvex.render("Soft", font=FONT, outer_shadow="distance=9,size=20")
    left, top, right, bottom = shadowed.margins
    mask = numpy.asarray(shadowed.coverage())
    assert mask.shape == (shadowed.height, shadowed.width)
    inner = mask[top:mask.shape[0] - bottom, left:mask.shape[1] - right]
    assert numpy.array_equal(inner, numpy.asarray(bare)[..., 3]) and mask.sum() == inner.sum()


def test_boxes_count_code_points():
    text = "a😀é\nمرحبا x"
    picture = zvex.render(text, font=FONT, size=50)
    assert [text[line.start:line.end] for line in picture.lines] == ["a😀é", "مرحبا x"]
    assert sorted({text[c.start] for c in picture.clusters}) == sorted(set(text) - {"\n"})
    ink = numpy.asarray(picture)[..., 3]
    for cluster in picture.clusters:
        left, top, right, bottom = cluster.box
        if text[cluster.start].isspace():
            continue
        assert ink[math.floor(top):math.ceil(bottom), math.floor(left):math.ceil(right)].any()


def test_files_and_notebooks(tmp_path):
    from PIL import Image
    import io
    picture = zvex.render("Saved", font=FONT, preset="gold")
    for name in ("p.png", "p.webp"):
        picture.save(tmp_path / name, compression="small")
        small = (tmp_path / name).stat().st_size
        picture.save(tmp_path / name)
        assert small < (tmp_path / name).stat().st_size
        assert numpy.array_equal(Image.open(tmp_path / name).convert("RGBA"), picture)
    assert numpy.array_equal(picture.to_pil(), picture)
    assert numpy.array_equal(Image.open(io.BytesIO(picture._repr_png_())), picture)
    assert picture.encode(dpi=numpy.float32(72)) == picture.encode()
    for name, given in [("p.gif", {}), (None, {}), ("missing/p.png", {}), ("a\0", {}), ("a\ud800", {}), ("p", {"format": 7}),
                        *[("p.png", {"dpi": dpi}) for dpi in (0, -1, math.nan, 1e300, 10**400, None, "x")]]:
        with pytest.raises(zvex.Error):
            picture.save(name and tmp_path / name, **given)
    wide = zvex.render("x", font=FONT, width=20000, size=8)
    wide.save(tmp_path / "wide.png")
    with pytest.raises(zvex.Error):
        wide.save(tmp_path / "wide.webp")
    with pytest.raises(zvex.Error, match="compression: 'tiny' is not one of"):
        wide.save(tmp_path / "wide.png", compression="tiny")
    assert sorted(p.name for p in tmp_path.iterdir()) == ["p.png", "p.webp", "wide.png"]


def test_saving_over_files_links_and_pipes(tmp_path):
    picture = zvex.render("Saved", font=FONT, size=20)
    private, link, nowhere, pipe = (tmp_path / name for name in ("private.png", "link.png", "nowhere.png", "pipe.png"))
    private.touch(mode=0o600)
    link.symlink_to("private.png")
    nowhere.symlink_to("missing.png")
    os.mkfifo(pipe)
    read = []
    reader = threading.Thread(target=lambda: read.append(pipe.read_bytes()), daemon=True)
    reader.start()
    for path in link, pipe:
        picture.save(path)
    reader.join(60)
    assert read == [private.read_bytes()] == [picture.encode()] and pipe.is_fifo()
    assert link.is_symlink() and private.stat().st_mode & 0o777 == 0o600
    for path in nowhere, tmp_path:
        with pytest.raises(zvex.Error, match="cannot write"):
            picture.save(path)
    assert len(list(tmp_path.iterdir())) == 4


def test_a_measured_picture_has_no_pixels():
    measured, drawn = (getattr(zvex.Text(font=FONT, outer_shadow="size=9"), way)("Size") for way in ("measure", "render"))
    assert (measured.width, measured.height, measured.margins) == (drawn.width, drawn.height, drawn.margins)
    assert numpy.asarray(measured).shape == (0, drawn.width, 4) and not bytes(measured.premultiplied())
    assert bytes(measured.coverage()) == bytes(drawn.coverage())
    for use in (measured.encode, measured.to_pil, measured._repr_png_, lambda: measured.encode("webp")):
        with pytest.raises(zvex.Error):
            use()


ERRORS = [
    (dict(text=""), "text"),
    (dict(text=7), "text"),
    (dict(text="a\ud800"), "text"),
    (dict(font="No Such Font"), "font"),
    (dict(font=b"no font"), "font"),
    (dict(size=-1), "size"),
    (dict(size=10**9), "size"),
    (dict(size=math.nan), "size"),
    (dict(language=math.nan), "language"),
    (dict(tab_stops=[3, math.inf]), "tab_stops[1]"),
    (dict(color="red-ish"), "color"),
    (dict(stroke="wide"), "stroke"),
    (dict(wide=3), "wide"),
    (dict(stroke=json.loads("[" * 20 + "]" * 20)), "options"),
    (dict(features="a\0b"), "features"),
    (dict(style={"effects": [{"type": "stroke", "width": 1000}]}), "style"),
    (dict(style=lambda: 0), "style"),
    (dict(style={"color": "\ud800"}), "style"),
    ({"a\ud800": 1}, "a\ud800"),
    (dict(fallback=["DejaVu Serif", b"no font"]), "fallback"),
    (dict(width=10**6), "width"),
    (dict(preset="no such preset"), "preset"),
]


@pytest.mark.parametrize("given, option", ERRORS, ids=lambda value: str(value)[:40])
def test_errors_name_the_option(given, option):
    with pytest.raises(zvex.Error) as caught:
        zvex.render(**{"text": "x", "font": FONT, "size": 20, **given})
    assert caught.value.option.split()[0] == option and caught.value.reason
    assert isinstance(caught.value, ValueError)


def test_nan_and_infinity_are_out_of_range_as_other_numbers_are():
    for number, shown in (200, "200"), (math.nan, "nan"), (numpy.float32("-inf"), "-inf"), (10**400, "inf"):
        with pytest.raises(zvex.Error) as caught:
            zvex.render("x", font=FONT, stroke={"width": number})
        assert str(caught.value) == f"stroke.width: {shown} is not a number from 0 to 100 (px)"


ODD = [None, True, 0, -1, 10**30, math.inf, 1e300, "", "\0", "\ud800", b"\xff", [], [[]], {}, {"a": {}}, (), object(),
       numpy.float32(3), numpy.zeros(3), lambda: 0]
SOUND = [2, 40, "50%", "#f80", "center", "4:#202020", "size=9,opacity=0.5", "gold", {"size": 4}, "1,2,3,4"]


def test_nothing_odd_ends_the_process():
    deep = []
    for _ in range(100_000):
        deep = [deep]
    chance = random.Random(1)
    options = ["text", "font", "nothing", *zvex.options()]
    cases = [{option: value} for option in options for value in [*ODD, deep]]
    cases += [{chance.choice(options): chance.choice(ODD + 2 * SOUND) for _ in range(3)} for _ in range(RENDERS // 3)]
    drawn = 0
    for case in cases:
        given = {"text": "x", "font": FONT, "size": 12, **case}
        try:
            drawn += len(bytes(zvex.render(**given).coverage())) > 0
        except zvex.Error as error:
            assert re.split("[ .[]", error.option)[0] in given, case
    assert drawn > 50, (drawn, len(cases))


def test_threads_draw_what_one_draws():
    texts = [f"Thread {i}" for i in range(24)]
    expected = [bytes(zvex.render(t, font=FONT, size=30, preset="comic")) for t in texts]
    shared = zvex.Text(font=FONT, size=30, preset="comic")
    found = {}

    def work(first):
        for i in range(first, len(texts), 4):
            found[i] = bytes(shared.render(texts[i]) if i % 2 else zvex.render(texts[i], font=FONT, size=30, preset="comic"))

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert [found[i] for i in range(len(texts))] == expected


def test_map_keeps_the_order_and_a_bound():
    taken = []

    def jobs():
        for i in range(100):
            taken.append(i)
            yield {"text": str(i), "font": FONT, "size": 16}

    pictures = zvex.map(jobs(), workers=2)
    first = next(pictures)
    assert len(taken) <= 10
    rest = list(pictures)
    expected = [zvex.render(str(i), font=FONT, size=16) for i in range(100)]
    assert [bytes(p) for p in [first, *rest]] == [bytes(p) for p in expected]
    with pytest.raises(zvex.Error, match="jobs: "):
        list(zvex.map([None]))
    for size, workers in ("big", 2), (9, -1), (9, math.nan), (9, "2"):
        with pytest.raises(zvex.Error):
            list(zvex.map([{"text": "x", "font": FONT, "size": size}] * 9, workers=workers))


def draw(word):
    return bytes(zvex.render(word, font=FONT, size=20))


@pytest.mark.parametrize("way", ["fork", "spawn"])
def test_child_processes(way):
    words = ["one", "two", "three"]
    expected = [draw(word) for word in words]  # before the fork
    with multiprocessing.get_context(way).Pool(2) as pool:
        assert pool.map_async(draw, words).get(300) == expected


def resident():
    return int(open("/proc/self/statm").read().split()[1]) * resource.getpagesize()


def test_many_pictures_leave_no_memory_behind():
    text = zvex.Text(font=FONT, size=24, stroke=2)
    data = open(SANS, "rb").read()

    def draw_some(count):
        for i in range(count):
            text.render(str(i % 7))
            if i % 50 == 0:
                zvex.render("x", font=bytearray(data), size=20)
            if i % 10 == 0:
                zvex.render("x", font=FONT, size=10 + i % 5)
                with pytest.raises(zvex.Error):
                    zvex.render("x", font=FONT, size="none")

    draw_some(500)
    gc.collect()
    before = resident()
    draw_some(RENDERS)
    gc.collect()
    assert resident() - before < 4 << 20
