#!/usr/bin/python3
"""The size of the .deb that the build makes. KESTREL_BIN names its bin folder."""
import os
import pathlib
import subprocess
import tempfile

from process_figures import row

with tempfile.TemporaryDirectory(prefix="kestrel-package-") as folder:
    configuration = pathlib.Path(os.environ["KESTREL_BIN"]).parent / "CPackConfig.cmake"
    subprocess.run(["cpack", "-G", "DEB", "--config", configuration, "-B", folder], stdout=subprocess.DEVNULL, check=True)
    (package,) = pathlib.Path(folder).glob("*.deb")
    row("size of the .deb", "MB", [package.stat().st_size / 1e6], 5)
