"""Other threads run while the database works, and one object is not for two of them."""

import contextlib
import datetime
import threading
import time

import pytest

import lotrix

PHYSICIAN = ("P00001", "Thistle", "Orla", "B", "MD", "", "", "L-77")
QUERY = "SELECT pin FROM provider ORDER BY pin"
DELETION = "DELETE FROM physicn"


@pytest.fixture
def patient(database):
    """A connection string that waits for a lock, longer than any test takes."""
    return database.connection_string + ";Busy Timeout=60000"


@contextlib.contextmanager
def locked(database):
    """Nobody else writes meanwhile."""
    connection = database.connect()
    connection.execute("BEGIN IMMEDIATE")
    try:
        yield
    finally:
        connection.execute("ROLLBACK")
        connection.close()


class Worker(threading.Thread):
    """Makes one call, and is in it while the database is locked."""

    def __init__(self, call):
        super().__init__(daemon=True)
        self.call = call
        self.begun = threading.Event()
        self.failure = None
        self.start()
        assert self.begun.wait(10)
        # Time for the call to come to the lock. It would be over by now without one.
        self.join(0.3)

    def run(self):
        self.begun.set()
        try:
            self.call()
        except BaseException as failure:
            self.failure = failure

    def finish(self):
        self.join(30)
        assert not self.is_alive()
        if self.failure is not None:
            raise self.failure


def wait_until_in_use(connection):
    end = time.monotonic() + 10
    while time.monotonic() < end:
        try:
            connection.State
        except RuntimeError:
            return
        time.sleep(0.01)
    raise AssertionError("the call has not come")


def open_connection(connection_string):
    connection = lotrix.Connection()
    connection.Open(connection_string)
    return connection


def in_transaction_of_its_own(connection):
    connection.BeginTrans()
    connection.Execute(DELETION)
    connection.CommitTrans()


CALLS = {
    "a member": lambda service, _: service.physicianAddUpdate(*PHYSICIAN),
    "Execute": lambda _, connection: connection.Execute(DELETION),
    "a transaction": lambda _, connection: in_transaction_of_its_own(connection),
    "Recordset.Open": lambda _, connection: lotrix.Recordset().Open(DELETION, connection),
    "CreateSchema": lambda _, connection: connection.CreateSchema(),
    "AddSampleData": lambda _, connection: lotrix.AddSampleData(connection),
}


@pytest.mark.parametrize("name", CALLS)
def test_other_threads_run_while_a_call_waits_for_a_lock(database, log, patient, name):
    if name == "AddSampleData":
        database.query("DELETE FROM provider")
        database.query("DELETE FROM nextid")
    service = lotrix.cLotrix(patient)
    connection = open_connection(patient)
    with locked(database):
        worker = Worker(lambda: CALLS[name](service, connection))
        begun = time.monotonic()
        ticks = 0
        while time.monotonic() < begun + 0.1:
            ticks += 1
        assert worker.is_alive()
        assert ticks > 100
    worker.finish()


def test_an_object_in_a_call_refuses_other_threads(database, log, patient):
    service = lotrix.cLotrix(patient)
    connection = service.Connection
    rows = connection.Execute(QUERY)
    # All of them fetched: an engine does not let a reader wait for a writer's lock.
    assert rows.RecordCount > 1
    fields = rows.Fields
    field = fields[0]
    with locked(database):
        worker = Worker(lambda: service.physicianAddUpdate(*PHYSICIAN))
        wait_until_in_use(connection)
        for use in [
            lambda: service.vaccineReferenceTableRead(),
            lambda: service.closeConnection(),
            lambda: service.Connection,
            lambda: connection.State,
            lambda: connection.Mode,
            lambda: connection.ConnectionString,
            lambda: connection.InTransaction,
            lambda: setattr(connection, "Mode", 3),
            lambda: setattr(connection, "ConnectionString", "x"),
            lambda: connection.Execute(QUERY),
            lambda: connection.BeginTrans(),
            lambda: connection.Close(),
            lambda: rows.State,
            lambda: rows.EOF,
            lambda: rows.RecordCount,
            lambda: rows.Fields,
            lambda: rows.MoveNext(),
            lambda: rows.Close(),
            lambda: lotrix.Recordset().Open(QUERY, connection),
            lambda: lotrix.AddSampleData(connection),
            lambda: len(fields),
            lambda: fields["pin"],
            lambda: field.Name,
            lambda: field.Type,
            lambda: field.Value,
        ]:
            with pytest.raises(RuntimeError, match="in use"):
                use()
        assert worker.is_alive()
    worker.finish()
    assert (connection.State, rows.EOF, field.Name) == (1, False, "pin")
    assert len(service.vaccineReferenceTableRead()) > 0


def test_two_objects_are_two(database, log, patient):
    service = lotrix.cLotrix(patient)
    other = lotrix.cLotrix(patient)
    with locked(database):
        worker = Worker(lambda: service.physicianAddUpdate(*PHYSICIAN))
        assert len(other.vaccineReferenceTableRead()) > 0
        assert worker.is_alive()
    worker.finish()


def test_rows_let_go_during_a_call_are_closed_after_it_and_not_under_it(database, log):
    rows = []

    def clock():
        if rows:
            rows.clear()
            database.query("UPDATE provider SET note = 'x' WHERE pin = 'P00001'")
        return datetime.datetime(2026, 11, 20)

    service = lotrix.cLotrix(database.connection_string, clock=clock)
    rows.append(service.Connection.Execute(QUERY))
    # Open rows keep their view of the database, so a write is busy when others have written.
    with pytest.raises(lotrix.Error) as refused:
        service.physicianDeleteByPin("P00001")
    assert refused.value.number == 0x80040E31 - 2**32
    assert rows == []
    service.physicianDeleteByPin("P00001")
    assert database.query("SELECT count(*) FROM physicn WHERE pin = 'P00001'") == [(0,)]


def test_many_threads_at_one_object_do_no_harm(database, log):
    service = lotrix.cLotrix(database.connection_string)
    expected = list(service.inventoryOnHandRead("D00001"))
    end = time.monotonic() + 1
    unexpected = []
    answers = []

    def hammer():
        while time.monotonic() < end:
            try:
                rows = service.Connection.Execute(QUERY)
                rows.MoveNext()
                rows.Fields["pin"].Value
                answers.append(list(service.inventoryOnHandRead("D00001")) == expected)
            except RuntimeError:
                pass
            except BaseException as failure:
                unexpected.append(failure)

    threads = [threading.Thread(target=hammer) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(30)
    assert unexpected == []
    assert answers and all(answers)
