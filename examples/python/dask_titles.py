#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Titles rendered by a Dask cluster into a folder that all its machines see.

    python3 dask_titles.py tcp://scheduler:8786 titles.txt pictures
    python3 dask_titles.py local titles.txt pictures        # processes of this machine

Every line of titles.txt becomes pictures/000001.png and so on. A worker that dies costs nothing: the scheduler
gives its block to another, and a picture appears only when it is complete.
"""
import os
import pathlib
import sys

from distributed import Client, as_completed

BLOCK = 200  # titles; some tenths of a second each


def render_block(first: int, titles: list, folder: str) -> int:
    """Renders the titles; runs on a worker. The result is how many."""
    import zvex

    style = zvex.Text(font="DejaVu Sans:bold", size=48, stroke="4:#202020", outer_shadow="size=8", no_fallback=True)
    for number, title in enumerate(titles, first):
        style.render(title).save(pathlib.Path(folder, f"{number:06}.png"))
    return len(titles)


def run(client: Client, titles: list, folder: str) -> int:
    pathlib.Path(folder).mkdir(parents=True, exist_ok=True)
    blocks = [client.submit(render_block, first + 1, titles[first:first + BLOCK], os.path.abspath(folder), pure=False)
              for first in range(0, len(titles), BLOCK)]
    done = 0
    for block in as_completed(blocks):
        done += block.result()
        if sys.stderr.isatty():
            print(f"\r{done} of {len(titles)}", end="", file=sys.stderr)
    return done


def main() -> None:
    if len(sys.argv) != 4:
        sys.exit(f"usage: {sys.argv[0]} ADDRESS|local TITLES FOLDER")
    address, source, folder = sys.argv[1:]
    try:
        titles = [line for line in pathlib.Path(source).read_text("utf-8").splitlines() if line.strip()]
        with Client(processes=True, threads_per_worker=1) if address == "local" else Client(address) as client:
            print(f"{run(client, titles, folder)} pictures in {folder}")
    except (OSError, ValueError) as error:
        sys.exit(f"{sys.argv[0]}: {error}")


if __name__ == "__main__":
    main()
