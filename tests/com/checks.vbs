' What every VBScript client begins with: the checks, and what the runner passes on
' (database, folder for output, today as m/d/yyyy).
Option Explicit

Dim checksMade, databasePath, outputFolder, today
checksMade = 0
databasePath = WScript.Arguments(0)
outputFolder = WScript.Arguments(1)
today = WScript.Arguments(2)

' A text never equals a number.
Sub Check(name, got, expected)
  checksMade = checksMade + 1
  If (VarType(got) = vbString) = (VarType(expected) = vbString) And got = expected Then
    WScript.Echo "ok " & name
  Else
    WScript.Echo "FAIL " & name & ": got " & TypeName(got) & " " & got & ", expected " & _
      TypeName(expected) & " " & expected
  End If
End Sub

' The error in hand, which is cleared.
Sub CheckFailure(name, number, source, description)
  Dim got
  got = Err.Number & " | " & Err.Source & " | " & Err.Description
  Err.Clear
  Check name, got, number & " | " & source & " | " & description
End Sub

' For descriptions whose text is not fixed: some part of it, in any case, or just
' any text.
Sub CheckFailureSays(name, number, source, part)
  Dim got, says
  got = Err.Number & " | " & Err.Source
  says = Len(Err.Description) > 0 And InStr(LCase(Err.Description), part) > 0
  If Not says Then got = got & " | " & Err.Description
  Err.Clear
  Check name, got, number & " | " & source
End Sub

Sub CheckNoFailure(name)
  CheckFailure name, 0, "", ""
End Sub

Function Rule(code)
  Rule = &H80040000 + code
End Function

Function NewService()
  Set NewService = CreateObject("Lotrix.cLotrix")
  NewService.openConnection "Provider=SQLite;Data Source=" & databasePath
End Function

' Unicode, one table after the other.
Dim outputFile

Sub OpenOutput(name)
  Dim files
  Set files = CreateObject("Scripting.FileSystemObject")
  Set outputFile = files.CreateTextFile(outputFolder & "\" & name, True, True)
End Sub

Function Shown(value)
  If IsNull(value) Then
    Shown = "Null"
  Else
    Shown = "'" & Replace(Replace(Replace(value, "\", "\\"), vbCr, "\r"), vbLf, "\n") & "'"
  End If
End Function

Sub WriteTable(table)
  Dim row, cell, line
  line = "headers"
  For Each cell In table.Headers
    line = line & " " & Shown(cell)
  Next
  outputFile.WriteLine line
  For Each row In table.Data
    line = "row"
    For Each cell In row
      line = line & " " & Shown(cell)
    Next
    outputFile.WriteLine line
  Next
End Sub

' Every way to a cell leads to the same one.
Sub CheckEveryCell(name, table)
  Dim row, column, cell, value, differing, seen
  differing = 0
  seen = 0
  For row = 1 To table.Rows
    column = 0
    For Each cell In table.Data(row)
      column = column + 1
      seen = seen + 1
      value = table.GetValue(row, column)
      If IsNull(cell) Then
        If Not IsNull(table.Data(row)(column)) Or value <> "" Then differing = differing + 1
      Else
        If value <> cell Then differing = differing + 1
        If table.Data(CStr(row))(CStr(column)) <> cell Then differing = differing + 1
        If table.Data.Item(row).Item(CStr(column)) <> cell Then differing = differing + 1
      End If
    Next
  Next
  Check name & ": cells that differ", differing, 0
  Check name & ": cells", seen, table.Rows * table.Cols
End Sub

' The first field of the first record.
Function Stored(service, query)
  Dim records
  Set records = service.Connection.Execute(query)
  If records.EOF Then
    Stored = "no record"
  Else
    Stored = records.Fields(0).Value
  End If
  records.Close
End Function

Sub Finish(expectedChecks)
  If checksMade <> expectedChecks Then
    WScript.Echo "FAIL number of checks: got " & checksMade & ", expected " & expectedChecks
  End If
  WScript.Echo "finished " & checksMade
End Sub

