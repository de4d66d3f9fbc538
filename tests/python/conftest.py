"""A fresh sample database for each test, made by the lotrix command and looked at by the
engine's own module, not by the code under test."""

import os
import pathlib
import shutil
import sqlite3
import subprocess
import types

import pytest

import lotrix

# The tests are for the module of this build.
assert pathlib.Path(lotrix.__file__).is_relative_to(os.environ["LOTRIX_PYTHON_PATH"])


@pytest.fixture(scope="session")
def sample_file(tmp_path_factory):
    file = tmp_path_factory.mktemp("sample") / "sample.db"
    subprocess.run(
        [os.environ["LOTRIX_COMMAND"], "--connection", f"Provider=SQLite;Data Source={file}",
         "init", "--sample"],
        check=True, timeout=60)
    return file


class Database:
    def __init__(self, file):
        self.file = file
        self.connection_string = f"Provider=SQLite;Data Source={file}"

    def connect(self):
        return sqlite3.connect(self.file, isolation_level=None, timeout=0)

    def query(self, sql, *values):
        connection = self.connect()
        try:
            return connection.execute(sql, values).fetchall()
        finally:
            connection.close()


@pytest.fixture
def database(sample_file, tmp_path):
    file = tmp_path / "test.db"
    shutil.copy(sample_file, file)
    return Database(file)


@pytest.fixture
def log(tmp_path, monkeypatch):
    """The trace log's lines, without time and process."""
    file = tmp_path / "trace.log"
    monkeypatch.setenv("LOTRIX_LOG", str(file))

    def lines():
        return [line.split(" ", 3)[3] for line in file.read_text().splitlines()]

    return types.SimpleNamespace(file=file, lines=lines)


@pytest.fixture
def service(database, log):
    return lotrix.cLotrix(database.connection_string)


@pytest.fixture
def connection(database):
    with lotrix.Connection() as connection:
        connection.Open(database.connection_string)
        yield connection
