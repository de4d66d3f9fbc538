' A day's work of a clinic's front-end.
Dim service, table, lot, records
Set service = NewService()
OpenOutput "working_day_vbs.txt"

' A provider orders, and changes the order.
service.manufacturerProviderOrderCreateUpdate today, "p00001", "DTAP", 20, "1", , , "MKRA"
Dim order
order = " FROM neworder WHERE pin = 'P00001' AND vaccine = 'DTAP' AND orddate = {" & today & "}"
Check "order: doses", Stored(service, "SELECT orddose" & order), 20
Check "order: first funding doses", Stored(service, "SELECT fdose1" & order), 20
Check "order: kind", Stored(service, "SELECT rectype" & order), "5"
Check "order: maker", Stored(service, "SELECT maker" & order), "MKRA"
Check "order: user", Stored(service, "SELECT userid" & order), "LTX_DLL"
service.manufacturerProviderOrderCreateUpdate today, "P00001", "dtap", "30", 1, "1", "", "MKRA"
Check "changed order: doses", Stored(service, "SELECT orddose" & order), 30
Check "changed order: rows", Stored(service, "SELECT count(*)" & order), 1

' A new clinic: optional arguments left out at the end and in the middle.
service.providerProfileUpdate "NEW001", "Lantern Street Clinic", "Orla Thistle", _
  "1 O'Lantern St.", "", "Amberbrook", "ZZ", "69401", "", "(217) 555-0100", "", "", "", "", "", _
  "", "", "", "", True, "10", , "42", , , "Ms"
Dim clinic
clinic = " FROM provider WHERE pin = 'NEW001'"
Check "clinic: rows", Stored(service, "SELECT count(*)" & clinic), 1
Check "clinic: address without the apostrophe", Stored(service, "SELECT address" & clinic), _
  "1 OLANTERN ST."
Check "clinic: sector", CStr(Stored(service, "SELECT sector" & clinic)), "10"
Check "clinic: extension", Stored(service, "SELECT extension" & clinic), "42"
Check "clinic: title", Stored(service, "SELECT title" & clinic), "MS"
Check "clinic: user", Stored(service, "SELECT userid" & clinic), "LTX_DLL"
service.providerShippingDataUpdate "NEW001", "Lantern Street Clinic", "Orla Thistle", _
  "3 Lantern St.", "Back door", "Amberbrook", "ZZ", "69401", "", "(217) 555-0101", "", , "Orla"
Check "clinic: address", Stored(service, "SELECT address" & clinic), "3 LANTERN ST."
Check "clinic: first name", Stored(service, "SELECT firstname" & clinic), "ORLA"
service.providerAdditionalInfoUpdate "NEW001", "CLINIC", "11", "January 5, 2026", "C1", "E-100", _
  " yes "
Check "clinic: new sector", CStr(Stored(service, "SELECT sector" & clinic)), "11"
Check "clinic: register", Stored(service, "SELECT cat1" & clinic), "YES"
service.providerEnrollmentAddUpdate "NEW001", "A", "1", "120", "40", "12", "0", "5", "57", "3", "60"
Check "enrollment", Stored(service, "SELECT allkids1 FROM enroll WHERE pin = 'NEW001'"), 120
service.physicianAddUpdate "NEW001", "Thistle", "Orla", "B", "MD", "", "", "L-77"
Check "physician", Stored(service, _
  "SELECT medlicense FROM physicn WHERE pin = 'NEW001' AND lastname = 'THISTLE'"), "L-77"

' A depot ships; a provider loses doses, counts its stock and reports doses given.
service.DepotProviderOrderUpdate today, "D00001", "NEW001", "MMR", 10, "D1046-02"
Check "shipment", Stored(service, "SELECT orddose FROM neworder WHERE pin = 'NEW001'"), 10
Set table = service.stockTableRead(, "DTAP")
lot = table.GetValue(1, 4)
service.providerInventoryAdjustmentUpdate "D00001", today, today, "Lo", "P00001", "DTAP", lot, -2
Check "adjustment", Stored(service, "SELECT count(*) FROM distrib WHERE userid = 'LTX_DLL' " & _
  "AND pin = 'P00001' AND vaccine = 'DTAP'"), 1
service.provinvAdd "P00001", "DTAP", "48", today
Check "counted stock", Stored(service, "SELECT doses FROM provhas WHERE userid = 'LTX_DLL'"), 48
service.DosesAdministeredUpdate today, "P00001", "DTAP", "1", , 7, 3, , , , , , , , , , , , 10
Dim doses
doses = " FROM dosesadm WHERE userid = 'LTX_DLL' AND pin = 'P00001' AND vaccine = 'DTAP'"
Check "doses: below one", Stored(service, "SELECT g1" & doses), 7
Check "doses: one year", Stored(service, "SELECT g2" & doses), 3
Check "doses: two years, left out", Stored(service, "SELECT g3" & doses), 0
Check "doses: total", Stored(service, "SELECT rowtot" & doses), 10
Check "doses: sector, left out", CStr(Stored(service, "SELECT sector" & doses)), "1"

' Reads, cell by cell.
WriteTable table
Check "stock: columns", table.Cols, 7
Check "stock: header", table.Headers("2"), "datein"
Check "stock: vaccine", table.Data(1)(5), "DTAP"
Check "stock: there is some", table.Rows > 3, True
CheckEveryCell "stock", table
Set table = service.vaccineReferenceTableRead()
WriteTable table
CheckEveryCell "vaccines", table
Set table = service.inventoryOnHandRead("d00001", "mmr")
WriteTable table
CheckEveryCell "on hand", table
Set table = service.manufacturerProviderOrderRead("p00001", "1/1/2000", , , today)
WriteTable table
CheckEveryCell "orders", table
Set table = service.manufacturerProviderOrderRead("P00001", "1/2/1950")
Check "no orders: rows", table.Rows, 0
Check "no orders: columns", table.Cols, 7
Check "no orders: data", table.Data.Count, 0
Check "no orders: headers", table.Headers.Count, 7
service.CheckVaccActive "DTAP"
service.CheckVaccActive "OPV"

' The connection is an automation object: Connection opens it, again after a close.
Dim connection, field, names
Set connection = service.Connection
Check "connection: open", connection.State, 1
Check "connection: text", connection.ConnectionString, _
  "Provider=SQLite;Data Source=" & databasePath
Check "connection: mode", connection.Mode, 3
Check "connection: the same object", connection Is service.Connection, True
Set records = connection.Execute("SELECT pin, lastname, datevfc FROM provider WHERE pin = 'NEW001'")
Check "records: open", records.State, 1
Check "records: count", records.RecordCount, 1
Check "records: not at the end", records.EOF, False
Check "records: fields", records.Fields.Count, 3
Check "records: name", records.Fields(1).Name, "lastname"
Check "records: by name", records.Fields("PIN").Value, "NEW001"
Check "records: by item", records.Fields.Item(0).Value, "NEW001"
Check "records: type of a date", records.Fields(2).Type, 133
Check "records: a date", CStr(VarType(records.Fields(2).Value)), CStr(vbDate)
Check "records: its year", Year(records.Fields("datevfc").Value), 2026
records.MoveNext
Check "records: at the end", records.EOF, True
records.Close
Check "records: closed", records.State, 0
service.closeConnection
Check "connection: closed", connection.State, 0
On Error Resume Next
Set records = connection.Execute("SELECT pin FROM provider")
CheckFailureSays "closed connection", 3704, "Lotrix", ""
On Error Goto 0
service.closeConnection
Check "connection: open again", service.Connection.State, 1
service.closeConnection
Check "read reopens", service.vaccineReferenceTableRead.Rows > 3, True
Check "connection: reopened", connection.State, 1
connection.Close
Check "connection: closed by the client", connection.State, 0
connection.Open
Check "connection: opened by the client", connection.State, 1

service.physicianDeleteByPin "NEW001"
Check "physician gone", Stored(service, "SELECT count(*) FROM physicn WHERE pin = 'NEW001'"), 0
Set service = Nothing
Check "connection outlives its service", connection.State, 1
Set connection = Nothing
Finish 68
