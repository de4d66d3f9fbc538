#include "src/utility/keys_and_lookups.h"

#include <limits>

#include "src/database/connection_access.h"
#include "src/errors/raise_error.h"
#include "src/platform/text.h"
#include "src/platform/values.h"
#include "src/resultset/recordset_conversion.h"
#include "src/utility/sql_text.h"

namespace lotrix {

namespace {

// The engine's write transaction around reading and storing a key; a transaction
// of the client's own serves as well.
class KeyTransaction {
 public:
  explicit KeyTransaction(Connection& connection)
      : connection_(connection),
        own_(ConnectionAccess::HasKeyTransactions(connection) && !connection.InTransaction()) {
    if (own_) connection_.BeginTrans();
  }
  ~KeyTransaction() {
    if (!own_ || !connection_.InTransaction()) return;
    try {
      connection_.RollbackTrans();
    } catch (...) {
      // The failure that led here is the one to be told.
    }
  }
  KeyTransaction(const KeyTransaction&) = delete;
  KeyTransaction& operator=(const KeyTransaction&) = delete;
  void Commit() {
    if (own_) connection_.CommitTrans();
  }

 private:
  Connection& connection_;
  bool own_;
};

std::string FirstFiveCharacters(const std::string& zipCode) {
  std::size_t end = 0;
  std::size_t units = 0;
  while (end < zipCode.size()) {
    std::size_t next = end + 1;
    while (next < zipCode.size() && (static_cast<unsigned char>(zipCode[next]) & 0xC0) == 0x80) {
      ++next;
    }
    units += Utf16Length(std::string_view(zipCode).substr(end, next - end));
    if (units > 5) break;
    end = next;
  }
  return zipCode.substr(0, end);
}

}  // namespace

void OpenQuery(Recordset& recordset, const Statement& query, Connection& connection) {
  recordset.Open(query, connection, CursorType::kKeyset, LockType::kReadOnly, CommandType::kText);
}

void RunStatement(const Statement& statement, Connection& connection) {
  Recordset run;
  OpenQuery(run, statement, connection);
  CloseRecordset(run);
}

Contract ReadContract(const Recordset& recordset) {
  std::int32_t column = 0;
  const Fields fields = recordset.Fields();
  const auto next = [&] { return fields.Item(column++).Value(); };
  const auto nextText = [&] { return std::string(TrimBlanks(ToText(next()))); };
  Contract contract;
  contract.vaccine = nextText();
  contract.maker = nextText();
  contract.begin = ToDate(next());
  contract.end = ToDate(next());
  contract.minbulk = ToLong(next());
  contract.unitsize = ToLong(next());
  contract.pkgsize = ToLong(next());
  contract.ndcno = nextText();
  contract.cost = ToDouble(next());
  contract.contractid = nextText();
  contract.sel_maker = nextText();
  contract.dos_wind = nextText();
  contract.excfunds = nextText();
  contract.descrip = nextText();
  return contract;
}

std::int32_t GetNextID(Service& service, const std::string& tableName) {
  const std::string upperName = UpperCase(tableName);
  Connection& connection = service.ReadConnection();
  KeyTransaction transaction(connection);

  Recordset keys;
  OpenQuery(keys,
            (Statement() << "SELECT inextid FROM Nextid WHERE ltrim(rtrim(upper(ctablename))) = '"
                         << upperName << "' ")
                .LockRows(),
            connection);
  const std::int32_t records = keys.RecordCount();
  if (records == 0) RaiseError(kNextIdCode, tableName + std::string(kNotInNextId));
  if (records > 1) {
    RaiseError(kNextIdCode,
               std::string(kMoreThanOneInstanceOf) + tableName + std::string(kExistsInNextId));
  }
  const std::int32_t last = ToLong(keys.Fields().Item(0).Value());
  if (last == std::numeric_limits<std::int32_t>::max()) RaiseRuntimeError(RuntimeError::kOverflow);
  const std::int32_t key = last + 1;
  CloseRecordset(keys);

  RunStatement(Statement() << "UPDATE nextid SET inextid  = " << key
                           << " WHERE ltrim(rtrim(upper(ctablename))) = '" << upperName << "' ",
               service.ReadConnection());
  transaction.Commit();
  return key;
}

std::string_view GetKeyPrefix(std::int32_t kind, bool flag) {
  switch (kind) {
    case 1:
      return flag ? "Aj" : "Di";
    case 2:
      return flag ? "Aj" : "Re";
    case 3:
      return "Sp";
    case 4:
      return "Ex";
    case 5:
      return "Lo";
    case 6:
      return "Im";
    case 7:
      return "Fa";
    case 8:
      return "Tr";
    case 11:
      return "Ac";
    case 12:
      return "Us";
    default:  // 9 and 10 are kinds without a prefix
      return "";
  }
}

std::string GetCountyName(Service& service, const std::string& zipCode) {
  Recordset counties;
  OpenQuery(counties,
            Statement() << "SELECT DISTINCT cntyname FROM zipcodes WHERE zip = '"
                        << FirstFiveCharacters(zipCode) << "' ",
            service.ReadConnection());
  if (counties.RecordCount() != 1) return {};
  return std::string(TrimBlanks(ToText(counties.Fields().Item(0).Value())));
}

Contract VerifyVaccineContract(Service& service, const std::string& date,
                               const std::string& vaccine, std::int32_t /*doseCount*/,
                               const std::string& maker) {
  Recordset contracts;
  OpenQuery(contracts,
            Statement() << "SELECT * FROM pvaccref WHERE ltrim(rtrim(vaccine)) == '" << vaccine
                        << "' "
                        << "AND ({" << date << "} BETWEEN begin AND end) "
                        << " and maker == '" << maker << "' "
                        << " AND locactiv = .F.",
            service.ReadConnection());
  if (contracts.RecordCount() < 1) RaiseError(kErrorVerifyingVaccineContract);
  return ReadContract(contracts);
}

std::int32_t CurrentOrderedDoses(const std::string& orderDate, const std::string& pin,
                                 const std::string& vaccine, const std::string& fundingCode,
                                 Connection& connection) {
  Recordset orders;
  OpenQuery(orders,
            Statement() << "SELECT orddose "
                        << "FROM neworder "
                        << "WHERE ltrim(rtrim(pin)) = '" << pin << "' "
                        << "AND ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                        << "AND orddate = {" << orderDate << "} "
                        << "AND ltrim(rtrim(fcode1)) = '" << fundingCode << "'",
            connection);
  // Influenza orders are counted here too, though they stand in a table of their
  // own.
  if (orders.RecordCount() != 1) RaiseError(kErrorDeterminingCurrentDoses);
  return FirstLongOrZero(orders);
}

std::int32_t ActionCodeOf(const std::string& statusCode, Connection& connection) {
  Recordset actions;
  OpenQuery(actions,
            Statement() << "SELECT action "
                        << "FROM actref "
                        << "WHERE status = '" << statusCode << "'",
            connection);
  const std::int32_t records = actions.RecordCount();
  if (records < 1) RaiseError(kErrorVerifyingAdjustmentType);
  if (records > 1) RaiseError(kDuplicateAdjustmentType);
  return FirstLongOrZero(actions);
}

std::int32_t CurrentDoses(std::int32_t actionCode, const std::string& pin,
                          const std::string& vaccine, const std::string& lotNumber,
                          const std::string& transactionDate, const std::string& sourcePin,
                          Connection& connection) {
  Recordset adjustments;
  OpenQuery(adjustments,
            Statement() << "SELECT doses "
                        << "FROM distrib "
                        << "WHERE action = " << actionCode << " "
                        << "AND ltrim(rtrim(pin)) = '" << pin << "' "
                        << "AND ltrim(rtrim(vaccine)) = '" << vaccine << "' "
                        << "AND ltrim(rtrim(strtran(lot,ltrim(rtrim('-')),''))) = '"
                        << RemoveDashes(lotNumber) << "' "
                        << "AND dateout = {" << transactionDate << "} "
                        << "AND ltrim(rtrim(frompin)) = '" << sourcePin << "'",
            connection);
  if (adjustments.RecordCount() != 1) RaiseError(kErrorDeterminingCurrentDoses);
  return FirstLongOrZero(adjustments);
}

std::int32_t FirstLongOrZero(const Recordset& recordset) {
  const Value number = recordset.Fields().Item(0).Value();
  return std::holds_alternative<Null>(number) ? 0 : ToLong(number);
}

}  // namespace lotrix
