#include "src/database/providers/postgresql/table_writer.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "src/database/providers/postgresql/errors.h"
#include "src/database/providers/postgresql/opening.h"
#include "src/platform/dates.h"

namespace lotrix::postgresql {

namespace {

// Throws unless the answer is of the kind that is wanted.
Result Require(PGconn* link, Result answer, ExecStatusType wanted, bool inDoubt) {
  if (PQstatus(link) == CONNECTION_BAD) {
    RaiseLost(inDoubt, PQerrorMessage(link), SqlState(answer.get()));
  }
  if (PQresultStatus(answer.get()) != wanted) RaisePostgresqlError(answer.get());
  return answer;
}

Result Run(PGconn* link, const std::string& sql, ExecStatusType wanted, bool inDoubt = false) {
  return Require(link, Result(PQexec(link, sql.c_str())), wanted, inDoubt);
}

template <class Number>
void AppendNumber(std::string& line, Number number) {
  constexpr std::size_t kLongest = 32;
  std::array<char, kLongest> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), number);
  line.append(text.data(), written.ptr);
}

// Rows go as the lines of a COPY in its text form.
class PostgresqlTableWriter final : public TableWriter {
 public:
  PostgresqlTableWriter(Link link, const TableColumns& table)
      : link_(std::move(link)), columns_(table.columns) {
    Run(link_.get(), "BEGIN", PGRES_COMMAND_OK);
    Run(link_.get(),
        "COPY " + QuotedNames({table.table}) + " (" + QuotedNames(columns_) + ") FROM STDIN",
        PGRES_COPY_IN);
  }

  void Add(const std::vector<ValueView>& row) override {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i > 0) lines_ += '\t';
      std::visit([&](const auto& value) { Append(i, value); }, row[i]);
    }
    lines_ += '\n';
    constexpr std::size_t kEnough = std::size_t{64} * 1024;
    if (lines_.size() >= kEnough) SendLines();
  }

  void Commit() override {
    SendLines();
    if (PQputCopyEnd(link_.get(), nullptr) != 1) Lose();
    Require(link_.get(), Result(PQgetResult(link_.get())), PGRES_COMMAND_OK, false);
    while (Result(PQgetResult(link_.get())) != nullptr) {
    }
    Run(link_.get(), "COMMIT", PGRES_COMMAND_OK, true);
  }

 private:
  void Append(std::size_t /*column*/, Null /*value*/) { lines_ += "\\N"; }
  void Append(std::size_t /*column*/, bool value) { lines_ += value ? 't' : 'f'; }
  void Append(std::size_t /*column*/, std::int64_t value) { AppendNumber(lines_, value); }
  void Append(std::size_t /*column*/, double value) {
    // The sign of what is no number would be written too.
    if (std::isnan(value)) {
      lines_ += "NaN";
    } else {
      AppendNumber(lines_, value);
    }
  }
  void Append(std::size_t /*column*/, Date value) { lines_ += IsoDateText(value); }
  void Append(std::size_t column, std::string_view value) {
    for (const char c : value) {
      switch (c) {
        case '\0':
          RaiseCannotHold(columns_[column], "a text with a U+0000, which cannot be stored");
        case '\\':
          lines_ += "\\\\";
          break;
        case '\t':
          lines_ += "\\t";
          break;
        case '\n':
          lines_ += "\\n";
          break;
        case '\r':
          lines_ += "\\r";
          break;
        default:
          lines_ += c;
      }
    }
  }

  void SendLines() {
    if (lines_.empty()) return;
    if (PQputCopyData(link_.get(), lines_.data(), static_cast<int>(lines_.size())) != 1) Lose();
    lines_.clear();
  }

  [[noreturn]] void Lose() { RaiseLost(false, PQerrorMessage(link_.get()), {}); }

  Link link_;
  std::vector<std::string> columns_;
  std::string lines_;
};

}  // namespace

std::unique_ptr<TableWriter> OpenTableWriter(const ConnectionSettings& settings,
                                             const TableColumns& table) {
  return std::make_unique<PostgresqlTableWriter>(Connect(settings, ConnectMode::kReadWrite), table);
}

std::string Identity(const ConnectionSettings& settings) {
  const Link link = Connect(settings, ConnectMode::kRead);
  const Result answer =
      Run(link.get(),
          "SELECT pg_postmaster_start_time()::text || ' ' || oid FROM pg_database "
          "WHERE datname = current_database()",
          PGRES_TUPLES_OK);
  return std::string("PostgreSQL ") + PQgetvalue(answer.get(), 0, 0);
}

}  // namespace lotrix::postgresql
