# SPDX-License-Identifier: Apache-2.0
# The examples as their users run them.
import json
import os
import pathlib
import shlex
import signal
import subprocess
import sys
import time
from types import SimpleNamespace

import numpy
import pytest
from PIL import Image

import zvex

ROOT = pathlib.Path(__file__).parents[2]
EXAMPLES = ROOT / "examples" / "python"


def run(*words):
    subprocess.run([sys.executable, *words], check=True, stdout=subprocess.DEVNULL, timeout=300)


def python_of(page):
    """The page's Python, and a cluster's shared folder is the working folder."""
    blocks = (ROOT / page).read_text("utf-8").split("```python")[1:]
    return "\n".join(block.split("```")[0] for block in blocks).replace("/shared/", "")


def test_the_pages(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    names = {}
    exec(python_of("README.md"), names)
    assert names["pixels"][..., 3].max() == 255 and Image.open("gold.png").size == names["pixels"].shape[1::-1]
    exec(python_of("docs/python.md"), names)
    assert names["mask"].any() and Image.open("greeting.webp").size == names["pixels"].shape[1::-1]
    assert Image.open("two.png").height == Image.open("one.png").height and Image.open("last.png").width > 0


def test_the_page_on_spark(tmp_path, monkeypatch):
    class Lines(list):
        def pipe(self, command):
            environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
            done = subprocess.run([os.environ["ZVTEXT"], *shlex.split(command)[1:]], input="\n".join(self), text=True,
                                  stdout=subprocess.PIPE, env=environment)
            return Lines(done.stdout.splitlines())

        def filter(self, keep):
            return [line for line in self if keep(line)]

    class Frame(dict):
        def assign(self, **more):
            return Frame(self, **more)

    monkeypatch.chdir(tmp_path)
    (tmp_path / "pictures").mkdir()
    words = ["One", "Two", "Three"]
    lines = Lines([json.dumps({"text": word, "output": f"{word}.png"}) for word in words] + ["{"])
    spark = SimpleNamespace(sparkContext=SimpleNamespace(textFile=lambda path: lines))
    titles = SimpleNamespace(mapInPandas=lambda render, schema: list(render([Frame(text=words[:2]), Frame(text=words[2:])])))
    names = {"spark": spark, "titles": titles}
    exec(python_of("docs/clusters.md"), names)
    assert len(names["results"]) == 4 and len(names["failed"]) == 1
    pngs = [png for frame in names["pictures"] for png in frame["png"]]
    assert pngs == [(tmp_path / "pictures" / f"{word}.png").read_bytes() for word in words]


def test_the_benchmark_beside_pillow():
    done = subprocess.run([sys.executable, ROOT / "benchmarks" / "beside_pillow.py", "--words", "60", "--rounds", "3"],
                          check=True, stdout=subprocess.PIPE, text=True, timeout=300).stdout
    ratios = [float(line.split("|")[-2]) for line in done.splitlines() if line.startswith("| 64 px")]
    assert ratios[0] > 2.5 and ratios[1] > 4, done


def test_labels_lie_on_their_words(tmp_path):
    for folder in ("a", "b"):
        run(EXAMPLES / "ocr_data.py", "--count", "40", "--seed", "3", "--output", tmp_path / folder)
    data = json.loads((tmp_path / "a" / "labels.json").read_text("utf-8"))
    assert data == json.loads((tmp_path / "b" / "labels.json").read_text("utf-8"))
    boxes = {}
    for one in data["annotations"]:
        boxes.setdefault(one["image_id"], []).append(one["bbox"])
    assert len(data["images"]) == 40 and len(boxes) == 40
    for image in data["images"]:
        name = pathlib.Path("images", image["file_name"])
        assert (tmp_path / "a" / name).read_bytes() == (tmp_path / "b" / name).read_bytes()
        pixels = numpy.asarray(Image.open(tmp_path / "a" / name).convert("RGB")).astype(int)
        assert pixels.shape[:2] == (image["height"], image["width"])
        ground = pixels[0, 0]
        for left, top, width, height in boxes[image["id"]]:
            inside = pixels[max(0, int(top)):int(top + height) + 1, max(0, int(left)):int(left + width) + 1]
            assert abs(inside - ground).max() > 40, (image, left, top)


@pytest.mark.parametrize("words, message", [
    (["ocr_data.py", "--count", "-1"], "--count: -1"),
    (["ocr_data.py", "--words", "file"], "has none"),
    (["ocr_data.py", "--font", "No Such Font"], "font: 'No Such Font'"),
    (["ocr_data.py", "--output", "file"], "Not a directory"),
    (["dask_titles.py", "local", "missing", "file"], "'missing'"),
])
def test_wrong_arguments_are_refused_in_a_line(tmp_path, words, message):
    if words[0] == "dask_titles.py":
        pytest.importorskip("distributed")
    (tmp_path / "file").touch()
    done = subprocess.run([sys.executable, EXAMPLES / words[0], *words[1:]], cwd=tmp_path, stderr=subprocess.PIPE, text=True)
    assert done.returncode in (1, 2) and message in done.stderr.splitlines()[-1] and "Traceback" not in done.stderr


def test_a_dask_worker_may_die(tmp_path):
    pytest.importorskip("distributed")
    sys.path.insert(0, str(EXAMPLES))
    import dask_titles
    from distributed import Client

    titles = [f"Title {i}" for i in range(1200)]
    dask_titles.BLOCK = 20
    environment = {**os.environ, "PYTHONPATH": os.pathsep.join([os.environ["PYTHONPATH"], str(EXAMPLES)])}
    command = [sys.executable, "-m", "distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0",
               "--no-dashboard", "--scheduler-file", str(tmp_path / "scheduler")]
    processes = [subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)]
    try:
        worker = [sys.executable, "-m", "distributed.cli.dask_worker", "--scheduler-file", str(tmp_path / "scheduler"),
                  "--nthreads", "1", "--no-dashboard", "--no-nanny", "--local-directory", str(tmp_path / "local")]
        processes += [subprocess.Popen(worker, env=environment, stderr=subprocess.DEVNULL) for _ in range(2)]
        client = Client(scheduler_file=str(tmp_path / "scheduler"), timeout=300)
        client.wait_for_workers(2, timeout=300)
        folder = tmp_path / "pictures"

        def kill_in_the_middle():
            while len(list(folder.glob("*.png"))) < 100:
                time.sleep(0.01)
            processes[1].send_signal(signal.SIGKILL)

        import threading
        killer = threading.Thread(target=kill_in_the_middle)
        killer.start()
        assert dask_titles.run(client, titles, str(folder)) == len(titles)
        killer.join()
        client.close()
    finally:
        for process in processes:
            process.kill()
            process.wait()
    assert sorted(p.name for p in folder.glob("*.png")) == [f"{i + 1:06}.png" for i in range(len(titles))]
    style = zvex.Text(font="DejaVu Sans:bold", size=48, stroke="4:#202020", outer_shadow="size=8", no_fallback=True)
    for i in range(0, len(titles), 37):
        assert (folder / f"{i + 1:06}.png").read_bytes() == style.render(titles[i]).encode()
