"""Connection, Recordset, Fields and Field."""

import datetime
import gc

import pytest

import lotrix


def number_of(call):
    with pytest.raises(lotrix.Error) as refused:
        call()
    return refused.value.number


BUSY = 0x80040E31 - 2**32
FAILED = 0x80004005 - 2**32
PROVIDERS = "SELECT pin, sector, datevfc FROM provider WHERE pin = 'P00001'"


def test_opening_and_closing(database):
    connection = lotrix.Connection()
    assert (connection.State, connection.Mode, connection.ConnectionString) == (0, 0, "")
    connection.ConnectionString = database.connection_string
    connection.Mode = 3
    assert connection.Open() is None
    assert (connection.State, connection.Mode) == (1, 3)
    assert connection.ConnectionString == database.connection_string
    assert number_of(connection.Open) == 3705
    assert number_of(lambda: setattr(connection, "ConnectionString", "x")) == 3705
    connection.Close()
    assert connection.State == 0
    assert number_of(connection.Close) == 3704


def test_opening_by_argument(database):
    connection = lotrix.Connection()
    connection.Open(ConnectionString=database.connection_string, UserID="", Password=None,
                    Options=-1)
    assert connection.State == 1
    assert number_of(lambda: lotrix.Connection().Open("Provider=NoSuch")) == 3706


def test_a_mode_that_is_none():
    connection = lotrix.Connection()
    for mode, number in [(4, 5), (-1, 5), ("x", 13), (None, 94)]:
        assert number_of(lambda: setattr(connection, "Mode", mode)) == number


def test_the_end_of_a_with_block_closes(database):
    with lotrix.Connection() as connection:
        connection.Open(database.connection_string)
        rows = connection.Execute(PROVIDERS)
    assert (connection.State, rows.State) == (0, 0)
    with lotrix.Connection() as connection:
        pass
    with pytest.raises(ZeroDivisionError):
        with lotrix.Connection() as connection:
            connection.Open(database.connection_string)
            1 / 0
    assert connection.State == 0


def test_tables_and_sample_data(tmp_path):
    connection = lotrix.Connection()
    connection.Open(f"Provider=SQLite;Data Source={tmp_path}/new.db")
    connection.CreateSchema()
    connection.CreateSchema()
    assert lotrix.AddSampleData(connection, seed=2) is True
    assert lotrix.AddSampleData(connection) is False
    assert connection.Execute(PROVIDERS).RecordCount == 1
    assert number_of(lambda: lotrix.AddSampleData("x")) == 13
    assert number_of(lambda: lotrix.AddSampleData()) == 449


def test_transactions(connection, database):
    connection.BeginTrans()
    assert connection.InTransaction is True
    assert number_of(connection.BeginTrans) == FAILED
    connection.Execute("DELETE FROM physicn")
    connection.RollbackTrans()
    assert connection.InTransaction is False
    assert database.query("SELECT count(*) FROM physicn") != [(0,)]
    connection.BeginTrans()
    connection.Execute("DELETE FROM physicn")
    connection.CommitTrans()
    assert database.query("SELECT count(*) FROM physicn") == [(0,)]
    assert number_of(connection.CommitTrans) == FAILED
    assert number_of(connection.RollbackTrans) == FAILED


def test_a_statement_without_rows(connection):
    assert connection.Execute(CommandText="DELETE FROM physicn").State == 0


def test_reading_rows(connection, database):
    rows = connection.Execute("SELECT pin FROM provider ORDER BY pin")
    expected = [pin for pin, in database.query("SELECT pin FROM provider ORDER BY pin")]
    assert (rows.State, rows.RecordCount) == (1, len(expected))
    seen = []
    while not rows.EOF:
        seen.append(rows.Fields["pin"].Value)
        rows.MoveNext()
    assert seen == expected
    assert number_of(rows.MoveNext) == 3021
    assert number_of(lambda: rows.Fields["pin"].Value) == 3021
    rows.Close()
    assert rows.State == 0
    for call in [rows.Close, rows.MoveNext, lambda: rows.EOF, lambda: rows.RecordCount,
                 lambda: rows.Fields]:
        assert number_of(call) == 3704


def test_fields(connection):
    fields = connection.Execute(PROVIDERS).Fields
    assert fields.Count == len(fields) == 3
    assert [field.Name for field in fields] == ["pin", "sector", "datevfc"]
    assert fields.Item(0).Name == fields["PIN"].Name == fields.Item("pin").Name == "pin"
    assert (fields[0].Type, fields[2].Type) == (202, 133)
    for call, number in [(lambda: fields[3], 9), (lambda: fields.Item(-1), 9),
                         (lambda: fields["nosuch"], 5), (lambda: fields.Item(), 449)]:
        assert number_of(call) == number


def test_values_of_fields(connection):
    connection.Execute("UPDATE provider SET sector = 12, datevfc = {7/4/2026}, note = NULL "
                       "WHERE pin = 'P00001'")
    rows = connection.Execute("SELECT pin, sector, datevfc, note FROM provider "
                              "WHERE pin = 'P00001'")
    values = [field.Value for field in rows.Fields]
    assert values == ["P00001", 12, datetime.date(2026, 7, 4), None]
    rows = connection.Execute("SELECT cost, locactiv FROM pvaccref WHERE vaccine = 'DTAP'")
    assert [type(field.Value) for field in rows.Fields] == [float, bool]


def test_a_field_of_a_recordset_that_has_other_columns_by_now(connection):
    rows = connection.Execute(PROVIDERS)
    field = rows.Fields[2]
    rows.Close()
    assert number_of(lambda: field.Name) == 3704
    rows.Open("SELECT lastname FROM provider", connection)
    assert number_of(lambda: field.Value) == 9


def test_opening_a_recordset(connection, database):
    rows = lotrix.Recordset()
    assert rows.State == 0
    assert rows.Open(Source=PROVIDERS, ActiveConnection=connection, CursorType=1, LockType=1,
                     Options=1) is None
    assert rows.Fields[0].Value == "P00001"
    assert number_of(lambda: rows.Open(PROVIDERS, connection)) == 3705
    rows.Close()
    assert number_of(lambda: rows.Open(PROVIDERS, "connection")) == 13
    assert number_of(lambda: rows.Open(PROVIDERS)) == 449
    assert number_of(lambda: rows.Open(PROVIDERS, lotrix.Connection())) == 3704


def rows_of_a_connection_of_their_own(database):
    connection = lotrix.Connection()
    connection.Open(database.connection_string)
    return connection.Execute(PROVIDERS)


def opened_rows_of_a_connection_of_their_own(database):
    connection = lotrix.Connection()
    connection.Open(database.connection_string)
    rows = lotrix.Recordset()
    rows.Open(PROVIDERS, connection)
    return rows


@pytest.mark.parametrize("make", [rows_of_a_connection_of_their_own,
                                  opened_rows_of_a_connection_of_their_own])
def test_rows_keep_their_connection(database, make):
    rows = make(database)
    gc.collect()
    assert rows.Fields[0].Value == "P00001"


def test_an_open_recordset_stays_with_its_connection(connection, database):
    rows = rows_of_a_connection_of_their_own(database)
    assert number_of(lambda: rows.Open(PROVIDERS, connection)) == 3705
    gc.collect()
    assert rows.Fields[0].Value == "P00001"


def test_a_value_for_a_connection_string_that_is_none():
    connection = lotrix.Connection()
    assert number_of(lambda: setattr(connection, "ConnectionString", None)) == 94
    assert number_of(lambda: setattr(connection, "ConnectionString", [])) == 13
