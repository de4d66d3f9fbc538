' ADO's road: what the component does with a connection and recordsets of somebody
' else's, and what it makes of their answers.
Const kSource = "LOTRIX DLL"
Dim service, table, connection
Set service = CreateObject("Lotrix.cLotrix")
service.openConnection "Provider=Shaped;Data Source='any thing';Extra=1"

' The answers of a provider as cells.
Set table = service.vaccineReferenceTableRead()
Check "vaccines: rows", table.Rows, 2
Check "vaccines: header in lower case", table.Headers(1), "vaccine"
Check "vaccines: trimmed", table.GetValue(1, 1), "DTAP"
Check "vaccines: blanks become one", table.GetValue(2, 1), " "
Set table = service.stockTableRead()
Check "stock: rows", table.Rows, 3
Check "stock: columns", table.Cols, 7
Check "stock: text", table.GetValue(1, 1), "P1"
Check "stock: date", table.GetValue(1, 2), "03/07/2004"
Check "stock: 32 bits", table.GetValue(1, 3), "12"
Check "stock: Null text", table.GetValue(1, 4), ""
Check "stock: Null text is a Null", IsNull(table.Data(1)(4)), True
Check "stock: double", table.GetValue(1, 6), "12.5"
Check "stock: date with its time", table.GetValue(1, 7), "3/7/2004 10:30:00 AM"
Check "stock: Null date", IsNull(table.Data(2)(2)), True
Check "stock: large double", table.GetValue(2, 6), "1E+15"
Check "stock: date of another type", table.GetValue(2, 7), "12/31/2003"
Check "stock: small double", table.GetValue(3, 6), "0.1"
Set table = service.inventoryOnHandRead("d00001")
Check "on hand: rows", table.Rows, 1
Check "on hand: logical", table.GetValue(1, 1), "True"
Check "on hand: currency", table.GetValue(1, 2), "12.5"
Check "on hand: decimal", table.GetValue(1, 3), "2.75"
Check "on hand: 64 bits", table.GetValue(1, 4), "5000000000"
Check "on hand: 16 bits", table.GetValue(1, 5), "-7"
Check "on hand: false", table.GetValue(1, 6), "False"
service.CheckVaccActive "DTAP"

' Writes.
service.manufacturerProviderOrderCreateUpdate "1/5/2004", "p00001", "dtap", 20, "1", , , "MKRA"
service.physicianDeleteByPin "P00001"
service.provinvAdd "P00001", "DTAP", "12", "1/5/2004"

' The connection that the component gives out is the provider's own.
Set connection = service.Connection
Check "connection: text", connection.ConnectionString, _
  "Provider=Shaped;Data Source='any thing';Extra=1"
Check "connection: mode", connection.Mode, 3
Check "connection: the same object", connection Is service.Connection, True
Dim answer
Set answer = connection.Execute("the client's own")
Check "connection: a statement of the client's", answer.Fields("name").Value, "its answer"
Check "stock: not ASCII", table.Headers(1) & answer.Fields(1).Value, _
  "active" & service.stockTableRead.GetValue(1, 5)
answer.Close
Set answer = Nothing
service.closeConnection
Check "connection: closed", connection.State, 0
service.closeConnection
service.openConnection "Provider=Shaped;Data Source=other"
Check "connection: opened again", service.Connection.State, 1
Check "connection: with the new text", connection.ConnectionString, _
  "Provider=Shaped;Data Source=other"

' Failures.
On Error Resume Next
service.stockTableRead , , "BROKEN"
CheckFailure "the provider's failure", &H80040E37, kSource, "File 'stock.dbf' does not exist."
service.CheckVaccActive "BROKEN"
CheckFailure "the provider's failure of a plain number", 3021, kSource, "No current record."
service.physicianDeleteByPin "D'ARCY"
CheckFailure "a rule before any statement", Rule(20079), kSource, _
  "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed."
service.stockTableRead , , "O'NEIL"
CheckFailureSays "an apostrophe", &H80040E14, kSource, ""
service.manufacturerProviderOrderRead "P00001", "{1/5/2004"
CheckFailure "a brace", Rule(20062), kSource, _
  "The Shipment Begin Date that was entered is not a valid date"
service.provinvAdd "P00001", "NULLS", "1", "1/5/2004"
CheckFailureSays "a Null count", 94, kSource, "null"
service.closeConnection
service.openConnection "Provider=Unknown;Data Source=x"
service.vaccineReferenceTableRead
CheckFailure "no such provider", 3706, kSource, _
  "Provider cannot be found. It may not be properly installed."
On Error Goto 0

' The connection is let go, not closed: who still has it, has it open.
service.openConnection "Provider=Shaped;Data Source=last"
Check "connection: opened after a failure", service.Connection.State, 1
Set service = Nothing
Check "connection: open without its service", connection.State, 1
Set connection = Nothing
Finish 41
