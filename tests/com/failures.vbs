' Failures of each kind, as a script sees them.
Const kSource = "LOTRIX DLL"
Dim service, nobody, table, nothingYet
Set service = NewService()
Set nobody = Nothing

On Error Resume Next

' Rules.
service.manufacturerProviderOrderCreateUpdate today, "NOSUCH", "DTAP", 0, "1"
CheckFailure "no doses", Rule(20025), kSource, _
  "The number of doses for an order must be greater than zero"
service.manufacturerProviderOrderCreateUpdate today, "NOSUCH", "DTAP", 5, "1"
CheckFailure "unknown provider", Rule(20004), kSource, "Provider entered not found in LOTRIX"
service.manufacturerProviderOrderCreateUpdate today, "P00001", "DTAP", 5, " "
CheckFailure "no funding", Rule(20091), kSource, "A Null funding source is entered"
service.manufacturerProviderOrderRead "", "1/1/2004"
CheckFailure "blank PIN", Rule(2000), kSource, "A null provider PIN was entered"
service.manufacturerProviderOrderRead "P00001", " "
CheckFailure "no date", Rule(20021), kSource, "A Null Shipment Date is entered"
service.stockTableRead , , , "13/45/2004"
CheckFailure "no such date", Rule(20062), kSource, _
  "The Shipment Begin Date that was entered is not a valid date"
service.stockTableRead , , , , "1/1/2004"
CheckFailure "end without begin", Rule(20069), kSource, _
  "The end of the date range must be later than the beginning of the range, " & _
  "and both must be valid dates"
service.stockTableRead "TOOLONG"
CheckFailure "long PIN", Rule(20078), kSource, _
  "The number of characters in the pin entered exceeds the maximum allowed"
service.stockTableRead "A-1"
CheckFailure "PIN with a dash", Rule(20079), kSource, _
  "The provider pin number entered is not alphanumeric. Only alphanumeric pins are allowed."
service.stockTableRead , "NOSUCH"
CheckFailure "unknown vaccine", Rule(20051), kSource, _
  "Vaccine not available to private provider in LOTRIX"
service.stockTableRead , "OPV"
CheckFailure "inactive vaccine", Rule(20086), kSource, _
  "The vaccine being used in the current operation is inactive in LOTRIX"
service.physicianAddUpdate "P00001", String(21, "X"), "Y", "", "", "", "", ""
CheckFailure "long name", Rule(20131), kSource, _
  "Incorrect field length for Physicn table Add/Update: Last Name"
Check "the number as clients test it", Rule(20065), -2147201439

' A plain number.
service.inventoryOnHandRead "  "
CheckFailure "blank depot", 20022, kSource, "A NULL depot pin is entered"

' Of the run time, inside an operation.
service.DosesAdministeredUpdate today, "P00001", "DTAP", "one"
CheckFailureSays "dose in series is no number", 13, kSource, "type mismatch"
service.providerEnrollmentAddUpdate "P00001", "A", "99999", 1, 1, 1, 1, 1, 1, 1, 1
CheckFailureSays "age group too large", 6, kSource, "overflow"

' Of the engine.
service.stockTableRead , , "O'NEIL"
CheckFailureSays "apostrophe", &H80040E14, kSource, ""
service.Connection.Execute "SELECT nothing FROM provider"
CheckFailureSays "unknown column", &H80040E14, "Lotrix", ""
service.Connection.Execute "SELECT pin FROM nowhere"
CheckFailureSays "unknown table", &H80040E37, "Lotrix", ""
Dim other
Set other = CreateObject("Lotrix.cLotrix")
other.openConnection "Provider=SQLite;Data Source=" & outputFolder & "\nowhere\no.db"
other.vaccineReferenceTableRead
CheckFailureSays "no such folder", &H80004005, kSource, ""
other.CheckVaccActive "DTAP"
CheckFailureSays "no such folder, message", &H80004005, kSource, ""
other.openConnection "Provider=SQLite;Data Source=" & outputFolder & "\empty.db"
other.vaccineReferenceTableRead
CheckFailureSays "no tables", &H80040E37, kSource, ""
other.closeConnection
other.openConnection ""
other.vaccineReferenceTableRead
CheckFailure "no connection string", 3706, kSource, _
  "Provider cannot be found. It may not be properly installed."
Set other = CreateObject("Lotrix.cLotrix")
other.vaccineReferenceTableRead
CheckFailure "never given a connection string", 3706, kSource, _
  "Provider cannot be found. It may not be properly installed."

' Of the call.
service.physicianDeleteByPin
CheckFailureSays "too few", 450, "Lotrix", ""
service.physicianDeleteByPin "A", "B"
CheckFailureSays "too many", 450, "Lotrix", ""
service.vaccineReferenceTableRead "A"
CheckFailureSays "one where none is", 450, "Lotrix", ""
service.manufacturerProviderOrderCreateUpdate today, "P00001", "DTAP", 5
CheckFailureSays "too few of many", 450, "Lotrix", ""
service.inventoryOnHandRead , "DTAP"
CheckFailureSays "required left out", 449, "Lotrix", ""
service.manufacturerProviderOrderCreateUpdate today, "P00001", "DTAP", , "1"
CheckFailureSays "required Long left out", 449, "Lotrix", ""
service.noSuchMember
Check "unknown member", Err.Number, 438
Err.Clear
service.physicianDeleteByPin Null
CheckFailureSays "Null for a String", 13, "Lotrix", "type mismatch"
service.manufacturerProviderOrderCreateUpdate today, "P00001", "DTAP", Null, "1"
CheckFailureSays "Null for a Long", 13, "Lotrix", "type mismatch"
service.manufacturerProviderOrderCreateUpdate today, "P00001", "DTAP", "twenty", "1"
CheckFailureSays "a word for a Long", 13, "Lotrix", "type mismatch"
service.manufacturerProviderOrderCreateUpdate today, "P00001", "DTAP", 3E9, "1"
CheckFailureSays "too large for a Long", 6, "Lotrix", "overflow"
service.physicianDeleteByPin Array("P00001")
CheckFailureSays "an array for a String", 13, "Lotrix", "type mismatch"
service.physicianDeleteByPin service
Check "an object for a String is refused", Err.Number <> 0, True
Err.Clear
service.openConnection 5, 6
CheckFailureSays "too many for the connection", 450, "Lotrix", ""

' Of the result table and its collections.
Set table = CreateObject("Lotrix.cResultSet")
table.GetValue 1, 1
CheckFailureSays "no data", 91, "Lotrix", "not set"
table.AddRow
CheckFailureSays "add to no data", 91, "Lotrix", "not set"
Set table = service.vaccineReferenceTableRead()
table.GetValue 9999, 1
CheckFailure "row", Rule(50000), "Lotrix", "Invalid Row Specified"
table.SetValue 9999, 1, "x"
CheckFailure "row to set", Rule(50000), "Lotrix", "Invalid Row Specified"
table.GetValue 1, 9999
CheckFailure "column", Rule(50001), "Lotrix", "Invalid Col Specified"
table.GetValue 0, 1
CheckFailureSays "row 0", 5, "Lotrix", ""
table.GetValue "one", 1
CheckFailureSays "row one", 13, "Lotrix", "type mismatch"
table.GetValue Null, 1
CheckFailureSays "row Null", 13, "Lotrix", "type mismatch"
table.GetValue 1
CheckFailureSays "no column", 450, "Lotrix", ""
table.SetValue 1, , "x"
CheckFailureSays "column left out", 449, "Lotrix", ""
nothingYet = table.Headers("nosuch")
CheckFailureSays "unknown key", 5, "Lotrix", ""
nothingYet = table.Headers(99)
CheckFailureSays "position outside", 9, "Lotrix", "subscript out of range"
nothingYet = table.Headers(0)
CheckFailureSays "position 0", 9, "Lotrix", "subscript out of range"
table.Headers.Add "x", "1"
CheckFailureSays "key taken", 457, "Lotrix", ""
table.Headers.Remove "nosuch"
CheckFailureSays "unknown key to remove", 5, "Lotrix", ""
table.Headers.Remove 99
CheckFailureSays "position outside to remove", 9, "Lotrix", "subscript out of range"
table.Headers.Add
CheckFailureSays "nothing to add", 450, "Lotrix", ""
table.Rows = "many"
CheckFailureSays "rows", 13, "Lotrix", "type mismatch"
table.Rows = 3E9
CheckFailureSays "too many rows", 6, "Lotrix", "overflow"
Set table.Data = 5
Check "a number for the data is refused", Err.Number <> 0, True
Err.Clear
nothingYet = CreateObject("Lotrix.Collection").Count
Check "collections are not created", Err.Number <> 0, True
Err.Clear

' A failure leaves the object of use.
Set table = service.vaccineReferenceTableRead()
CheckNoFailure "after failures"
Check "read after failures", table.Rows > 3, True
Finish 61
