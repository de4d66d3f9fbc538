#include "src/database/connection_string.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lotrix/error.h"
#include "tests/support/fixture.h"

namespace lotrix::test {
namespace {

constexpr auto kFailed = static_cast<std::int32_t>(0x80004005U);

// The value of a keyword as it is kept, or nothing.
std::optional<std::string> ValueOf(const ConnectionSettings& settings, const std::string& keyword) {
  std::optional<std::string> found;
  for (const auto& [name, value] : settings.values) {
    if (name != keyword) continue;
    EXPECT_FALSE(found) << keyword << " is kept twice";
    found = value;
  }
  return found;
}

std::optional<std::string> ValueOf(const std::string& text, const std::string& keyword) {
  return ValueOf(ParseConnectionString(text), keyword);
}

TEST(ConnectionString, PairsAreSeparatedBySemicolons) {
  const ConnectionSettings settings =
      ParseConnectionString("Provider=SQLite;Data Source=lotrix.db;Synchronous=FULL");
  EXPECT_EQ(settings.provider, "sqlite");
  EXPECT_EQ(ValueOf(settings, "data source"), "lotrix.db");
  EXPECT_EQ(ValueOf(settings, "synchronous"), "FULL");
}

TEST(ConnectionString, NothingNamesNoProvider) {
  EXPECT_EQ(ParseConnectionString("").provider, "");
  EXPECT_EQ(ParseConnectionString("   ").provider, "");
  EXPECT_EQ(ParseConnectionString("Data Source=x").provider, "");
  EXPECT_EQ(ParseConnectionString("Provider=").provider, "");
}

TEST(ConnectionString, KeywordsAndTheProviderAreReadWithoutCase) {
  const ConnectionSettings settings = ParseConnectionString("PROVIDER=PostgreSQL;uSER iD=Me");
  EXPECT_EQ(settings.provider, "postgresql");
  EXPECT_EQ(ValueOf(settings, "user id"), "Me");
}

TEST(ConnectionString, BlanksAroundKeywordsAndValuesDoNotCount) {
  const ConnectionSettings settings =
      ParseConnectionString("  Provider = SQLite ;  Data   Source =  my file.db  ");
  EXPECT_EQ(settings.provider, "sqlite");
  EXPECT_EQ(ValueOf(settings, "data source"), "my file.db");
}

TEST(ConnectionString, EmptyPairsArePassedOver) {
  const ConnectionSettings settings = ParseConnectionString(";;Provider=SQLite;;Data Source=x; ;");
  EXPECT_EQ(settings.provider, "sqlite");
  EXPECT_EQ(ValueOf(settings, "data source"), "x");
}

TEST(ConnectionString, OfAKeywordGivenTwiceTheLastStays) {
  const ConnectionSettings settings = ParseConnectionString(
      "Provider=PostgreSQL;Data Source=a;DATA  SOURCE=b;Provider=SQLite;data source=c");
  EXPECT_EQ(settings.provider, "sqlite");
  EXPECT_EQ(ValueOf(settings, "data source"), "c");
}

TEST(ConnectionString, AValueMayHoldEqualsSigns) {
  EXPECT_EQ(ValueOf("Provider=PostgreSQL;URI=postgresql://h/d?sslmode=require&port=1", "uri"),
            "postgresql://h/d?sslmode=require&port=1");
}

TEST(ConnectionString, AValueMayHoldCommas) {
  EXPECT_EQ(ValueOf("Host=first,second;Port=1", "host"), "first,second");
}

TEST(ConnectionString, QuotedValuesHoldWhatOthersCannot) {
  EXPECT_EQ(ValueOf("Password='a;b=c';X=1", "password"), "a;b=c");
  EXPECT_EQ(ValueOf("Password=\"a;b=c\";X=1", "password"), "a;b=c");
  EXPECT_EQ(ValueOf("Password=\"a;b=c\";X=1", "x"), "1");
  EXPECT_EQ(ValueOf("Password='  a  '", "password"), "  a  ");
  EXPECT_EQ(ValueOf("Password = 'a' ; X = 1", "password"), "a");
  EXPECT_EQ(ValueOf("Password=''", "password").value_or(""), "");
}

TEST(ConnectionString, QuotesAreDoubledInsideTheirKind) {
  EXPECT_EQ(ValueOf("Password='it''s'", "password"), "it's");
  EXPECT_EQ(ValueOf("Password=\"say \"\"x\"\"\"", "password"), "say \"x\"");
  EXPECT_EQ(ValueOf("Password='say \"x\"'", "password"), "say \"x\"");
  EXPECT_EQ(ValueOf("Password=\"it's\"", "password"), "it's");
  EXPECT_EQ(ValueOf("Password=''''", "password"), "'");
}

TEST(ConnectionString, AQuoteInsideAnUnquotedValueIsItself) {
  EXPECT_EQ(ValueOf("Data Source=it's.db;X=1", "data source"), "it's.db");
}

TEST(ConnectionString, ValuesKeepTheirCaseAndLetters) {
  EXPECT_EQ(ValueOf("Data Source=Mémoire 😀.DB", "data source"), "Mémoire 😀.DB");
}

TEST(ConnectionString, OtherShapesAreRefusedAndShowNoValue) {
  for (const std::string text :
       {"Provider=SQLite;s3cret", "=s3cret", "  =s3cret", "Password='s3cret", "Password=\"s3cret",
        "Password='s3cret'tail", "Password='s3cret' 's3cret'", "Password=\"s3cret\"\"",
        "Password='s3cret\";X=1"}) {
    const Error error = Refusal([&] { static_cast<void>(ParseConnectionString(text)); });
    EXPECT_EQ(error.number(), kFailed) << text;
    EXPECT_EQ(error.description().find("s3cret"), std::string::npos) << error.description();
  }
}

class ConnectionStringLogTest : public DatabaseTest {};

TEST_F(ConnectionStringLogTest, NoConnectionStringIsEverLogged) {
  for (const std::string text :
       {"Provider=SQLite;Data Source=/no/such/folder/s3cret.db", "Provider=s3cret",
        "Provider=SQLite;Data Source=x.db;Password=s3cret", "Password='s3cret"}) {
    cLotrix service(MakeHost());
    service.openConnection(text);
    static_cast<void>(Refusal([&] { static_cast<void>(service.vaccineReferenceTableRead()); }));
    static_cast<void>(Refusal([&] { static_cast<void>(service.Connection()); }));
    service.closeConnection();
    const std::vector<std::string> lines = Trace();
    EXPECT_GT(lines.size(), 5U);
    for (const std::string& line : lines) {
      EXPECT_EQ(line.find("s3cret"), std::string::npos) << line;
    }
  }
}

}  // namespace
}  // namespace lotrix::test
