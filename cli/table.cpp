#include "cli/table.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace lotrix::cli {

namespace {

using Row = std::vector<std::string>;

// Control characters would break the table, or the terminal.
std::string Printable(const std::string& text) {
  std::string printable;
  unsigned char before = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    // U+0080 to U+009F are C2 80 to C2 9F.
    const bool high = before == 0xC2 && byte >= 0x80 && byte <= 0x9F;
    if (high) printable.pop_back();
    printable += byte < 0x20 || byte == 0x7F || high ? '?' : c;
    before = byte;
  }
  return printable;
}

// Characters, so that columns stay in line for most scripts.
std::size_t Width(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

Row Texts(const Collection& items) {
  Row row;
  for (const Value& item : items) {
    const auto* const text = std::get_if<std::string>(&item);
    row.push_back(text == nullptr ? std::string() : Printable(*text));
  }
  return row;
}

void WriteRow(std::ostream& out, const Row& row, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t column = 0; column < row.size(); ++column) {
    if (column > 0) line += "  ";
    line += row[column];
    line.append(widths[column] - Width(row[column]), ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

}  // namespace

void WriteTable(std::ostream& out, const cResultSet& table) {
  std::vector<Row> rows = {Texts(*table.Headers())};
  for (const Value& row : *table.Data()) {
    rows.push_back(Texts(*std::get<std::shared_ptr<Collection>>(row)));
  }
  std::vector<std::size_t> widths(rows[0].size());
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], Width(row[column]));
    }
  }
  WriteRow(out, rows[0], widths);
  Row ruler;
  for (const std::size_t width : widths) ruler.emplace_back(width, '-');
  WriteRow(out, ruler, widths);
  for (std::size_t row = 1; row < rows.size(); ++row) WriteRow(out, rows[row], widths);
}

}  // namespace lotrix::cli
