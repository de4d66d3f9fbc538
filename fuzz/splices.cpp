// Values in their places in a statement: none of them may leave its own.
#include <fuzzer/FuzzedDataProvider.h>

#include <string>
#include <vector>

#include "fuzz/database.h"
#include "fuzz/require.h"
#include "lotrix/connection.h"
#include "src/database/statement.h"
#include "src/database/tokens.h"
#include "src/platform/text.h"

namespace lotrix::fuzz {

namespace {

struct Values {
  std::string text;
  std::string date;
  std::string number;
  std::string inside;  // a part of a text
};

Statement StatementOf(const Values& values) {
  Statement statement;
  statement << "SELECT pin FROM provider WHERE ltrim(rtrim(pin)) = '" << values.text
            << "' OR datevfc = {" << values.date << "} OR provid = " << values.number
            << " OR cat1 <> 'a" << values.inside << "b' ORDER BY pin";
  return statement;
}

// The whole text's tokens with each value's place marked as the template marks it.
std::vector<Token> WithMarks(std::vector<Token> tokens, const Values& values) {
  const std::string mark(1, Statement::kMark);
  const auto at = [&](std::size_t place) -> Token& {
    Require(place < tokens.size(), "no token is lost");
    return tokens[place];
  };
  // SELECT pin FROM provider WHERE ltrim ( rtrim ( pin ) ) = 'text'
  constexpr std::size_t kText = 13;
  constexpr std::size_t kDate = kText + 4;
  constexpr std::size_t kNumber = kDate + 4;
  Require(at(kText).content == values.text, "the text is in its place");
  at(kText).content = mark;
  Require(at(kDate).content == values.date, "the date is in its place");
  at(kDate).content = mark;
  if (IsOperator(at(kNumber), "+") || IsOperator(at(kNumber), "-")) {
    tokens.erase(tokens.begin() + kNumber);
  }
  Require(at(kNumber).kind == TokenKind::kNumber, "the number is in its place");
  Require(values.number.find(at(kNumber).content) != std::string::npos, "it is the number");
  at(kNumber).content = mark;
  constexpr std::size_t kInside = kNumber + 4;
  Require(at(kInside).content == 'a' + values.inside + 'b', "the part is in its place");
  at(kInside).content = 'a' + mark + 'b';
  return tokens;
}

bool SameTokens(const std::vector<Token>& a, const std::vector<Token>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].kind != b[i].kind || a[i].content != b[i].content) return false;
  }
  return true;
}

// A query's outcome: the rows, or the number of its refusal.
struct Outcome {
  std::int32_t number = 0;
  std::vector<std::string> pins;
  bool operator==(const Outcome&) const = default;
};

template <class Source>
Outcome Run(Connection& connection, const Source& source) {
  Outcome outcome;
  outcome.number = NumberOf([&] {
    const auto rows = connection.Execute(source);
    for (; !rows->EndOfFile(); rows->MoveNext()) {
      outcome.pins.push_back(std::get<std::string>(rows->Fields().Item(0).Value()));
    }
  });
  return outcome;
}

void Check(const Values& values) {
  static Database database([](Connection& connection) {
    for (const char* const row :
         {"'P1', {7/4/2026}, 1, 'ab'", "'P2 ', {}, 2, 'ab '", "'', {1/1/2000}, -3, 'a'",
          "' P4', {12/31/9999}, 2147483647, 'axb'"}) {
      connection.Execute("INSERT INTO provider(pin, datevfc, provid, cat1) VALUES(" +
                         std::string(row) + ')');
    }
  });
  static Connection connection;
  if (connection.State() == ObjectState::kClosed) connection.Open(database.ConnectionString());

  const Statement statement = StatementOf(values);
  const std::int32_t shape = NumberOf([&] { RequireShape(statement); });
  const Outcome outcome = Run(connection, statement);
  Require(!database.Changed(), "a query changes nothing");
  constexpr std::int32_t kRefused = Numbered(EngineError::kStatementRefused);
  Require(shape == 0 || shape == kRefused, "a shape is refused as a statement");
  Require((outcome.number == kRefused) == (shape == kRefused), "the shape alone refuses it");
  if (shape != 0) return;

  const std::string text = statement.text();
  Require(SameTokens(WithMarks(ReadTokens(text), values), ReadTokens(statement.templateText())),
          "the text is the template with its values");
  constexpr std::int32_t kOutOfRange = Numbered(EngineError::kValueOutOfRange);
  Require(IsOneOf(outcome.number, {0, Numbered(EngineError::kValueCannotBeConverted), kOutOfRange}),
          "a value is refused as one");
  // The engine takes a number that is too large as an endless one.
  if (!IsValidUtf8(text) || outcome.number == kOutOfRange) return;
  Require(Run(connection, text) == outcome, "the text's answer is the statement's");
}

}  // namespace

}  // namespace lotrix::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  lotrix::fuzz::Values values;
  values.number = input.ConsumeBool() ? std::to_string(input.ConsumeIntegral<std::int64_t>())
                                      : input.ConsumeRandomLengthString();
  values.date = input.ConsumeBool() ? "7/4/2026" : input.ConsumeRandomLengthString();
  values.text = input.ConsumeRandomLengthString();
  values.inside = input.ConsumeRemainingBytesAsString();
  lotrix::fuzz::Check(values);
  return 0;
}
