"""What Python's values become, and what comes back."""

import datetime
import decimal
import enum

import numpy
import pytest

import lotrix


@pytest.mark.parametrize("value, stored", [
    ("Ab 1", "Ab 1"),
    ("Zoë 😀", "Zoë 😀"),
    (12345, "12345"),
    (-(2**31) - 1, "-2147483649"),
    (True, "True"),
    (False, "False"),
    (12.5, "12.5"),
    (3.0, "3"),
    (datetime.date(2026, 7, 4), "7/4/2026"),
    (numpy.int64(77), "77"),
    (numpy.float64(0.1), "0.1"),
    (numpy.str_("np"), "np"),
    (enum.IntEnum("Kind", "ONE TWO").TWO, "2"),
])
def test_a_value_for_a_text(service, database, value, stored):
    service.physicianAddUpdate("P00001", "Thistle", "Orla", "", "", "", value, "")
    assert database.query("SELECT medicaidno FROM physicn WHERE lastname = 'THISTLE'") == [
        (stored,)]


@pytest.mark.parametrize("value, doses", [
    (7, 7), ("7", 7), ("$1,000.00", 1000), (6.5, 6), (7.5, 8), (True, 1), (numpy.int32(9), 9),
])
def test_a_value_for_a_whole_number(service, database, value, doses):
    lot, = database.query("SELECT lot FROM stock WHERE vaccine = 'DTAP' LIMIT 1")[0]
    service.providerInventoryAdjustmentUpdate("D00001", "7/4/2025", "7/4/2025", "Lo", "P00001",
                                              "DTAP", lot, value)
    rows = database.query("SELECT abs(doses) FROM distrib WHERE userid = 'LTX_DLL'")
    assert rows == [(doses,)]


@pytest.mark.parametrize("value, codes", [
    (True, "V"), (False, ""), ("true", "V"), ("FALSE", ""), (1, "V"), (0, ""), (0.5, "V"),
])
def test_a_value_for_a_logical(service, database, value, codes):
    service.providerProfileUpdate(
        "P00001", "Clinic", "Orla", "3 Lantern St.", "", "Amberbrook", "ZZ", "69401", "",
        "(217) 555-0101", "", "", "", "", "", "", "", "", "", value)
    assert database.query("SELECT codes FROM provider WHERE pin = 'P00001'") == [(codes,)]


def test_a_date_for_a_date(service, database):
    service.provinvAdd("P00001", "DTAP", "48", datetime.date(2025, 3, 9))
    assert database.query("SELECT idate FROM provhas WHERE userid = 'LTX_DLL'") == [
        ("2025-03-09",)]


class NoNumber:
    def __index__(self):
        raise ValueError("no")


@pytest.mark.parametrize("value, number", [
    (2**63, 6),
    (-(2**63) - 1, 6),
    (float("inf"), 6),
    (datetime.date(99, 12, 31), 6),
    (float("nan"), 13),
    (datetime.datetime(2026, 7, 4), 13),
    (datetime.datetime(2026, 7, 4, 10, 30), 13),
    (datetime.time(10, 30), 13),
    (b"bytes", 13),
    ([], 13),
    ({}, 13),
    (object(), 13),
    (decimal.Decimal("1"), 13),
    (1j, 13),
    (NoNumber(), 13),
    (lotrix.Collection(), 13),
    (lotrix.cResultSet(), 13),
    ("\ud800", 5),
    ("a\udcff", 5),
])
def test_values_that_no_parameter_takes(service, database, value, number):
    before = database.query("SELECT count(*) FROM physicn")
    with pytest.raises(lotrix.Error) as refused:
        service.physicianAddUpdate("P00001", "Thistle", "Orla", "", "", "", value, "")
    assert refused.value.number == number
    with pytest.raises(lotrix.Error) as refused:
        service.providerShippingDataUpdate(
            "P00001", "Clinic", "Orla", "3 Lantern St.", "", "Amberbrook", "ZZ", "69401", "",
            "(217) 555-0101", "", aTitle=value)
    assert refused.value.number == number
    assert database.query("SELECT count(*) FROM physicn") == before


@pytest.mark.parametrize("value, number", [(2**31, 6), ("x", 13), ("", 13), (2147483647.5, 6)])
def test_values_that_are_no_whole_number_of_32_bits(service, value, number):
    with pytest.raises(lotrix.Error) as refused:
        service.DosesAdministeredUpdate("7/4/2026", "P00001", "DTAP", "1", aTotalDoses=value)
    assert refused.value.number == number


def test_a_stored_text_that_is_not_valid_unicode_is_shown_with_replacements(service, database):
    connection = database.connect()
    connection.execute("UPDATE lots SET maker = CAST(x'41ff42' AS TEXT) WHERE pin = 'D00001'")
    connection.close()
    result = service.inventoryOnHandRead("D00001", "DTAP")
    assert {row[3] for row in result} == {"A\ufffdB"}
    assert result.GetValue(1, 4) == "A\ufffdB"
    rows = service.Connection.Execute("SELECT maker FROM lots WHERE pin = 'D00001'")
    assert rows.Fields["maker"].Value == "A\ufffdB"
