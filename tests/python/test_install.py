"""An installed module works by itself."""

import os
import pathlib
import subprocess
import sys

PROGRAM = """
import lotrix, pathlib, sys
assert pathlib.Path(lotrix.__file__).is_relative_to(sys.argv[1]), lotrix.__file__
with lotrix.Connection() as connection:
    connection.Open("Provider=SQLite;Data Source=" + sys.argv[2])
    connection.CreateSchema()
with lotrix.cLotrix("Provider=SQLite;Data Source=" + sys.argv[2]) as service:
    try:
        service.inventoryOnHandRead("")
    except lotrix.Error as error:
        print(error.number)
"""


def test_what_is_installed_is_enough(tmp_path):
    prefix = tmp_path / "prefix"
    subprocess.run(["cmake", "--install", os.environ["LOTRIX_BUILD"], "--prefix", str(prefix),
                    "--component", "python"], check=True, capture_output=True, timeout=60)
    site = prefix / os.environ["LOTRIX_PYTHON_SITE"]
    package = pathlib.Path(os.environ["LOTRIX_PYTHON_PATH"]) / "lotrix"
    installed = sorted(path.name for path in (site / "lotrix").iterdir())
    assert installed == sorted(path.name for path in package.iterdir() if path.is_file())
    ran = subprocess.run(
        [sys.executable, "-c", PROGRAM, str(prefix), str(tmp_path / "new.db")],
        env={"PYTHONPATH": str(site), "LOTRIX_LOG": str(tmp_path / "log"), "PATH": "/usr/bin",
             "PYTHONDONTWRITEBYTECODE": "1"},
        cwd=tmp_path, capture_output=True, text=True, timeout=60)
    assert (ran.returncode, ran.stdout, ran.stderr) == (0, "20022\n", "")
