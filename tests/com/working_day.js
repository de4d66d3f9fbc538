// A day's work of a program that imports what clinics report, then its failures.
var service = newService();
openOutput("working_day_js.txt");

service.manufacturerProviderOrderCreateUpdate(today, "E04148", "HEPB", 15, "1", "1", "", "MKRB");
var order =
    " FROM neworder WHERE pin = 'E04148' AND vaccine = 'HEPB' AND orddate = {" + today + "}";
check("order: doses", stored(service, "SELECT orddose" + order), 15);
check("order: kind", stored(service, "SELECT rectype" + order), "5");
service.manufacturerProviderOrderCreateUpdate(today, "E04148", "HEPB", "25", 1, "", "", "MKRB");
check("changed order: doses", stored(service, "SELECT orddose" + order), 25);
check("changed order: rows", stored(service, "SELECT count(*)" + order), 1);

service.providerProfileUpdate(
    "JS0001", "Cl\u00ednica \u0421\u043e\u043b\u043d\u0446\u0435", "Zo\u00eb", "1 Kite's Ave", "",
    "Amberbrook", "ZZ", "69401", "", "(217) 555-0100", "", "", "", "", "", "", "", "", "", false,
    10);
var clinic = " FROM provider WHERE pin = 'JS0001'";
check(
    "clinic: name in capitals", stored(service, "SELECT lastname" + clinic),
    "CL\u00cdNICA \u0421\u041e\u041b\u041d\u0426\u0415");
check("clinic: contact", stored(service, "SELECT contact" + clinic), "ZO\u00cb");
check(
    "clinic: address without the apostrophe", stored(service, "SELECT address" + clinic),
    "1 KITES AVE");
service.providerShippingDataUpdate(
    "JS0001", "Clinic", "Zoe", "3 Kite Ave", "", "Amberbrook", "ZZ", "69401", "", "(217) 555-0101",
    "");
check("clinic: new address", stored(service, "SELECT address" + clinic), "3 KITE AVE");
service.providerAdditionalInfoUpdate("JS0001", "CLINIC", 12, "5 Jan 2026", "C1", "E-1", "No");
check("clinic: register", stored(service, "SELECT cat1" + clinic), "NO");
service.providerEnrollmentAddUpdate("JS0001", "A", 2, 1, 2, 3, 4, 5, 6, 7, 8.5);
check("enrollment", stored(service, "SELECT allkids2 FROM enroll WHERE pin = 'JS0001'"), 1);
check(
    "enrollment: half to even",
    stored(service, "SELECT statekids2 FROM enroll WHERE pin = 'JS0001'"), 8);
service.physicianAddUpdate("JS0001", "\u00c5ngstr\u00f6m", "Zoe", "", "", "", "m-1", "");
check(
    "physician",
    stored(service, "SELECT medicaidno FROM physicn WHERE lastname = '\u00c5NGSTR\u00d6M'"), "m-1");
service.DepotProviderOrderUpdate(today, "D00001", "JS0001", "MMR", 10, "D1046-02", "1", today);
check("shipment", stored(service, "SELECT orddose FROM neworder WHERE pin = 'JS0001'"), 10);
var table = service.stockTableRead("", "DTAP");
service.providerInventoryAdjustmentUpdate(
    "D00001", today, today, "Lo", "P00001", "DTAP", table.GetValue(1, 4), -2);
check("adjustment", stored(service, "SELECT count(*) FROM distrib WHERE userid = 'LTX_DLL'"), 1);
service.provinvAdd("P00001", "DTAP", 48, today);
check("counted stock", stored(service, "SELECT doses FROM provhas WHERE userid = 'LTX_DLL'"), 48);
service.DosesAdministeredUpdate(
    today, "P00001", "DTAP", 1, 1, 7, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10);
check("doses: total", stored(service, "SELECT rowtot FROM dosesadm WHERE userid = 'LTX_DLL'"), 10);

writeTable(table);
checkEveryCell("stock", table);
table = service.vaccineReferenceTableRead();
writeTable(table);
checkEveryCell("vaccines", table);
table = service.inventoryOnHandRead("d00001", "mmr");
writeTable(table);
checkEveryCell("on hand", table);
table = service.manufacturerProviderOrderRead("p00001", "1/1/2000", "", "", today);
writeTable(table);
checkEveryCell("orders", table);
service.CheckVaccActive("OPV");
service.CheckVaccActive("DTAP");
check("connection: open", service.Connection.State, 1);
service.closeConnection();
service.physicianDeleteByPin("JS0001");
check("physician gone", stored(service, "SELECT count(*) FROM physicn WHERE pin = 'JS0001'"), 0);

// Failures.
checkFailure("no doses", function() {
  service.manufacturerProviderOrderCreateUpdate(today, "P00001", "DTAP", 0, "1");
}, rule(20025), "The number of doses for an order must be greater than zero");
checkFailure("blank depot", function() {
  service.inventoryOnHandRead(" ");
}, 20022, "A NULL depot pin is entered");
checkFailure("blank PIN of a shipment", function() {
  service.DepotProviderOrderUpdate(today, "D00001", " ", "MMR", 1, "L");
}, rule(2000), "2000");
checkFailure("apostrophe", function() {
  service.stockTableRead("", "", "O'NEIL");
}, 0x80040E14 | 0);
checkFailure("unknown table", function() {
  stored(service, "SELECT 1 FROM nowhere");
}, 0x80040E37 | 0);
checkFailure("too few", function() {
  service.physicianDeleteByPin();
}, 450);
checkFailure("too many", function() {
  service.physicianDeleteByPin("A", "B");
}, 450);
checkFailure("unknown member", function() {
  service.noSuchMember();
}, 438);
checkFailure("null for a String", function() {
  service.physicianDeleteByPin(null);
}, 13);
checkFailure("a word for a Long", function() {
  service.manufacturerProviderOrderCreateUpdate(today, "P00001", "DTAP", "twenty", "1");
}, 13);
checkFailure("unpaired surrogate", function() {
  service.stockTableRead("", "", "\ud83d");
}, 5);
checkFailure("overflow", function() {
  service.providerEnrollmentAddUpdate("P00001", "A", 99999, 1, 1, 1, 1, 1, 1, 1, 1);
}, 6);

// The result table, with objects of the script's own.
table = service.vaccineReferenceTableRead();
check("default members", table.Data(1)("1"), table.GetValue(1, 1));
check("length", table.Data.Count, table.Rows);
table.SetValue(1, 1, "\ud83d\ude00 \u044f");
check("a cell beyond the first plane", table.GetValue(1, 1), "\ud83d\ude00 \u044f");
checkFailure("row", function() {
  table.GetValue(999, 1);
}, rule(50000), "Invalid Row Specified");
checkFailure("column", function() {
  table.GetValue(1, 999);
}, rule(50001), "Invalid Col Specified");

// Keyed and ordered, of arrays.
function OwnList() {
  this.items = [];
  this.keys = [];
  this.Count = 0;
}
OwnList.prototype.position = function(index) {
  if (typeof index != "string") return index - 1;
  for (var i = 0; i < this.Count; i++) {
    if (this.keys[i] == index) return i;
  }
  throw new Error(5, "no item of the key " + index);
};
OwnList.prototype.Add = function(item, key) {
  this.items[this.Count] = item;
  this.keys[this.Count] = key;
  this.Count = this.Count + 1;
};
OwnList.prototype.Item = function(index) {
  return this.items[this.position(index)];
};
OwnList.prototype.Remove = function(index) {
  for (var i = this.position(index); i + 1 < this.Count; i++) {
    this.items[i] = this.items[i + 1];
    this.keys[i] = this.keys[i + 1];
  }
  this.Count = this.Count - 1;
};

table = new ActiveXObject("Lotrix.cResultSet");
check("new: no data", table.Data, null);
var rows = new OwnList();
table.Data = rows;
table.Headers = service.vaccineReferenceTableRead().Headers;
check("own list: headers of ours", table.Headers(1), "vaccine");
table.Cols = 2;
table.AddRow();
check("own list: a row", rows.Count, 1);
table.SetValue(1, 2, "second");
check("own list: set", table.GetValue(1, 2), "second");
var ownRow = new OwnList();
ownRow.Add("first own", "1");
table.AddRow(ownRow);
check("own row", table.GetValue(2, 1), "first own");
check("own row: the object itself", rows.Item("2") === ownRow, true);
checkFailure("own row: column", function() {
  table.GetValue(2, 2);
}, rule(50001), "Invalid Col Specified");
var failed = false;
try {
  table.GetValue(0, 1);
} catch (error) {
  failed = true;
}
check("own list: its failure is one of the table's", failed, true);
table.DeleteRow(1);
check("own list: rows that stay", table.Data.Count, 1);
check("own list: the row that stays", table.GetValue(1, 1), "first own");
table.CLEAR();
check("cleared", table.Rows, 0);
service = null;
finish(54);
