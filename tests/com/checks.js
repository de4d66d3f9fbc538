// What every JScript client begins with: the checks, and what the runner passes on
// (database, folder for output, today as m/d/yyyy).
var checksMade = 0;
var databasePath = WScript.Arguments(0);
var outputFolder = WScript.Arguments(1);
var today = WScript.Arguments(2);

function check(name, got, expected) {
  checksMade = checksMade + 1;
  if (typeof got == typeof expected && got == expected) {
    WScript.Echo("ok " + name);
  } else {
    WScript.Echo(
        "FAIL " + name + ": got " + typeof got + " " + got + ", expected " + typeof expected + " " +
        expected);
  }
}

// The number of an error as it was raised: 800A0000 + number is how it travels.
function numberOf(error) {
  var number = error.number | 0;
  return (number >>> 16) == 0x800A ? number & 0xFFFF : number;
}

function rule(code) {
  return (0x80040000 | 0) + code;
}

// The description may be undefined where it is not a fixed text.
function checkFailure(name, call, number, description) {
  try {
    call();
  } catch (error) {
    var got = numberOf(error);
    var expected = "" + number;
    if (description !== undefined) {
      got = got + " | " + error.description;
      expected = expected + " | " + description;
    }
    check(name, "" + got, expected);
    return;
  }
  check(name, "no failure", "" + number);
}

function newService() {
  var service = new ActiveXObject("Lotrix.cLotrix");
  service.openConnection("Provider=SQLite;Data Source=" + databasePath);
  return service;
}

var outputFile;

function openOutput(name) {
  var files = new ActiveXObject("Scripting.FileSystemObject");
  outputFile = files.CreateTextFile(outputFolder + "\\" + name, true, true);
}

function shown(value) {
  if (value === null) return "Null";
  return "'" + value.replace(/\\/g, "\\\\").replace(/\r/g, "\\r").replace(/\n/g, "\\n") + "'";
}

function writeTable(table) {
  var line = "headers";
  for (var header = new Enumerator(table.Headers); !header.atEnd(); header.moveNext()) {
    line = line + " " + shown(header.item());
  }
  outputFile.WriteLine(line);
  for (var row = new Enumerator(table.Data); !row.atEnd(); row.moveNext()) {
    line = "row";
    for (var cell = new Enumerator(row.item()); !cell.atEnd(); cell.moveNext()) {
      line = line + " " + shown(cell.item());
    }
    outputFile.WriteLine(line);
  }
}

// Every way to a cell leads to the same one.
function checkEveryCell(name, table) {
  var differing = 0;
  var seen = 0;
  for (var row = 1; row <= table.Rows; row++) {
    var cells = table.Data.Item(row);
    for (var column = 1; column <= cells.Count; column++) {
      var cell = cells.Item(column);
      var value = table.GetValue(row, column);
      seen = seen + 1;
      if (value != (cell === null ? "" : cell)) differing = differing + 1;
      if (table.Data("" + row)("" + column) !== cell) differing = differing + 1;
    }
  }
  check(name + ": cells that differ", differing, 0);
  check(name + ": cells", seen, table.Rows * table.Cols);
}

function stored(service, query) {
  var records = service.Connection.Execute(query);
  var value = records.EOF ? "no record" : records.Fields(0).Value;
  records.Close();
  return value;
}

function finish(expectedChecks) {
  if (checksMade != expectedChecks) {
    WScript.Echo("FAIL number of checks: got " + checksMade + ", expected " + expectedChecks);
  }
  WScript.Echo("finished " + checksMade);
}
