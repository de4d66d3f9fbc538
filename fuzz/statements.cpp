// A client's own statements, through the dialect to a database.
#include <string>

#include "fuzz/database.h"
#include "fuzz/require.h"
#include "lotrix/connection.h"
#include "lotrix/recordset.h"

namespace lotrix::fuzz {

namespace {

// One row a table: joins of many stay small, and every kind of column is read.
void OneRowEach(Connection& connection) {
  connection.Execute(
      "INSERT INTO provider(pin, lastname, datevfc, provid, sector) "
      "VALUES('P00001', 'CLINIC ', {7/4/2026}, 7, 10.5)");
  connection.Execute(
      "INSERT INTO pvaccref(vaccine, maker, begin, end, pkgsize, cost, locactiv) "
      "VALUES('DTAP', 'MKRA', {1/1/2004}, {12/31/2030}, 10, 17.85, .F.)");
  connection.Execute(
      "INSERT INTO neworder(pin, orddate, vaccine, orddose) "
      "VALUES('P00001', {7/4/2026}, 'DTAP', 20)");
  connection.Execute("INSERT INTO nextid(ctablename, inextid) VALUES('distrib', 2147483647)");
}

void ReadAll(Recordset& rows) {
  for (; !rows.EndOfFile(); rows.MoveNext()) {
    const Fields fields = rows.Fields();
    for (std::int32_t column = 0; column < fields.Count(); ++column) {
      const Field field = fields.Item(column);
      for (const char c : field.Name()) Require(c < 'A' || c > 'Z', "a name is in lower case");
      const Value value = field.Value();
      Require(!std::holds_alternative<Empty>(value), "a field holds a value or Null");
      if (field.Type() == DataType::kDBDate) {
        Require(std::holds_alternative<Date>(value) || std::holds_alternative<Null>(value),
                "a date column holds dates");
      }
    }
  }
}

void Check(const std::string& text) {
  static Database database(OneRowEach);
  static Connection connection;
  if (connection.State() == ObjectState::kClosed) connection.Open(database.ConnectionString());

  const std::int32_t number = NumberOf([&] {
    const auto rows = connection.Execute(text);
    if (rows->State() == ObjectState::kOpen) ReadAll(*rows);
  });
  Require(IsOneOf(number,
                  {0, Numbered(RuntimeError::kInvalidArgument),
                   Numbered(EngineError::kStatementRefused), Numbered(EngineError::kNoSuchTable),
                   Numbered(EngineError::kValueCannotBeConverted),
                   Numbered(EngineError::kValueOutOfRange), Numbered(EngineError::kNotPermitted),
                   Numbered(EngineError::kFailed)}),
          "a statement is refused by an engine's number");
  Require(!connection.InTransaction(), "a statement opens no transaction");
  if (!database.Changed()) return;
  database.RequireShape();
  Require(number == 0, "a refused statement changes nothing");
  database.Restore();
}

}  // namespace

}  // namespace lotrix::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  lotrix::fuzz::Check(std::string(data, data + size));
  return 0;
}
