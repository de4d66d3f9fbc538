"""A result becomes a data frame."""

import datetime

import pandas

import lotrix


def test_a_result_becomes_a_frame(service):
    result = service.inventoryOnHandRead("D00001")
    frame = pandas.DataFrame(result, columns=result.headers)
    assert list(frame.columns) == ["vaccine", "lot", "expiry", "maker", "remain", "size"]
    assert len(frame) == len(result) > 1
    assert [tuple(row) for row in frame.itertuples(index=False)] == list(result)


def test_a_null_is_missing(service, database):
    connection = database.connect()
    connection.execute("UPDATE stock SET maker = NULL")
    connection.close()
    result = service.stockTableRead()
    frame = pandas.DataFrame(result, columns=result.headers)
    assert len(frame) > 0
    assert frame["maker"].isna().all() and frame["lot"].notna().all()


def test_an_empty_result_keeps_its_columns(service, database):
    connection = database.connect()
    connection.execute("DELETE FROM stock")
    connection.close()
    result = service.stockTableRead()
    frame = pandas.DataFrame(result, columns=result.headers)
    assert (len(frame), list(frame.columns)) == (0, result.headers)


def test_a_frames_rows_become_arguments(service, database):
    frame = pandas.DataFrame({"aVacc": ["DTAP", "MMR"], "aInv": [48, 12],
                              "aIdate": [datetime.date(2025, 3, 9), datetime.date(2025, 3, 10)]})
    for row in frame.to_dict("records"):
        service.provinvAdd("P00001", **row)
    stored = database.query("SELECT vaccine, doses, idate FROM provhas WHERE userid = 'LTX_DLL' "
                            "ORDER BY vaccine")
    assert stored == [("DTAP", 48, "2025-03-09"), ("MMR", 12, "2025-03-10")]
    for missing in [float("nan"), pandas.NA, pandas.NaT]:
        try:
            service.provinvAdd("P00001", "DTAP", missing, "7/4/2025")
        except lotrix.Error as refused:
            assert refused.number == 13
        else:
            raise AssertionError(f"{missing!r} was taken")
