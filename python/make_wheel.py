# SPDX-License-Identifier: Apache-2.0
"""make_wheel.py PACKAGE VERSION FOLDER: packs the built package as a wheel for this Python on this machine."""
import pathlib
import shutil
import subprocess
import sys
import sysconfig
import tempfile

package, version, target = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
python = f"cp{sys.version_info.major}{sys.version_info.minor}"
platform = sysconfig.get_platform().replace("-", "_").replace(".", "_")
with tempfile.TemporaryDirectory() as folder:
    root = pathlib.Path(folder)
    shutil.copytree(package, root / "zvex", ignore=shutil.ignore_patterns("__pycache__"))
    info = root / f"zvex-{version}.dist-info"
    info.mkdir()
    (info / "METADATA").write_text(
        f"Metadata-Version: 2.1\nName: zvex\nVersion: {version}\nSummary: Text with layer effects\n"
        "License: Apache-2.0\nRequires-Python: >=3.9\n")
    (info / "WHEEL").write_text(
        f"Wheel-Version: 1.0\nGenerator: zvex\nRoot-Is-Purelib: false\nTag: {python}-{python}-{platform}\n")
    target.mkdir(exist_ok=True)
    subprocess.run([sys.executable, "-m", "wheel", "pack", root, "--dest-dir", target], check=True)
