"""The life of a cLotrix: its connection, its log, and the program's own clock and box."""

import datetime
import gc
import pathlib
import sys
import weakref

import pytest

import lotrix

NOW = datetime.datetime(2026, 11, 20, 13, 45, 12, 123456)
PHYSICIAN = ("P00001", "Thistle", "Orla", "B", "MD", "", "", "L-77")


class Refusal(Exception):
    pass


def refuse(*_):
    raise Refusal("not now")


def physicians(database):
    return database.query("SELECT chgdate FROM physicn WHERE lastname = 'THISTLE'")


class TestConnection:
    def test_nothing_is_opened_before_the_first_call(self, tmp_path, log):
        service = lotrix.cLotrix(f"Provider=SQLite;Data Source={tmp_path}/nosuch/file.db")
        assert log.lines() == ["information Begin: openConnection()"] * 2
        with pytest.raises(lotrix.Error) as refused:
            service.vaccineReferenceTableRead()
        assert refused.value.number == 0x80004005 - 2**32

    def test_without_a_connection_string(self, log):
        service = lotrix.cLotrix()
        assert not log.file.exists() or log.lines() == []
        with pytest.raises(lotrix.Error) as refused:
            service.vaccineReferenceTableRead()
        assert (refused.value.number, refused.value.source) == (3706, "LOTRIX DLL")

    def test_it_is_handed_out_open_and_is_one(self, service):
        connection = service.Connection
        assert isinstance(connection, lotrix.Connection)
        assert connection.State == 1
        assert service.Connection is connection

    def test_it_cannot_be_replaced(self, service):
        with pytest.raises(AttributeError):
            service.Connection = lotrix.Connection()

    def test_closing_and_opening_again(self, service, log):
        connection = service.Connection
        service.closeConnection()
        assert connection.State == 0
        assert log.lines()[-2:] == ["information Begin: closeConnection()",
                                    "information End: closeConnection()"]
        assert len(service.vaccineReferenceTableRead()) > 0
        assert connection.State == 1

    def test_a_with_block_closes_it(self, database, log):
        with lotrix.cLotrix(database.connection_string) as service:
            connection = service.Connection
            assert connection.State == 1
        assert connection.State == 0

    def test_a_with_block_that_fails_closes_it_and_lets_the_failure_out(self, database, log):
        with pytest.raises(Refusal):
            with lotrix.cLotrix(database.connection_string) as service:
                connection = service.Connection
                refuse()
        assert connection.State == 0

    def test_a_class_of_the_programs_own(self, database, log):
        class Service(lotrix.cLotrix):
            def lots(self, pin):
                return len(self.inventoryOnHandRead(pin))

        with Service(database.connection_string) as service:
            assert type(service) is Service
            assert service.lots("D00001") > 0


class TestLog:
    def test_its_path_is_the_constructors(self, database, log, tmp_path):
        for path in [str(tmp_path / "text.log"), tmp_path / "path.log",
                     str(tmp_path / "bytes.log").encode()]:
            lotrix.cLotrix(database.connection_string, log_path=path)
        for name in ["text.log", "path.log", "bytes.log"]:
            assert "Begin: openConnection()" in (tmp_path / name).read_text()
        assert not log.file.exists()

    def test_a_path_that_is_none(self):
        with pytest.raises(TypeError):
            lotrix.cLotrix(log_path=7)

    def test_the_connection_string_is_not_in_it(self, service, log):
        service.vaccineReferenceTableRead()
        assert "Provider=" not in log.file.read_text()

    def test_the_end_of_the_object_is_in_it(self, database, log):
        service = lotrix.cLotrix()
        del service
        assert log.lines() == ["information Begin: Class_Terminate()",
                               "information End: Class_Terminate()"]


class TestNotify:
    def test_it_shows_the_text(self, database, log):
        shown = []
        service = lotrix.cLotrix(database.connection_string, notify=shown.append)
        assert service.CheckVaccActive("DTAP") is None
        connection = database.connect()
        # A vaccine is active when it has a contract row whose mark is false.
        connection.execute("UPDATE pvaccref SET locactiv = 1")
        connection.close()
        service.CheckVaccActive("DTAP")
        assert shown == ["Vaccine is Active", "Vaccine is inactive"]

    @pytest.mark.parametrize("notify", [{}, {"notify": None}])
    def test_without_one_the_text_is_on_standard_error(self, database, log, capfd, notify):
        lotrix.cLotrix(database.connection_string, **notify).CheckVaccActive("DTAP")
        assert capfd.readouterr().err == "Vaccine is Active\n"

    def test_what_it_raises_comes_out_as_it_is(self, database, log):
        service = lotrix.cLotrix(database.connection_string, notify=refuse)
        with pytest.raises(Refusal, match="not now") as refused:
            service.CheckVaccActive("DTAP")
        assert refused.traceback[-1].name == "refuse"
        assert len(service.vaccineReferenceTableRead()) > 0

    def test_even_an_interruption(self, database, log):
        def interrupt(_):
            raise KeyboardInterrupt

        service = lotrix.cLotrix(database.connection_string, notify=interrupt)
        with pytest.raises(KeyboardInterrupt):
            service.CheckVaccActive("DTAP")

    def test_it_cannot_use_the_object_that_calls_it(self, database, log):
        service = lotrix.cLotrix(database.connection_string,
                                 notify=lambda _: service.vaccineReferenceTableRead())
        with pytest.raises(RuntimeError, match="in use"):
            service.CheckVaccActive("DTAP")
        assert len(service.vaccineReferenceTableRead()) > 0

    def test_one_that_cannot_be_called(self):
        with pytest.raises(TypeError, match="notify"):
            lotrix.cLotrix(notify=7)


class TestClock:
    def test_it_is_today_and_the_logs_time(self, database, log):
        service = lotrix.cLotrix(database.connection_string, clock=lambda: NOW)
        service.physicianAddUpdate(*PHYSICIAN)
        assert physicians(database) == [("2026-11-20",)]
        lines = log.file.read_text().splitlines()
        assert len(lines) > 5
        assert all(line.startswith("2026-11-20 13:45:12.123456 ") for line in lines)

    def test_a_time_with_a_zone_is_that_moment(self, database, log):
        service = lotrix.cLotrix(database.connection_string,
                                 clock=lambda: NOW.astimezone(datetime.timezone.utc))
        service.physicianAddUpdate(*PHYSICIAN)
        assert log.file.read_text().startswith("2026-11-20 13:45:12.123456 ")

    def test_what_it_raises_comes_out_and_nothing_is_written(self, database, log):
        clock = [lambda: NOW]
        service = lotrix.cLotrix(database.connection_string, clock=lambda: clock[0]())
        clock[0] = refuse
        with pytest.raises(Refusal, match="not now"):
            service.physicianAddUpdate(*PHYSICIAN)
        assert physicians(database) == []
        clock[0] = lambda: NOW
        service.physicianAddUpdate(*PHYSICIAN)
        assert physicians(database) == [("2026-11-20",)]

    def test_what_it_raises_only_once_comes_out_all_the_same(self, database, log):
        failures = []

        def clock():
            if failures:
                failures.pop()()
            return NOW

        service = lotrix.cLotrix(database.connection_string, clock=clock)
        failures.append(refuse)
        with pytest.raises(Refusal, match="not now"):
            service.physicianAddUpdate(*PHYSICIAN)
        assert log.lines()[-1].startswith("error Problem: In physicianAddUpdate() ")

    @pytest.mark.parametrize("answer, error", [
        (None, TypeError), (7, TypeError), (NOW.date(), TypeError),
        (datetime.datetime.max.replace(tzinfo=datetime.timezone.utc), ValueError),
        (datetime.datetime.min.replace(tzinfo=datetime.timezone.utc), ValueError),
    ])
    def test_an_answer_that_is_no_time(self, database, log, answer, error):
        answers = [NOW, NOW, answer]
        service = lotrix.cLotrix(database.connection_string,
                                 clock=lambda: answers.pop(0) if answers else NOW)
        with pytest.raises(error, match="clock"):
            service.physicianAddUpdate(*PHYSICIAN)
        assert physicians(database) == []

    def test_one_that_cannot_be_called(self):
        with pytest.raises(TypeError, match="clock"):
            lotrix.cLotrix(clock="now")

    @pytest.mark.parametrize("clock, error", [(refuse, Refusal), (lambda: 7, TypeError)])
    def test_a_failure_at_the_end_of_the_object_is_reported(self, log, monkeypatch, clock, error):
        reported = []
        monkeypatch.setattr(sys, "unraisablehook", lambda failure: reported.append(
            failure.exc_type))
        service = lotrix.cLotrix(clock=clock)
        del service
        assert reported == [error]


@pytest.mark.parametrize("name", ["notify", "clock"])
def test_a_callback_that_knows_its_object_does_not_keep_it_for_ever(log, name):
    class Owner:
        def __init__(self):
            self.service = lotrix.cLotrix(**{name: self.answer})

        def answer(self, *_):
            return NOW

    owner = weakref.ref(Owner())
    gc.collect()
    assert owner() is None
    assert log.lines() == ["information Begin: Class_Terminate()",
                           "information End: Class_Terminate()"]


def test_what_is_built_in():
    assert any(engine.startswith("SQLite ") for engine in lotrix.Engines())
    source = pathlib.Path(__file__).parents[2] / "CMakeLists.txt"
    assert f"VERSION {lotrix.__version__} " in source.read_text()


@pytest.mark.parametrize("kind", [lotrix.cLotrix, lotrix.Connection, lotrix.Recordset,
                                  lotrix.Collection, lotrix.cResultSet, lotrix.Fields,
                                  lotrix.Field])
def test_an_object_that_was_never_made_is_refused(kind):
    raw = kind.__new__(kind)
    members = [name for name in dir(kind) if not name.startswith("__")]
    special = {"__len__", "__iter__", "__enter__", "__exit__", "__getitem__"} & set(vars(kind))
    for name in [*members, *special]:
        with pytest.raises((RuntimeError, TypeError, lotrix.Error)):
            member = getattr(raw, name)
            member(1) if name == "__getitem__" else member()
    del raw
    gc.collect()
