"""The example runs as a newcomer would run it."""

import datetime
import pathlib
import subprocess
import sys

EXAMPLE = pathlib.Path(__file__).parents[2] / "examples" / "working_day.py"


def test_a_working_day(tmp_path):
    file = tmp_path / "day.db"
    ran = subprocess.run([sys.executable, EXAMPLE, file], capture_output=True, text=True,
                         timeout=60)
    assert (ran.returncode, ran.stderr) == (0, "")
    lines = ran.stdout.splitlines()
    assert lines[0] == "vaccine lot expiry maker remain size"
    assert lines[1].startswith("DTAP ")
    today = datetime.date.today()
    assert lines[-7:] == [
        "Vaccine is Active",
        "ordered 20 doses",
        "refused: The number of doses for an order must be greater than zero "
        "(LOTRIX DLL, -2147201479)",
        "P00001 MMR: Non numeric Inventory field for Provider Inventory Add/Update "
        "(LOTRIX DLL, -2147201368)",
        "2 counts accepted",
        f"P00001 DTAP 48 {today}",
        f"P00002 HIB 9 {today}",
    ]
    assert "Begin: provinvAddUpdate()" in file.with_suffix(".log").read_text()


def test_without_a_file(tmp_path):
    ran = subprocess.run([sys.executable, EXAMPLE], cwd=tmp_path, capture_output=True, text=True,
                         timeout=60)
    assert (ran.returncode, ran.stderr) == (0, "")
    assert list(tmp_path.iterdir()) == []
