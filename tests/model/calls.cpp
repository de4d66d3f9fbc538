#include "tests/model/calls.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

namespace lotrix::model {

namespace {

using std::string_literals::operator""s;

using Values = std::vector<Value>;

Values Texts(std::initializer_list<const char*> texts) { return {texts.begin(), texts.end()}; }
Values Wholes(std::initializer_list<std::int64_t> numbers) {
  return {numbers.begin(), numbers.end()};
}
Values Joined(Values values, const Values& more) {
  values.insert(values.end(), more.begin(), more.end());
  return values;
}

// What an argument is drawn from: values that mostly pass, and those that mostly
// do not or that stand at an edge. Many calls take the first few of the usual
// ones, so that calls meet the same rows.
constexpr std::uint64_t kFew = 3;

struct Pool {
  Values usual;
  Values odd;
};

// One parameter of an operation; the percentage is how often it is left out.
struct Source {
  std::string name;
  const Pool* pool;
  std::uint64_t omitted = 0;
};

struct Operation {
  std::string name;
  int weight;
  std::vector<Source> sources;
};

// --- Pools --------------------------------------------------------------------

const std::string& Giant() {
  static const std::string text(32768, 'A');
  return text;
}

Values OddTexts() {
  return Joined(
      Texts({"", "   ", "O'Neil", "\xC3\xA9lan vital",
             "stra\xC3\x9F"
             "e",
             "\xC3\xBF\xC2\xB5", "\xCF\x83\xCF\x82 \xD1\x8F\xD1\x91", "\xE6\x97\xA5\xE6\x9C\xAC",
             "\xF0\x9F\x98\x80 smile", "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", "a{b}", "a;b~c=_,d-e.",
             "  padded  ", "!@#$%^&*()+|\\/{}[]:<>?\"", "two\nlines", "\xFF\xFE", "caf\xC3"}),
      {Giant(), "A\0B"s, std::int64_t{42}, true, 1.5, std::int64_t{-7}});
}

const Pool& ProviderPins() {
  static const Pool pool = {
      Texts({"P1", "P1", "P2", "P1 ", "p1", "P2", "P4", "P7", "TWO", "N1", "n2", "P2  "}),
      Joined(Texts({"P3",
                    "P5",
                    "P6",
                    "DUP",
                    "S35",
                    "D01",
                    "NONE",
                    "X9",
                    "0",
                    "00",
                    "999999",
                    "p8",
                    "NOSEC",
                    "ABCDEFG",
                    "P1     ",
                    "1234567",
                    "",
                    "   ",
                    " P1",
                    "A-1",
                    "P1'",
                    "\xC3\x89"
                    "1",
                    "\xF0\x9F\x98\x80",
                    "P\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9",
                    "a b",
                    "P{1}",
                    "ZZ",
                    "zz",
                    "SP9",
                    "\xFFP"}),
             {std::int64_t{77}, "P1\0"s, 1.5})};
  return pool;
}

const Pool& ProfilePins() {
  static const Pool pool = {
      Texts({"N1",  "n2",  "P1",  "N3",  "N4",  "N5",    "N6",  "n7",  "N8",  "N9 ",   "N10",
             "N11", "N12", "N13", "N14", "N15", "N16",   "N17", "N18", "N19", "N20",   "P2",
             "P4",  "P7",  "TWO", "p1",  "00",  "99999", "E1",  "E2",  "0",   "999998"}),
      Joined(ProviderPins().odd, Texts({"999998", "999999", "0", "0 "}))};
  return pool;
}

const Pool& DepotPins() {
  static const Pool pool = {Texts({"D01", "D01", "D01", "d01", "D04", "D01 "}),
                            Texts({"D02", "D03", "D05", "P1", "X9", "", "  ", "ABCDEFG", "D-1",
                                   "D0'", " D01", "NONE", "\xC3\x89", "D01    "})};
  return pool;
}

const Pool& Vaccines() {
  static const Pool pool = {
      Texts({"FLU", "HEPA", "VAR", "FLU", "FLU-PF", "MCV4", "hepa", "HEPA ", "DUPV", "MIX", "flu",
             "var"}),
      Joined(Texts({"INACT", "NULLC",  "APOS",  "NOPKG",    "OLD",   "MMR-V", "NULLA", "NOMAX",
                    "NONE",  "",       "  ",    " HEPA",    "HE'PA", "H{P}",  "VAR ",  "FLU ",
                    "MCV4 ", "MMR-V ", "mmr-v", "\xC3\xA9", "ONLYV", "third"}),
             {"FLU\0"s, "\xC3"})};
  return pool;
}

// Those that the general reference knows are worth more in reports of doses.
const Pool& ReportedVaccines() {
  static const Pool pool = {Joined(Vaccines().usual, Texts({"MMR-V", "MMR-V", "mmr-v"})),
                            Vaccines().odd};
  return pool;
}

const Pool& Lots() {
  static const Pool pool = {
      Texts({"F1", "F-1", "AB-123", "AB123", "A-B12-3", "ab-123", "C9", "AB123 "}),
      Joined(Texts({"ZZ", "", "  ", "-", "---", "AB'1", " AB123", "AB 123",
                    "\xC3\xA9"
                    "1",
                    "{F1}", "7"}),
             {"F1\0"s, std::int64_t{7}})};
  return pool;
}

Values OddDays() {
  return Joined(Texts({"",
                       "   ",
                       "13/45/2001",
                       "2/30/2026",
                       "13/5/2026",
                       "2/29/2026",
                       "abc",
                       "1/5",
                       "2026",
                       "10:30",
                       "10 PM",
                       "25:00",
                       "13 PM",
                       "1/5/2026 25:00",
                       "1/5'/2026",
                       "{1/5/2026}",
                       "1/5/2026}",
                       " 1/5/2026 ",
                       "1 / 5 / 2026",
                       "jan 5 2026",
                       "5-JAN-2026",
                       "2026 January 5",
                       "12/31/99",
                       "1/1/30",
                       "6/15/1995",
                       "Monday 1/5/2026",
                       "January 5th, 2026",
                       "1/5/2026 10:30:15 PM",
                       "0/5/2026",
                       "1/0/2026",
                       "1//2026",
                       "12/31/9999",
                       "\xC3\xA9",
                       "Foo 5 2026",
                       "10:30:99",
                       "1/5/2026 noon"}),
                {"1/5/2026\0x"s, std::int64_t{5}, Date{2026, 1, 5}});
}

const Pool& Days() {
  static const Pool pool = {
      Texts({"1/5/2026", "01/05/2026", "1/6/2026", "1-5-26", "January 5, 2026", "5 Jan 2026",
             "2026/1/5", "1/6/2026", "2/29/2024", "11/20/2026", "1/5/2026 10:30", "12/31/2025"}),
      OddDays()};
  return pool;
}

const Pool& Doses() {
  static const Pool pool = {
      Joined(Wholes({1, 2, 5, 10, 100}), Texts({"7", " 8 "})),
      Joined(Wholes({0, -1, -5, 2147483647, -2147483647 - 1, 2147483648, 2147483640}),
             Joined(Texts({"2.5", "3.5", "abc", "", "0.5", "2147483647.4", "2147483647.5", "&H10",
                           "(5)", "1 2", "99999999999"}),
                    {2.5, 3.5, true, 3e9}))};
  return pool;
}

const Pool& FundingCodes() {
  static const Pool pool = {
      Joined(Texts({"1", "1", "2", "01"}), Wholes({1})),
      Texts({"3", "5", "S", "s", "4", "9", "", "  ", "1 ", " 1", "1'", "1.0", "\xC3\xA9"})};
  return pool;
}

const Pool& Allowances() {
  static const Pool pool = {Texts({"1", "5", "3", " 2 ", "", "  ", "1.5", "&H3", "$2"}),
                            Texts({"0", "6", "-1", "abc", "5.4", "5.5", "0.5", "0.51",
                                   "99999999999", "1'", "(3)", "1,0", "3e0", "\xC3\xA9"})};
  return pool;
}

const Pool& StateOrders() {
  static const Pool pool = {Texts({"", "", " "}), Texts({"PO1", "po 2", "O'1", "{", "\xC3\xA9"})};
  return pool;
}

const Pool& Makers() {
  static const Pool pool = {Texts({"", "", " ", "MERCK", "MERCK "}),
                            Texts({"merck", "NOBODY", "O'M", " MERCK", "\xC3\xA9"})};
  return pool;
}

const Pool& ActionTypes() {
  static const Pool pool = {Texts({"LOST", "SPOIL", "RETURN", "EXP", "TRANS", "ACC", "USE", "IMP",
                                   "FAIL", "SPOIL ", "FRACT", "DIST"}),
                            Texts({"DIST", "NINE", "TEN", "ZERO", "BIG", "MINUS", "NULLA", "TWICE",
                                   "PAD", "spoil", "", " SPOIL", "XX", "SP'", "\xC3\xA9", "HUGE"})};
  return pool;
}

const Pool& CountTexts() {
  static const Pool pool = {Joined(Texts({"12", "0", "2.5", "3.5", " 7 ", "-5", "(5)", "$5",
                                          "1,000", "&H1F", "&O17", "5."}),
                                   Wholes({12})),
                            Joined(Texts({"",
                                          "  ",
                                          "abc",
                                          "1 2",
                                          "--5",
                                          "(5",
                                          "5)",
                                          "5%",
                                          "0x1F",
                                          "True",
                                          "1e2",
                                          "1D2",
                                          "1e 2",
                                          ".",
                                          "-",
                                          "$",
                                          ",5",
                                          ".5",
                                          "1.5.2",
                                          "2147483647.4",
                                          "2147483647.5",
                                          "99999999999",
                                          "&HFFFFFFFF",
                                          "&H1FFFFFFFF",
                                          "&HG",
                                          "&H",
                                          "9E9",
                                          "1e400",
                                          "1'",
                                          "-0.5",
                                          "-1.5",
                                          "12345678",
                                          "1234567",
                                          "-(5)",
                                          "(5-)",
                                          "5-",
                                          "\xD9\xA3",
                                          "-&H1"}),
                                   {"5\0x"s, std::int64_t{3}, 2.5, 3.5})};
  return pool;
}

const Pool& DosesInSeries() {
  static const Pool pool = {
      Joined(Texts({"1", "1", "2", " 1", "2 ", "1.0", "01", "+1", "1e0"}), Wholes({1})),
      Texts({"0",   "3",   "4",   "-1",  "abc",         "",   "$1",  "(1)", "1,", "&H1",
             "1.5", "0.6", "0.5", "2.5", "99999999999", "1'", "1 2", "1d0", "1-", "{1}"})};
  return pool;
}

const Pool& ReportSectors() {
  static const Pool pool = {Joined(Texts({"1", "1", "2"}), Wholes({2})),
                            Texts({"3", "01", " 1", "1 ", "", "'", "0"})};
  return pool;
}

const Pool& GroupCounts() {
  static const Pool pool = {Wholes({0, 1, 2, 3, 10}),
                            Joined(Wholes({-1, 2147483647, -2147483647 - 1, 2147483648}),
                                   Joined(Texts({"4", "abc", "2.5"}), {true, 1.5}))};
  return pool;
}

const Pool& CategoryCounts() {
  static const Pool pool = {Wholes({0, 1, 7}),
                            Wholes({2000000000, 2147483647, -2147483647 - 1, -5})};
  return pool;
}

const Pool& Names() {
  static const Pool pool = {Texts({"Smith Clinic", "General Hospital", "ELM STREET", "j. doe",
                                   "\xC3\x89lan", "a{b}", "  two ", "x;y"}),
                            OddTexts()};
  return pool;
}

// May well be blank.
const Pool& FreeTexts() {
  static const Pool pool = {Joined(Names().usual, Texts({"", "  ", "Suite #5 & 6", "O'Hare"})),
                            OddTexts()};
  return pool;
}

// Goes through no filter of special characters.
const Pool& UnfilteredTexts() {
  static const Pool pool = {Texts({"Dr", "jane", "X", "", "12", "a b", "\xC3\xA9"}),
                            Joined(OddTexts(), {std::int64_t{301}, false, 2.25})};
  return pool;
}

const Pool& ZipCodes() {
  static const Pool pool = {
      Joined(Texts({"62701", "62701-1234", "60601", "99999", "62702", "62706", "(62701)"}),
             Wholes({62701})),
      Joined(
          Texts({"62703", "62704", "62705", "", "   ", "62'701", "627", "6270\xC3\xA9", "62707"}),
          {"62701\0"s})};
  return pool;
}

Values OddPhones() {
  return Joined(
      Texts({"217-555-0100", "2175550100", "(217)555-01000", "(217) 555-01  ", "(2'7) 555-0100",
             "(\xC3\xA9"
             "17) 555-0100",
             "(217) 555-0100 ", "(   )    -    ", "(217) 5-5-0100", "(21/) 555-0100", "555",
             "(217) 555-010\xC3\xA9", "(217) 555-010\xF0\x9F\x98\x80", "(21{) 555-01}0"}),
      {"(217) 555-010\0"s});
}

const Pool& Phones() {
  static const Pool pool = {Texts({"(217) 555-0100", "(217) 555-0199", "(abc) def-ghij"}),
                            Joined(OddPhones(), Texts({"", "   "}))};
  return pool;
}

const Pool& Faxes() {
  static const Pool pool = {Texts({"(217) 555-0101", "", "   "}), OddPhones()};
  return pool;
}

const Pool& Eligibilities() {
  static const Pool pool = {
      {true, false},
      Joined(Texts({"True", "false", "1", "0", "x", ""}), {std::int64_t{1}, std::int64_t{0}, 2.5})};
  return pool;
}

const Pool& Classifications() {
  static const Pool pool = {
      Joined(Wholes({10, 15, 29, 12, 17}), Texts({"15", " 29 ", "10.4"})),
      Joined(Wholes({35, 30, 17, 99, -1}),
             Joined(Texts({"AB", "99999999999", "", "&HF", "15'", "14.5", "\xC3\xA9"}),
                    {14.5, 15.5, true, 3e9}))};
  return pool;
}

const Pool& ActiveFlags() {
  static const Pool pool = {
      Texts({"Y", "y", "Y", "Y", "Y", "N"}),
      Joined(Texts({"n", "YES", "Y ", "", " ", "\xC3\xBF"}), {true, std::int64_t{1}})};
  return pool;
}

const Pool& Certifications() {
  static const Pool pool = {
      Joined(Texts({"1/5/2026", "Jan 5 2026", "3/7/2025", "2026/2/28"}), {Date{2026, 1, 5}}),
      OddDays()};
  return pool;
}

const Pool& Subdivisions() {
  static const Pool pool = {Texts({"NORTH", "north", "SOUTH", "NORTH ", "TWICE", "NOWHERE"}),
                            Texts({"TWICE", "NOWHERE", "", " NORTH", "N'", "\xC3\xA9"})};
  return pool;
}

const Pool& Sources() {
  static const Pool pool = {Texts({"A", "g", "Z", " z ", "B"}),
                            Texts({"H", "", "  ", "AB", "abcdefghijk", "abcdefghij", "1", "A'",
                                   "\xC3\xA9", "  A                "})};
  return pool;
}

const Pool& AgeGroups() {
  static const Pool pool = {
      Joined(Texts({"1", "2", "3", "4", "4.5", "&H2", " 1 "}), Wholes({1, 4})),
      Joined(Texts({"0", "5", "X", "", "0.5", "99999", "-1", "&HFFFF", "&H1FFFF", "$1", "32767.5",
                    "1'"}),
             {std::int64_t{70000}, "1\0"s})};
  return pool;
}

const Pool& InfoClassifications() {
  static const Pool pool = {
      Joined(Texts({"10", "15", " 12 ", "29"}), Wholes({20})),
      Texts({"35", "123", "AB", "", "-1", "1.", "2.5", "$5", "(5", "1E", "&H", ".5", "&HF", "1'"})};
  return pool;
}

const Pool& ShortTexts() {
  static const Pool pool = {
      Texts({"CLINIC", "type 10 ch", " abc ", "7", "\xC3\xA9\xC3\xA9\xC3\xA9"}),
      Joined(OddTexts(), Texts({"eleven char", "sixteen charact.", "fifteen charact"}))};
  return pool;
}

const Pool& QuorvinFlags() {
  static const Pool pool = {Texts({"YES", "no", " yes ", "No"}),
                            Texts({"Y", "", "  ", "N0", "Y'S", "\xC3\xA9"})};
  return pool;
}

const Pool& PhysicianPins() {
  static const Pool pool = {
      Texts({"P1", "P2", "P4", "p1", "N1", "N2", "P1 ", "TWO", "X9"}),
      Texts({"", "  ", "O'B", "P3", "DUP", "ABCDEFG", "P-1", " P1", "\xC3\xA9", "p8"})};
  return pool;
}

const Pool& LastNames() {
  static const Pool pool = {
      Texts({"Smith", "Jones", "SMITH", "smith ", "twenty characters ok", "Roe"}),
      Joined(OddTexts(),
             Texts({"twenty one characters", " Smith", "  twenty characters ok   ", "Twin"}))};
  return pool;
}

const Pool& FirstNames() {
  static const Pool pool = {Texts({"John", "Jane", "JOHN ", "fifteen letters"}),
                            Joined(OddTexts(), Texts({"sixteen letters.", " John"}))};
  return pool;
}

const Pool& Initials() {
  static const Pool pool = {Texts({"", " ", "J", " q ", "\xC3\xA9"}),
                            Texts({"AB", "'", "\xF0\x9F\x98\x80", "{", "\xFF"})};
  return pool;
}

const Pool& Identifiers() {
  static const Pool pool = {
      Texts({"", " ", "MD", "abc123", " Id 7 ", "1234 5678"}),
      Joined(OddTexts(), Texts({"thirteen char", "twelve chars", "ten char.."}))};
  return pool;
}

// --- Operations ---------------------------------------------------------------

Operation Profile() {
  Operation operation = {"providerProfileUpdate",
                         12,
                         {{"aPIN", &ProfilePins()},
                          {"aFacilityLastName", &Names()},
                          {"aShippingContact", &Names()},
                          {"aShippingAddress1", &Names()},
                          {"aShippingAddress2", &FreeTexts()},
                          {"aShippingCity", &Names()},
                          {"aShippingState", &Names()},
                          {"aShippingZipCode", &ZipCodes()},
                          {"aShippingInstructions", &FreeTexts()},
                          {"aShippingPhoneNumber", &Phones()},
                          {"aShippingFaxNumber", &Faxes()},
                          {"aMailContact", &UnfilteredTexts()},
                          {"aMailAddress1", &FreeTexts()},
                          {"aMailAddress2", &FreeTexts()},
                          {"aMailCity", &FreeTexts()},
                          {"aMailState", &FreeTexts()},
                          {"aMailZipCode", &FreeTexts()},
                          {"aMailPhoneNumber", &Faxes()},
                          {"aMailFaxNumber", &Faxes()},
                          {"aVaricellaEligibilityStatus", &Eligibilities()},
                          {"aClassificationCode", &Classifications(), 15},
                          {"aVFCCertificationDate", &Certifications(), 50},
                          {"aPhoneExtension", &UnfilteredTexts(), 60},
                          {"aFirstName", &UnfilteredTexts(), 60},
                          {"aMiddleInitial", &UnfilteredTexts(), 60},
                          {"aTitle", &UnfilteredTexts(), 60},
                          {"aParentProviderID", &UnfilteredTexts(), 60},
                          {"anAdditionalID", &UnfilteredTexts(), 60},
                          {"anActiveStatus", &ActiveFlags(), 60},
                          {"aSubdivision", &Subdivisions(), 60},
                          {"aCategory1", &UnfilteredTexts(), 60},
                          {"aCategory2", &UnfilteredTexts(), 60},
                          {"aCategory3", &UnfilteredTexts(), 60}}};
  return operation;
}

Operation DosesReported() {
  Operation operation = {"DosesAdministeredUpdate",
                         10,
                         {{"aReportingDate", &Days()},
                          {"aPIN", &ProviderPins()},
                          {"aVaccine", &ReportedVaccines()},
                          {"aDoseInSeries", &DosesInSeries()},
                          {"aSector", &ReportSectors(), 40}}};
  for (const char* const name :
       {"aDoseCountLessThanOne", "aDoseCountForOneYear", "aDoseCountForTwoYears",
        "aDoseCountForThreetoFourYears", "aDoseCountForFiveYears", "aDoseCountForSixtoNineYears",
        "aDoseCountForTentoFourteenYears", "aDoseCountForFifteentoNineteenYears",
        "aDoseCountForTwentytoTwentyFourYears", "aDoseCountForTwentyFivetoFourtyFourYears",
        "aDoseCountForFourtyFivetoSixtyFourYears", "aDoseCountForGreaterThanSixtyFiveYears",
        "anUnknown", "aTotalDoses"}) {
    operation.sources.push_back({name, &GroupCounts(), 50});
  }
  for (const char* const name :
       {"aUserDefinedCategory1", "aUserDefinedCategory2", "aUserDefinedCategory3"}) {
    operation.sources.push_back({name, &CategoryCounts(), 40});
  }
  return operation;
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      {"manufacturerProviderOrderRead",
       5,
       {{"aPIN", &ProviderPins()},
        {"aShipmentBeginDate", &Days()},
        {"aVaccine", &Vaccines(), 60},
        {"aLotNumber", &Lots(), 70},
        {"aShipmentEndDate", &Days(), 60}}},
      {"stockTableRead",
       7,
       {{"aPIN", &ProviderPins(), 50},
        {"aVaccine", &Vaccines(), 60},
        {"aLotNumber", &Lots(), 60},
        {"aShipmentBeginDate", &Days(), 40},
        {"aShipmentEndDate", &Days(), 60}}},
      {"vaccineReferenceTableRead", 1, {}},
      {"inventoryOnHandRead", 4, {{"aDepotPIN", &DepotPins()}, {"aVaccine", &Vaccines(), 50}}},
      {"manufacturerProviderOrderCreateUpdate",
       12,
       {{"anOrderDate", &Days()},
        {"aPIN", &ProviderPins()},
        {"aVaccine", &Vaccines()},
        {"aDoseCount", &Doses()},
        {"aFundingSource", &FundingCodes()},
        {"anExcessAllowance", &Allowances(), 60},
        {"aStatePO", &StateOrders(), 60},
        {"aMfg", &Makers(), 60}}},
      Profile(),
      {"providerInventoryAdjustmentUpdate",
       12,
       {{"aDepotPIN", &DepotPins()},
        {"anEntryDate", &Days()},
        {"aTransactionDate", &Days()},
        {"aTransactionType", &ActionTypes()},
        {"aPIN", &ProviderPins()},
        {"aVaccine", &Vaccines()},
        {"aLotNumber", &Lots()},
        {"aDoseCount", &Doses()}}},
      {"providerShippingDataUpdate",
       8,
       {{"aPIN", &ProviderPins()},
        {"aFacilityLastName", &Names()},
        {"aShippingContact", &Names()},
        {"aShippingAddress1", &Names()},
        {"aShippingAddress2", &FreeTexts()},
        {"aShippingCity", &Names()},
        {"aShippingState", &Names()},
        {"aShippingZipCode", &ZipCodes()},
        {"aShippingInstructions", &FreeTexts()},
        {"aPhoneNumber", &Phones()},
        {"aFaxNumber", &Faxes()},
        {"aPhoneExtension", &UnfilteredTexts(), 50},
        {"aFirstName", &UnfilteredTexts(), 50},
        {"aMiddleInitial", &UnfilteredTexts(), 50},
        {"aTitle", &UnfilteredTexts(), 50}}},
      DosesReported(),
      {"DepotProviderOrderUpdate",
       10,
       {{"aShipmentDate", &Days()},
        {"aDepotID", &DepotPins()},
        {"aPIN", &ProviderPins()},
        {"aVaccine", &Vaccines()},
        {"aDoseCount", &Doses()},
        {"aLotNumber", &Lots()},
        {"anExcessAllow", &Allowances(), 60},
        {"anOrderDate", &Days(), 70}}},
      {"providerEnrollmentAddUpdate",
       8,
       {{"aPIN", &PhysicianPins()},
        {"aSource", &Sources()},
        {"aAgeGroup", &AgeGroups()},
        {"aAll", &CountTexts()},
        {"aMedicaid", &CountTexts()},
        {"aUninsured", &CountTexts()},
        {"aAmIndian", &CountTexts()},
        {"aFQHC_RHC", &CountTexts()},
        {"aVFC", &CountTexts()},
        {"aG317", &CountTexts()},
        {"aState", &CountTexts()}}},
      {"providerAdditionalInfoUpdate",
       8,
       {{"aPIN", &ProviderPins()},
        {"aProviderType", &ShortTexts()},
        {"aClassification", &InfoClassifications()},
        {"aCurrentVFCCert", &Certifications()},
        {"aCohort", &ShortTexts()},
        {"aEmpIdNum", &ShortTexts()},
        {"aQuorvin", &QuorvinFlags()}}},
      {"physicianAddUpdate",
       8,
       {{"aPIN", &PhysicianPins()},
        {"aLastName", &LastNames()},
        {"aFirstName", &FirstNames()},
        {"aMiddleInitial", &Initials()},
        {"aTitle", &Identifiers()},
        {"aSiteMedID", &Identifiers()},
        {"aMedicaidNum", &Identifiers()},
        {"aLicenseNum", &Identifiers()}}},
      {"provinvAdd",
       8,
       {{"aPIN", &ProviderPins()},
        {"aVacc", &Vaccines()},
        {"aInv", &CountTexts()},
        {"aIdate", &Days()}}},
      {"physicianDeleteByPin", 3, {{"aPIN", &PhysicianPins()}}},
      {"CheckVaccActive", 3, {{"aVaccine", &Vaccines()}}}};
  return operations;
}

// A report whose total fits its groups, or nothing where they are no numbers.
void FitTotal(Call& call) {
  std::int64_t sum = 0;
  for (const auto& [name, argument] : call.arguments) {
    const bool isGroup = name.starts_with("aDoseCount") || name == "anUnknown";
    if (!isGroup || !argument) continue;
    if (const auto* const count = std::get_if<std::int64_t>(&*argument)) sum += *count;
  }
  std::erase_if(call.arguments, [](const auto& named) { return named.first == "aTotalDoses"; });
  call.arguments.emplace_back("aTotalDoses", Value(sum));
}

}  // namespace

Call CallGenerator::Next() {
  std::uint64_t sum = 0;
  for (const Operation& operation : Operations())
    sum += static_cast<std::uint64_t>(operation.weight);
  std::uint64_t left = Below(sum);
  const Operation* drawn = nullptr;
  for (const Operation& operation : Operations()) {
    drawn = &operation;
    if (left < static_cast<std::uint64_t>(operation.weight)) break;
    left -= static_cast<std::uint64_t>(operation.weight);
  }
  // Most calls are sound or have one odd argument, so that every check is reached.
  const std::uint64_t mood = Below(100);
  std::uint64_t oddPercent = 0;
  std::size_t oddAt = drawn->sources.size();
  std::size_t alsoOddAt = oddAt;
  if (mood >= 95) {
    oddPercent = 40;
  } else if (mood >= 45 && !drawn->sources.empty()) {
    oddAt = static_cast<std::size_t>(Below(drawn->sources.size()));
    if (mood >= 80) alsoOddAt = static_cast<std::size_t>(Below(drawn->sources.size()));
  }
  const bool takesFew = Percent(60);
  Call call{drawn->name, {}};
  for (std::size_t i = 0; i < drawn->sources.size(); ++i) {
    const Source& source = drawn->sources[i];
    const bool odd = i == oddAt || i == alsoOddAt || Percent(oddPercent);
    // One that is required is left out now and then.
    const bool isRequired = source.omitted == 0;
    if (Percent(odd ? (isRequired ? 2 : source.omitted / 8) : source.omitted)) continue;
    const Values& values = odd ? source.pool->odd : source.pool->usual;
    const auto all = static_cast<std::uint64_t>(values.size());
    const std::uint64_t at = Below(!odd && takesFew ? std::min(kFew, all) : all);
    call.arguments.emplace_back(source.name, values[static_cast<std::size_t>(at)]);
  }
  if (call.operation == "DosesAdministeredUpdate" && Percent(90)) FitTotal(call);
  return call;
}

const std::map<std::string, int>& OperationWeights() {
  static const std::map<std::string, int> weights = [] {
    std::map<std::string, int> all;
    for (const Operation& operation : Operations()) all[operation.name] = operation.weight;
    return all;
  }();
  return weights;
}

std::string Quoted(const std::string& text) {
  if (text.size() > 200) return "(" + std::to_string(text.size()) + " bytes)";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\') {
      quoted.push_back(c);
      continue;
    }
    std::array<char, 8> escaped{};
    std::snprintf(escaped.data(), escaped.size(), "\\x%02X", static_cast<unsigned>(byte));
    quoted += escaped.data();
  }
  return quoted + "\"";
}

std::string Describe(const Call& call) {
  std::string described = call.operation + "(";
  const char* separator = "";
  for (const auto& [name, argument] : call.arguments) {
    described += std::exchange(separator, ", ") + name + " = ";
    if (const auto* const text = std::get_if<std::string>(&*argument)) {
      described += Quoted(*text);
    } else if (const auto* const whole = std::get_if<std::int64_t>(&*argument)) {
      described += std::to_string(*whole);
    } else if (const auto* const logical = std::get_if<bool>(&*argument)) {
      described += *logical ? "true" : "false";
    } else if (const auto* const number = std::get_if<double>(&*argument)) {
      described += "double " + NumberText(*number);
    } else if (const auto* const day = std::get_if<Date>(&*argument)) {
      described += "date " + std::to_string(day->year) + "-" + std::to_string(day->month) + "-" +
                   std::to_string(day->day);
    } else {
      described += "?";
    }
  }
  return described + ")";
}

// --- The rows to start from -------------------------------------------------------

namespace {

Provider MakeProvider(TextCell pin, Number sector, TextCell active, TextCell codes) {
  Provider row;
  row.pin = std::move(pin);
  row.sector = sector;
  row.active = std::move(active);
  row.codes = std::move(codes);
  row.lastname = "Seeded";
  row.county = "OLD COUNTY";
  row.createdate = Date{2001, 2, 3};
  return row;
}

ContractRow MakeContract(TextCell vaccine, TextCell maker, std::int64_t package, Logical locactiv,
                         Whole maxno) {
  ContractRow row;
  row.vaccine = std::move(vaccine);
  row.maker = std::move(maker);
  row.begin = Date{2020, 1, 1};
  row.end = Date{2030, 12, 31};
  row.minbulk = 1;
  row.unitsize = 10;
  row.pkgsize = package;
  row.ndcno = "NDC-" + std::to_string(package);
  row.cost = 12.5;
  row.contractid = " C77 ";
  row.sel_maker = "S";
  row.dos_wind = "W";
  row.excfunds = "E";
  row.descrip = "Some vaccine";
  row.locactiv = locactiv;
  row.maxno = maxno;
  return row;
}

std::vector<ContractRow> Contracts() {
  std::vector<ContractRow> rows = {
      MakeContract("VAR", "", 10, false, 2),     MakeContract("VAR", "MERCK", 10, false, 1),
      MakeContract("FLU", "", 10, false, 2),     MakeContract("FLU-PF", " ", 10, false, 3),
      MakeContract("MCV4", "", 5, false, 2),     MakeContract("MCV4", "MERCK", 10, true, 9),
      MakeContract("HEPA", "", 10, false, 2),    MakeContract("HEPA ", "MERCK", 10, true, 4),
      MakeContract("DUPV", "", 10, false, 3),    MakeContract("DUPV", "", 10, false, 3),
      MakeContract("MIX", "", 10, false, {}),    MakeContract("MIX", "MERCK", 10, true, 5),
      MakeContract("INACT", "", 10, true, 2),    MakeContract("NULLC", "", 10, false, 2),
      MakeContract("APOS", "", 10, false, 2),    MakeContract("NOPKG", "", 7, false, 2),
      MakeContract("OLD", "", 10, false, 2),     MakeContract("NULLA", "", 10, {}, 2),
      MakeContract("NOMAX", "", 10, false, {}),  MakeContract("MMR-V", "", 10, false, 1),
      MakeContract({}, "", 10, true, 1),         MakeContract("third", "", 10, false, 1),
      MakeContract("FLU", "MERCK", 10, true, 1), MakeContract("THIRD", {}, 10, true, 1)};
  for (ContractRow& row : rows) {
    if (row.vaccine == "NULLC") row.ndcno = std::nullopt;
    if (row.vaccine == "APOS") row.descrip = "Baby's first";
    if (row.vaccine == "OLD") {
      row.begin = Date{1990, 1, 1};
      row.end = Date{1999, 12, 31};
    }
    if (row.vaccine == "MIX") row.cost = 1.0 / 3;
    if (row.vaccine == "FLU-PF") row.cost = 1e16;
    if (row.vaccine == "DUPV") row.cost = 0;
    if (row.vaccine == "VAR") row.descrip = "Not written";
  }
  return rows;
}

Order MakeOrder(TextCell vaccine, Whole seekid, Whole doses) {
  Order row;
  row.pin = "  P1 ";
  row.orddate = Date{2026, 1, 6};
  row.vaccine = std::move(vaccine);
  row.fcode1 = " 1";
  row.orddose = doses;
  row.seekid = seekid;
  return row;
}

Distribution MakeDistribution(TextCell lot, Number action, Whole doses) {
  Distribution row;
  row.dateout = Date{2026, 1, 5};
  row.frompin = " D01";
  row.pin = "P1";
  row.vaccine = "FLU ";
  row.lot = std::move(lot);
  row.action = action;
  row.doses = doses;
  row.units = 3;
  return row;
}

DosesReport MakeReport(TextCell pin, TextCell vaccine, Number dose) {
  DosesReport row;
  row.adate = Date{2026, 1, 5};
  row.pin = std::move(pin);
  row.vaccine = std::move(vaccine);
  row.dose = dose;
  row.sector = 1;
  row.dosesadmid = 3;
  return row;
}

Physician MakePhysician(TextCell pin, TextCell last, TextCell first) {
  Physician row;
  row.pin = std::move(pin);
  row.lastname = std::move(last);
  row.firstname = std::move(first);
  row.title = "KEEP";
  return row;
}

Enrollment MakeEnrollment(TextCell pin) {
  Enrollment row;
  row.pin = std::move(pin);
  row.ensource = "X";
  row.groups[2][3] = 33;
  row.groups[0][0] = std::nullopt;
  return row;
}

}  // namespace

Tables StartingTables(int database) {
  Tables tables;
  tables.provider = {MakeProvider("P1", 10, "Y", "V"),     MakeProvider("P2", 29, "Y", ""),
                     MakeProvider("P3", 15, "N", "V"),     MakeProvider("P4", 12, "y", {}),
                     MakeProvider("P5", 15, {}, ""),       MakeProvider("P6", 15, "Y ", ""),
                     MakeProvider("  P7 ", 20, "Y", "V "), MakeProvider("p8", 15, "Y", ""),
                     MakeProvider("DUP", 12, "Y", "V"),    MakeProvider("DUP ", 13, "Y", "V"),
                     MakeProvider("S35", 35, "Y", "V"),    MakeProvider("TWO", 15, "Y", "V"),
                     MakeProvider("TWO", 35, "N", "V"),    MakeProvider("NOSEC", {}, "Y", ""),
                     MakeProvider({}, 15, "Y", ""),        MakeProvider("D01", 30, "Y", ""),
                     MakeProvider("D02", 31, "N", ""),     MakeProvider("D03", 30, "Y", ""),
                     MakeProvider("D03", 31, "Y", ""),     MakeProvider("D04", 31, " Y ", ""),
                     MakeProvider("D05", 32, "Y", ""),     MakeProvider("SP9", 9, "Y", "")};
  tables.enroll = {MakeEnrollment("P2"), MakeEnrollment("P4"), MakeEnrollment(" P4"),
                   MakeEnrollment("E1"), MakeEnrollment("E2"), MakeEnrollment("E2 "),
                   MakeEnrollment({})};
  tables.physicn = {MakePhysician("P1", "SMITH", "JOHN"),
                    MakePhysician("P1", "SMITH", "JANE"),
                    MakePhysician("P2", "TWIN", "JOHN"),
                    MakePhysician("P2", "TWIN ", "JOHN"),
                    MakePhysician("p1", "LOWER", "CASE"),
                    MakePhysician(" P1", "SMITH", "JOHN"),
                    MakePhysician({}, "SMITH", {}),
                    MakePhysician("P4", "ROE", "JANE"),
                    MakePhysician("P4", "JONES", "FIFTEEN LETTERS")};
  tables.neworder = {MakeOrder("HEPA", 7, 5),
                     MakeOrder("DUPV", 0, 5),
                     MakeOrder("DUPV", 0, 6),
                     MakeOrder("MCV4", 0, 5),
                     MakeOrder("MCV4", {}, 5),
                     MakeOrder("VAR", 0, {}),
                     MakeOrder(" FLU ", 0, 2147483600),
                     MakeOrder({}, 0, 1),
                     MakeOrder("FLU-PF", 0, 4),
                     MakeOrder("MIX", 8, 4),
                     MakeOrder("MIX", 9, 4)};
  tables.influenza = {MakeOrder("FLU", 0, 5), MakeOrder("FLU", 5, 6), MakeOrder("FLU-PF", {}, {})};
  tables.distrib = {MakeDistribution("AB-123", 1, 5),      MakeDistribution("F1", 1, {}),
                    MakeDistribution("C-9", 1, 1),         MakeDistribution("C9", 1, 2),
                    MakeDistribution("F1", 3, 2147483640), MakeDistribution("F1", 5, 1),
                    MakeDistribution("F-1", 5, 1),         MakeDistribution({}, {}, {})};
  tables.dosesadm = {MakeReport("P1", "FLU", 1),   MakeReport("P1 ", " FLU", 1),
                     MakeReport(" P1", "HEPA", 1), MakeReport("P2", "HEPA", 1.5),
                     MakeReport("P2", {}, {}),     MakeReport("P2", "MMR-V", 2)};
  const Date five{2026, 1, 5};
  const Date six{2026, 1, 6};
  const Date leap{2024, 2, 29};
  const auto stock = [&](TextCell pin, Day day, TextCell lot, TextCell vaccine, TextCell tracking) {
    Stock row;
    row.pin = std::move(pin);
    row.datein = day;
    row.doses = 40;
    row.lot = std::move(lot);
    row.vaccine = std::move(vaccine);
    row.maker = "  MERCK ";
    row.expiry = Date{2027, 3, 7};
    row.tracking = std::move(tracking);
    tables.stock.push_back(row);
  };
  for (const char* const vaccine : {"FLU", "HEPA", "VAR", "MCV4", "FLU-PF", "DUPV", "MIX"}) {
    stock("P1", five, "AB-123", vaccine, "T1");
    stock("P2", six, "F1", vaccine, "T2");
  }
  stock(" P1 ", six, "A-B1-23", "HEPA ", "T3");
  stock("P1", leap, "C9", " FLU ", "T4");
  stock("P1", five, "AB-123", "FLU", "");
  stock("P1", five, "", "FLU", "T5");
  stock("P1", five, {}, "FLU", "T6");
  stock("P1", {}, "C9", "FLU", {});
  stock({}, five, "ab-123", {}, "T7");
  stock("P1", five, " AB123 ", "FLU", "T8");
  stock("P4", Date{2025, 12, 31}, "---", "HEPA", "T9");
  stock("P2", six, "F1", "HEPA", "T2");
  tables.stock.back().maker = "   ";
  tables.stock.back().doses = std::nullopt;
  tables.stock.back().expiry = std::nullopt;

  const auto lot = [&](TextCell vaccine, TextCell number, Day expiry, TextCell maker, Whole remain,
                       Whole size, TextCell pin) {
    tables.lots.push_back({.vaccine = std::move(vaccine),
                           .lot = std::move(number),
                           .expiry = expiry,
                           .maker = std::move(maker),
                           .remain = remain,
                           .size = size,
                           .pin = std::move(pin)});
  };
  lot("HEPA", "L2", kToday, "M", 5, 10, "D01");
  lot("HEPA", "L2", kToday, "M", 6, 10, " D01 ");
  lot("HEPA", "L1", Date{2027, 1, 1}, "M", 0, 10, "D01");
  lot("HEPA", "L1", Date{2026, 11, 19}, "M", 5, 10, "D01");
  lot("MCV4", "L1", Date{2027, 1, 1}, "M", 5, 10, "D01");
  lot("MIX ", "L3", Date{2027, 1, 1}, " ", 5, 10, "D01");
  lot("MIX", "L3", Date{2027, 1, 1}, {}, 5, 10, "D01");
  lot("FLU", "L4", Date{2028, 1, 1}, "M", -1, 10, "D01");
  lot("FLU", "L5", Date{2028, 1, 1}, "M", 5, 0, "D01");
  lot("FLU", "L6", Date{2028, 1, 1}, "M", {}, 10, "D01");
  lot("FLU", "L7", {}, "M", 5, 10, "D01");
  lot("FLU", "L8", Date{2028, 1, 1}, "M", 5, 10, "D04");
  lot("VAR", "L9", Date{2028, 1, 1}, "M", 5, 10, "D01");
  lot({}, "L0", Date{2028, 1, 1}, "M", 5, 10, "D01");
  tables.pvaccref = Contracts();
  if (database % 2 == 1) {
    // Two active rows of one vaccine list its lots twice.
    tables.pvaccref.push_back(MakeContract("HEPA", "OTHER", 10, true, 1));
  }
  tables.vaccref = {{"MMR-V", 2, "Y"},  {"MMR-V", 1, "Y"}, {" MMR-V", 9, "N"}, {"MMR-V", 8, "y"},
                    {"MMR-V", {}, "Y"}, {"ONLYV", 3, "Y"}, {"MMR-V", 7, {}}};
  tables.funding = {"1", "2 ", "3", "4", "4", " 5 ", "S", "01", {}};
  tables.actref = {{"SPOIL", 3},  {"RETURN", 2}, {"EXP", 4},   {"LOST", 5},  {"IMP ", 6},
                   {"FAIL", 7},   {"TRANS", 8},  {"ACC", 11},  {"USE", 12},  {"FRACT", 2.5},
                   {"DIST", 1},   {"NINE", 9},   {"TEN", 10},  {"ZERO", 0},  {"BIG", 13},
                   {"MINUS", -3}, {"NULLA", {}}, {"TWICE", 3}, {"TWICE", 4}, {" PAD", 3},
                   {{}, 3},       {"HUGE", 3e9}};
  tables.sectoref = {10, 12, 15, 29, 30, 35, 17, 17, {}};
  tables.subdiv = {"NORTH", " SOUTH ", "TWICE", "TWICE ", {}};
  tables.zipcodes = {{"62701", "SANGAMON"}, {"62701", "SANGAMON"}, {"62702", "MENARD"},
                     {"62702", "MENARD "},  {"60601", "COOK"},     {"60601", "LAKE"},
                     {"62703", {}},         {"62704", "O'BRIEN"},  {"62705", "COOK"},
                     {"62705", {}},         {"62706", "  PIKE "},  {"62707", ""},
                     {{}, "NOWHERE"}};
  tables.nextid = {{"DISTRIB", 41}, {" seekdist ", 7},  {"ProvHas", 100},
                   {"DosesAdm", 0}, {"PROVIDER", 1000}, {{}, 5}};
  if (database % 3 == 2) {
    // Neither sent nor open, yet an order of the same key.
    tables.neworder.push_back(MakeOrder("FLU", {}, 1));
    tables.distrib.push_back(MakeDistribution("-F1", 1, 9));
  }
  switch (database % 5) {
    case 1:  // keys that cannot be taken
      tables.nextid[1].ctablename = "gone";
      tables.nextid.push_back({"PROVHAS", 5});
      break;
    case 2:  // keys that run out
      tables.nextid[2].inextid = 2147483640;
      tables.nextid[3].inextid = 2147483642;
      break;
    case 3:
      tables.nextid.push_back({"provider ", 1});
      tables.sectoref.emplace_back(15);
      break;
    default:
      break;
  }
  return tables;
}

}  // namespace lotrix::model
