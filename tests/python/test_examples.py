# SPDX-License-Identifier: Apache-2.0
# The examples as their users run them.
import json
import os
import pathlib
import signal
import subprocess
import sys
import time

import numpy
import pytest
from PIL import Image

import zvex

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples" / "python"


def run(*words):
    subprocess.run([sys.executable, *words], check=True, stdout=subprocess.DEVNULL, timeout=300)


def test_the_readme(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    names = {}
    exec((EXAMPLES.parents[1] / "README.md").read_text("utf-8").split("```python")[1].split("```")[0], names)
    assert names["pixels"][..., 3].max() == 255 and Image.open("gold.png").size == names["pixels"].shape[1::-1]


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
        client = Client(scheduler_file=str(tmp_path / "scheduler"), timeout=60)
        client.wait_for_workers(2, timeout=60)
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
