// The rules of the system once more, over plain rows in memory: what every call
// has to answer and which rows it has to leave behind. Nothing here uses the
// component, nor a database; only its plain types for arguments and days.
#ifndef LOTRIX_TESTS_MODEL_MODEL_H
#define LOTRIX_TESTS_MODEL_MODEL_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lotrix/members.h"
#include "lotrix/value.h"

namespace lotrix::model {

// Cells; a missing value is the database's Null.
using TextCell = std::optional<std::string>;
using Whole = std::optional<std::int64_t>;
using Number = std::optional<double>;
using Day = std::optional<Date>;
using Logical = std::optional<bool>;

struct Provider {
  TextCell pin, contact, lastname, address, addres2, city, state, zipcode;
  TextCell ml_contact, ml_address, ml_addres2, ml_city, ml_state, ml_zipcode;
  TextCell note, phone, fax, codes, phone2, fax2;
  Day createdate;
  TextCell county;
  Whole provid;
  Number sector;
  Day datevfc;
  TextCell extension, firstname, initial, title, linkpin, alphaid, active, subdiv;
  TextCell cat1, cat2, cat3, cat4;
  Day chgdate;
  TextCell userid;
};

// allkids, medicaid, uninsured, amindian, fqhc_rhc, vfckids, g317kids, statekids, other
using EnrollmentGroup = std::array<Whole, 9>;
struct Enrollment {
  TextCell pin, ensource;
  Day chgdate;
  TextCell userid;
  std::array<EnrollmentGroup, 4> groups = {{{0, 0, 0, 0, 0, 0, 0, 0, 0},
                                            {0, 0, 0, 0, 0, 0, 0, 0, 0},
                                            {0, 0, 0, 0, 0, 0, 0, 0, 0},
                                            {0, 0, 0, 0, 0, 0, 0, 0, 0}}};
};

struct Physician {
  TextCell pin, lastname, firstname, initial, title, other1, medicaidno, medlicense;
  Day chgdate;
};

struct Order {
  TextCell ordpin, rectype, pin;
  Day orddate;
  TextCell vaccine;
  Whole orddose = 0;
  TextCell fcode1;
  Whole fdose1 = 0;
  Whole size = 0;
  Number cost;
  TextCell maker, contract, ndcno;
  Day chgdate;
  TextCell userid, descrip;
  Whole seekid = 0;
};

struct Distribution {
  Day input, dateout;
  TextCell frompin, pin, vaccine, lot;
  Whole doses = 0;
  Whole units = 0;
  Whole fdose1 = 0;
  Number action;
  Whole distid;
  TextCell notes;
  Day chgdate;
  TextCell status;
  Whole shipped = 0;
  TextCell userid;
};

struct CountedStock {
  TextCell pin, vaccine;
  Whole doses = 0;
  Day chgdate, idate;
  Whole provhasid;
  TextCell userid;
};

struct DosesReport {
  Day adate;
  TextCell pin;
  Number sector;
  TextCell vaccine;
  Whole position = 0;
  Number dose;
  std::array<Whole, 13> groups = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  Whole rowtot = 0;
  std::array<Whole, 8> categories = {0, 0, 0, 0, 0, 0, 0, 0};
  Whole categoryTotal = 0;
  Day chgdate;
  TextCell userid;
  Whole dosesadmid;
};

struct Stock {
  TextCell pin;
  Day datein;
  Whole doses = 0;
  TextCell lot, vaccine, maker;
  Day expiry;
  TextCell tracking;
};

struct Lot {
  TextCell vaccine, lot;
  Day expiry;
  TextCell maker;
  Whole remain = 0;
  Whole size = 0;
  TextCell pin;
};

struct ContractRow {
  TextCell vaccine, maker;
  Day begin, end;
  Whole minbulk, unitsize, pkgsize;
  TextCell ndcno;
  Number cost;
  TextCell contractid, sel_maker, dos_wind, excfunds, descrip;
  Logical locactiv;
  Whole maxno;
};

struct VaccineRow {
  TextCell vaccine;
  Whole maxno;
  TextCell locactiv;
};

struct Action {
  TextCell status;
  Number action;
};

struct ZipCode {
  TextCell zip, cntyname;
};

struct Key {
  TextCell ctablename;
  Whole inextid;
};

struct Tables {
  std::vector<Provider> provider;
  std::vector<Enrollment> enroll;
  std::vector<Physician> physicn;
  std::vector<Order> neworder, influenza;
  std::vector<Distribution> distrib;
  std::vector<CountedStock> provhas;
  std::vector<DosesReport> dosesadm;
  std::vector<Stock> stock;
  std::vector<Lot> lots;
  std::vector<ContractRow> pvaccref;
  std::vector<VaccineRow> vaccref;
  std::vector<TextCell> funding;
  std::vector<Action> actref;
  std::vector<Number> sectoref;
  std::vector<TextCell> subdiv;
  std::vector<ZipCode> zipcodes;
  std::vector<Key> nextid;
};

// The model's clock stands still.
inline constexpr Date kToday{2026, 11, 20};

// A row of texts; a Null is "<null>".
using Row = std::vector<std::string>;

struct ResultTable {
  Row headers;
  // In order; the rows of one group may stand in any order among themselves.
  std::vector<std::vector<Row>> groups{};
};

struct Verdict {
  bool accepted = true;
  std::int32_t number = 0;
  std::string source{};                  // empty where it is not looked at
  std::optional<std::string> message{};  // only where the text is fixed
  std::optional<ResultTable> table{};    // of a read
  std::optional<std::string> shown{};    // of CheckVaccActive
};

// Runs one call on the tables.
[[nodiscard]] Verdict Execute(Tables& tables, const std::string& operation,
                              const NamedArguments& arguments);

enum class ColumnKind { kText, kNumber, kDate, kLogical };
struct Column {
  std::string name;
  ColumnKind kind;
};
// A table as texts: numbers as NumberText, days yyyy-mm-dd, logicals 0 or 1.
struct TableContents {
  std::string name;
  std::vector<Column> columns{};
  std::vector<Row> rows{};
};
[[nodiscard]] std::vector<TableContents> Contents(const Tables& tables);
[[nodiscard]] std::string NumberText(double number);

}  // namespace lotrix::model

#endif
