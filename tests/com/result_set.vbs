' The result table and its collections in a script's hands.
Dim service, table, other, cells, item, text, row, column, value, copies
Set service = NewService()

' A new table.
Set table = CreateObject("LOTRIX.cResultSet")
Check "new: rows", table.Rows, 0
Check "new: columns", table.Cols, 0
Check "new: data", table.Data Is Nothing, True
Check "new: headers", table.Headers Is Nothing, True
table.Rows = "12"
table.Cols = 2.5
Check "rows: any value", table.Rows, 12
Check "columns: half to even", table.Cols, 2
table.CLEAR
Check "cleared: rows", table.Rows, 0

' A collection of ours comes from a read.
Set other = service.inventoryOnHandRead("D00001", "DTAP")
Check "on hand: rows", other.Rows > 2, True
Set cells = other.Headers
Check "collection: count", cells.Count, 6
Check "collection: default member by key", cells("2"), "lot"
Check "collection: default member by position", cells(2), "lot"
Check "collection: item by key", cells.Item("6"), "size"
Check "collection: item by position of another type", cells.Item(2.4), "lot"
cells.Add "seventh", "Seventh"
Check "collection: key without regard to case", cells("sEVENTH"), "seventh"
Check "collection: the table's own", other.Headers.Count, 7
cells.Remove "SEVENTH"
Check "collection: removed by key", cells.Count, 6
cells.Add "without a key"
Check "collection: added without a key", cells(7), "without a key"
cells.Remove 7
Check "collection: removed by position", other.Headers.Count, 6
cells.Add 42, "number"
cells.Add Null, "null"
cells.Add table, "object"
Check "collection: a number stays one", VarType(cells("number")) <> vbString, True
Check "collection: a number", cells("number"), 42
Check "collection: a Null", IsNull(cells("null")), True
Check "collection: an object", cells("object") Is table, True
cells.Remove "object"
cells.Remove "null"
cells.Remove "number"
text = ""
For Each item In cells
  text = text & item & ","
Next
Check "collection: For Each", text, "vaccine,lot,expiry,maker,remain,size,"
text = ""
For Each item In cells
  For Each value In cells
    text = text & Left(item, 1) & Left(value, 1)
  Next
Next
Check "collection: For Each inside another", Len(text), 72
Check "collection: the same object each time", cells Is other.Headers, True
Check "row: the same object each time", other.Data(1) Is other.Data("1"), True
Check "default members, one after the other", other.Data(1)(1), "DTAP"
Check "names without regard to case", other.dATA.cOUNT, other.rows

' Handed over by reference.
Set table.Data = other.Data
Set table.Headers = other.Headers
Check "set: the same collection", table.Data Is other.Data, True
Check "set: counts are not touched", table.Rows, 0
table.Data(1).Add "extra", "7"
Check "set: seen through both", other.Data(1)("7"), "extra"
Check "cell beyond the columns", other.GetValue(1, 7), "extra"
other.CLEAR
Check "cleared: no data", other.Data Is Nothing, True
Check "cleared: the collection lives on", table.Data.Count > 2, True

' Arguments by reference from variables of any type.
Set table = service.inventoryOnHandRead("D00001", "DTAP")
text = table.GetValue(2, 1)
Check "literals", text, "DTAP"
row = "2"
column = CDbl(1)
Check "text and double variables", table.GetValue(row, column), text
row = CByte(2)
column = True
Check "a true column is -1 and unknown", Refused(table, row, column), 5
column = CInt(1)
Check "byte and integer variables", table.GetValue(row, column), text
row = CCur(2)
column = CSng(1)
Check "currency and single variables", table.GetValue(row, column), text
ReDim copies(2)
copies(1) = "2"
copies(2) = 1.5
Check "elements of an array, half to even", table.GetValue(copies(1), copies(2)), _
  table.GetValue(2, 2)
Check "a text element stays as it was", copies(1), "2"
row = "1"
column = "4"
value = 12.5
table.SetValue row, column, value
Check "SetValue: a number as text", table.GetValue(1, 4), "12.5"
value = True
table.SetValue row, column, value
Check "SetValue: a logical as text", table.GetValue(1, 4), "True"
table.SetValue row, column, "text"
Check "SetValue: a literal", table.GetValue(1, 4), "text"
Check "SetValue: the variables stay", row & column & VarType(row) & VarType(value), "14811"
Check "SetValue: the row moves to the end", table.Data(table.Rows)(6), "text"
Check "SetValue: the cell moves to the end", table.Data("1")(6), "text"
Check "SetValue: by key it stands where it stood", table.Data("1")("4"), "text"

' Rows of one's own.
Dim before
before = table.Rows
table.AddRow
Check "AddRow: rows", table.Rows, before + 1
Check "AddRow: cells", table.Data(CStr(before + 1)).Count, 6
Check "AddRow: empty cells", table.GetValue(before + 1, 6), ""
table.AddRow service.vaccineReferenceTableRead.Data(1)
Check "AddRow: a collection of ours", table.Data(CStr(before + 2)).Count, 1
table.DeleteRow 9999
Check "DeleteRow: outside lowers the count", table.Rows, before + 1
Check "DeleteRow: outside removes nothing", table.Data.Count, before + 2
row = CStr(before + 2)
table.DeleteRow row
Check "DeleteRow: a text variable", table.Data.Count, before + 1

' Collections that the script itself has written.
Class OwnList
  Private items
  Private keys
  Private held

  Private Sub Class_Initialize
    ReDim items(50)
    ReDim keys(50)
    held = 0
  End Sub

  Public Sub Add(item, key)
    held = held + 1
    If IsObject(item) Then
      Set items(held) = item
    Else
      items(held) = item
    End If
    keys(held) = key
  End Sub

  Private Function Position(index)
    Dim i
    If VarType(index) <> vbString Then
      Position = index
      Exit Function
    End If
    For i = 1 To held
      If keys(i) = index Then Position = i
    Next
    If IsEmpty(Position) Then Err.Raise 5, "OwnList", "No item of the key " & index
  End Function

  Public Default Property Get Item(index)
    Dim found
    found = Position(index)
    If IsObject(items(found)) Then
      Set Item = items(found)
    Else
      Item = items(found)
    End If
  End Property

  Public Sub Remove(index)
    Dim i
    For i = Position(index) To held - 1
      If IsObject(items(i + 1)) Then
        Set items(i) = items(i + 1)
      Else
        items(i) = items(i + 1)
      End If
      keys(i) = keys(i + 1)
    Next
    held = held - 1
  End Sub

  Public Property Get Count
    Count = held
  End Property
End Class

Dim list, ownRow
Set list = New OwnList
Set table = CreateObject("Lotrix.cResultSet")
Set table.Data = list
Check "own list: handed back", table.Data Is list, True
table.Cols = 2
table.AddRow
Check "own list: a new row", list.Count, 1
table.SetValue 1, 2, "second"
Check "own list: set", table.GetValue(1, 2), "second"
Check "own list: seen in the list", list("1")("2"), "second"
Set ownRow = New OwnList
ownRow.Add "first own", "1"
ownRow.Add Null, "2"
table.AddRow ownRow
Check "own row", table.GetValue(2, 1), "first own"
Check "own row: Null is the empty text", table.GetValue(2, 2), ""
Check "own row: the object itself", list("2") Is ownRow, True
table.SetValue 2, 1, "changed"
Check "own row: changed", ownRow("1"), "changed"
Check "own list: length", list.Count, 2
Check "own list: rows", table.Rows, 2
Set list = New OwnList
list.Add "one", "1"
Set table.Headers = list
Check "own headers", table.Headers("1"), "one"
On Error Resume Next
table.GetValue 3, 1
CheckFailure "own list: row", Rule(50000), "Lotrix", "Invalid Row Specified"
table.GetValue 0, 1
Check "own list: its failure", Err.Number, 5
Err.Clear
table.GetValue 2, 3
CheckFailure "own row: column", Rule(50001), "Lotrix", "Invalid Col Specified"
On Error Goto 0
table.DeleteRow 1
Check "own list: after DeleteRow", table.Data.Count, 1
Check "own list: the row that stays", table.GetValue(1, 1), "changed"
Set table.Data = Nothing
Check "data let go", table.Data Is Nothing, True

' Texts that hold everything.
Set table = service.vaccineReferenceTableRead()
text = "a'b""c" & vbCrLf & vbTab & Chr(0) & "d"
table.SetValue 1, 1, text
Check "a text with everything", table.GetValue(1, 1), text
table.SetValue 1, 1, String(70000, "x")
Check "a long text", Len(table.GetValue(1, 1)), 70000
Finish 74

Function Refused(aTable, aRow, aColumn)
  On Error Resume Next
  aTable.GetValue aRow, aColumn
  Refused = Err.Number
  Err.Clear
End Function
