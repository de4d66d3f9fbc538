"""Collection and cResultSet."""

import datetime
import gc

import pytest

import lotrix


def number_of(call):
    with pytest.raises(lotrix.Error) as refused:
        call()
    return refused.value.number


def make_table(rows):
    """A table as its makers are to make it."""
    table = lotrix.cResultSet()
    table.Data = lotrix.Collection()
    table.Cols = len(rows[0])
    for row, cells in enumerate(rows, 1):
        table.AddRow()
        for column, cell in enumerate(cells, 1):
            table.SetValue(row, column, cell)
    return table


@pytest.fixture
def letters():
    collection = lotrix.Collection()
    collection.Add("a", "First")
    collection.Add("b", "2")
    collection.Add("c")
    return collection


class TestCollection:
    def test_positions_count_from_one(self, letters):
        assert [letters[1], letters[2], letters.Item(3)] == ["a", "b", "c"]
        assert number_of(lambda: letters[0]) == 9
        assert number_of(lambda: letters[4]) == 9
        assert number_of(lambda: letters[-1]) == 9

    def test_a_text_is_a_key_whatever_it_holds(self, letters):
        assert letters["2"] == "b"
        assert letters["FIRST"] == letters.Item(Index="first") == "a"
        assert number_of(lambda: letters["1"]) == 5

    def test_a_key_can_be_there_once(self, letters):
        assert number_of(lambda: letters.Add("d", "FIRST")) == 457
        assert letters.Count == 3

    def test_removing(self, letters):
        letters.Remove("first")
        assert list(letters) == ["b", "c"]
        letters.Remove(2)
        assert list(letters) == ["b"]
        assert number_of(lambda: letters.Remove("first")) == 5
        assert number_of(lambda: letters.Remove(2)) == 9

    def test_count_and_len(self, letters):
        assert letters.Count == len(letters) == 3
        assert len(lotrix.Collection()) == 0

    def test_it_holds_values_of_every_kind(self):
        inner = lotrix.Collection()
        items = [None, True, 7, 2.5, "text", datetime.date(2026, 7, 4), inner]
        collection = lotrix.Collection()
        for item in items:
            collection.Add(item)
        assert list(collection) == items
        assert [type(item) for item in collection] == [type(item) for item in items]
        assert collection[7] is inner

    def test_what_it_does_not_hold(self):
        collection = lotrix.Collection()
        assert number_of(lambda: collection.Add([])) == 13
        assert number_of(lambda: collection.Add(2**63)) == 6
        assert number_of(lambda: collection.Add("\ud800")) == 5
        assert number_of(lambda: collection.Add()) == 449
        assert len(collection) == 0

    def test_removing_while_iterating_is_no_harm(self, letters):
        seen = []
        for item in letters:
            seen.append(item)
            letters.Remove(1)
        assert seen == ["a", "c"]

    def test_arguments_have_the_common_rules(self, letters):
        assert number_of(lambda: letters.Add("x", Before=1)) == 448
        assert number_of(lambda: letters.Item()) == 449
        assert number_of(lambda: letters.Item(1, 2)) == 450


class TestResultSet:
    def test_a_new_one(self):
        table = lotrix.cResultSet()
        assert (table.Rows, table.Cols, table.Data, table.Headers) == (0, 0, None, None)
        assert (len(table), list(table), table.headers) == (0, [], [])
        assert number_of(lambda: table.GetValue(1, 1)) == 91
        assert number_of(lambda: table.SetValue(1, 1, "x")) == 91

    def test_adding_and_reading(self):
        table = make_table([["a", "b"], ["c", "d"]])
        assert (table.Rows, table.Cols) == (2, 2)
        assert table.GetValue(aRow=2, aCol=1) == "c"
        assert list(table) == [("a", "b"), ("c", "d")]

    def test_cells_are_found_by_key_after_a_row_has_moved(self):
        table = make_table([["a", "b"], ["c", "d"], ["e", "f"]])
        table.SetValue(2, 1, "x")
        assert table.GetValue(2, 1) == "x"
        assert list(table) == [("a", "b"), ("x", "d"), ("e", "f")]
        # The changed row has moved to the last position, where DeleteRow counts.
        table.DeleteRow(2)
        assert list(table) == [("a", "b"), ("x", "d")]

    def test_a_cell_beyond_the_row(self):
        table = make_table([["a", "b", "c"]])
        table.SetValue(1, 5, "e")
        assert number_of(lambda: table.GetValue(1, 5)) == -2147221504 + 50001
        assert number_of(lambda: table.GetValue(1, 4)) == 5

    def test_rows_that_are_not_there(self):
        table = make_table([["a"]])
        with pytest.raises(lotrix.Error) as refused:
            table.GetValue(2, 1)
        assert refused.value.number == -2147221504 + 50000
        assert refused.value.description == "Invalid Row Specified"
        assert refused.value.source == "Lotrix"
        assert number_of(lambda: table.SetValue(2, 1, "x")) == -2147221504 + 50000
        assert number_of(lambda: table.GetValue(0, 1)) == 5

    def test_deleting_a_row_that_is_not_there_counts_down_all_the_same(self):
        table = make_table([["a"], ["b"], ["c"]])
        table.DeleteRow(99)
        assert (table.Rows, len(table)) == (2, 3)

    def test_a_row_is_taken_as_it_is_given(self):
        table = lotrix.cResultSet()
        table.Data = lotrix.Collection()
        row = lotrix.Collection()
        row.Add("x", "1")
        row.Add(None, "2")
        row.Add(7, "3")
        table.AddRow(row)
        assert table.Data[1] is row
        assert list(table) == [("x", None, "7")]
        assert table.GetValue(1, 2) == ""
        assert number_of(lambda: table.AddRow(["x"])) == 13

    def test_a_row_without_columns(self):
        table = lotrix.cResultSet()
        table.Data = lotrix.Collection()
        table.AddRow(None)
        assert list(table) == [()]

    def test_clear(self):
        table = make_table([["a"]])
        table.Headers = lotrix.Collection()
        assert table.CLEAR() is None
        assert (table.Rows, table.Cols, table.Data, table.Headers) == (0, 0, None, None)

    def test_plain_properties(self):
        table = lotrix.cResultSet()
        table.Rows = "7"
        table.Cols = 2.5
        assert (table.Rows, table.Cols, len(table)) == (7, 2, 0)

        def assign(name, value):
            return number_of(lambda: setattr(table, name, value))

        assert assign("Rows", 2**31) == 6
        assert assign("Cols", "x") == 13
        assert assign("Data", []) == 13
        assert assign("Headers", "x") == 13

    def test_data_and_headers_are_the_tables_own(self):
        table = make_table([["a"], ["b"]])
        assert table.Data is table.Data
        table.Data.Remove(1)
        assert len(table) == 1
        headers = lotrix.Collection()
        table.Headers = headers
        headers.Add("name", "1")
        assert table.headers == ["name"]
        table.Data = None
        assert (table.Data, list(table)) == (None, [])

    def test_a_collection_outlives_its_table_and_a_table_its_reader(self, service):
        result = service.inventoryOnHandRead("D00001", "DTAP")
        first = next(iter(result))
        data = result.Data
        del service, result
        gc.collect()
        assert data[1]["1"] == first[0] == "DTAP"

    def test_an_iterator_outlives_its_table(self):
        rows = iter(make_table([["a"]]))
        gc.collect()
        assert list(rows) == [("a",)]

    def test_what_a_read_returns(self, service, database):
        result = service.inventoryOnHandRead("D00001", "DTAP")
        assert result.headers == ["vaccine", "lot", "expiry", "maker", "remain", "size"]
        assert [result.Headers[n] for n in range(1, 7)] == result.headers
        expected = database.query(
            "SELECT DISTINCT l.vaccine, l.lot, strftime('%m/%d/%Y', l.expiry), l.maker, "
            "CAST(l.remain AS TEXT), CAST(l.size AS TEXT) FROM lots l JOIN pvaccref v "
            "ON v.vaccine = l.vaccine WHERE l.pin = 'D00001' AND l.vaccine = 'DTAP' "
            "AND v.locactiv = 1 AND l.expiry >= date('now', 'localtime') AND l.size > 0 "
            "AND l.remain >= 0 AND l.maker IS NOT NULL ORDER BY 1, 2, l.expiry")
        assert expected
        assert list(dict.fromkeys(result)) == expected
        assert len(result) == result.Rows == len(list(result))
        assert result.Cols == 6

    def test_a_null_is_none_and_a_blank_one_blank(self, service, database):
        connection = database.connect()
        connection.execute("DELETE FROM stock")
        connection.execute("INSERT INTO stock (pin, lot, tracking, vaccine, maker) "
                           "VALUES ('P00001', 'L1', 'T', '   ', NULL)")
        connection.close()
        result = service.stockTableRead()
        row = dict(zip(result.headers, next(iter(result))))
        assert (row["pin"], row["vaccine"], row["maker"], row["datein"]) == (
            "P00001", " ", None, None)
        assert result.GetValue(1, result.headers.index("maker") + 1) == ""

    def test_it_says_how_large_it_is(self):
        assert repr(make_table([["a", "b"]])) == "<lotrix.cResultSet: 1 rows, 2 columns>"
