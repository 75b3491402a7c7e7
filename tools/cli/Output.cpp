// SPDX-License-Identifier: Apache-2.0
#include "Output.h"

#include "ExitCode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <numeric>

namespace orvane::cli {
namespace {

constexpr std::string_view gap = "  ";
// No column is made narrower than that for others to fit.
constexpr std::size_t narrowest = 8;

using Row = std::vector<std::string>;

std::string padding(std::size_t width, std::string_view text) {
  const std::size_t used = columnsOf(text);
  return std::string(used < width ? width - used : 0, ' ');
}

std::string tabbed(const Row& cells) {
  std::vector<std::string> texts;
  for (const std::string& cell : cells) texts.push_back(visible(cell));
  std::string line;
  for (std::size_t index = 0; index < texts.size(); ++index) {
    line.append(index == 0 ? "" : "\t").append(texts[index]);
  }
  return line;
}

// How wide every column is when the whole is to fit into `columns`: the widest texts give way.
std::vector<std::size_t> widths(const std::vector<Row>& rows,
                                const std::vector<Table::Column>& shown, std::size_t columns) {
  std::vector<std::size_t> needed(shown.size(), 0);
  for (const Row& row : rows) {
    for (std::size_t index = 0; index < needed.size(); ++index) {
      needed[index] = std::max(needed[index], columnsOf(row[index]));
    }
  }
  const auto spare = [&](std::size_t index) {
    const bool isWhole = shown[index].fit == Table::Fit::whole;
    return isWhole || needed[index] <= narrowest ? 0 : needed[index] - narrowest;
  };
  const std::size_t gaps = gap.size() * (needed.size() - 1);
  while (std::accumulate(needed.begin(), needed.end(), gaps) > columns) {
    std::size_t widest = 0;
    for (std::size_t index = 1; index < needed.size(); ++index) {
      if (spare(index) > spare(widest)) widest = index;
    }
    if (spare(widest) == 0) break;
    --needed[widest];
  }
  return needed;
}

// Takes the columns away that are empty in every row; the first row has their titles.
void removeEmptyColumns(std::vector<Row>& rows, std::vector<Table::Column>& columns) {
  if (rows.size() < 2) return;
  for (std::size_t index = columns.size(); index-- > 0;) {
    const auto isEmpty = [&](const Row& row) { return row[index].empty(); };
    if (!std::all_of(rows.begin() + 1, rows.end(), isEmpty)) continue;
    const auto offset = static_cast<std::ptrdiff_t>(index);
    for (Row& row : rows) row.erase(row.begin() + offset);
    columns.erase(columns.begin() + offset);
  }
}

}  // namespace

void Output::line(std::string_view text) { buffer_.append(text).push_back('\n'); }

void Output::raw(std::string_view text) { buffer_.append(text); }

void Output::heading(std::string_view text) {
  if (!buffer_.empty()) line("");
  line(bold(visible(text)));
}

void Output::rows(const Block& block, const std::string& prefix) {
  std::size_t width = 0;
  for (const Block::Row& row : block.rows_) width = std::max(width, columnsOf(row.name));
  for (const Block::Row& row : block.rows_) {
    if (style_.format == OutputStyle::Format::table) {
      line(prefix + dimmed(row.name) + padding(width, row.name) + std::string(gap) +
           visible(row.text));
    } else {
      line(tabbed({prefix + row.name, row.text}));
    }
  }
}

void Output::block(const Block& block) { rows(block, {}); }

void Output::section(std::string_view title, const Block& block) {
  if (block.rows_.empty()) return;
  if (style_.format != OutputStyle::Format::table) return rows(block, std::string(title) + ": ");
  heading(title);
  rows(block, std::string(gap));
}

void Output::table(const Table& table) {
  Row titles;
  for (const Table::Column& column : table.columns_) titles.push_back(column.title);
  std::vector<Row> rows{std::move(titles)};
  rows.insert(rows.end(), table.rows_.begin(), table.rows_.end());
  if (style_.format != OutputStyle::Format::table) {
    for (const Row& row : rows) line(tabbed(row));
    return;
  }
  std::vector<Table::Column> columns = table.columns_;
  removeEmptyColumns(rows, columns);
  if (columns.empty()) return;
  for (Row& row : rows) std::ranges::transform(row, row.begin(), visible);
  const std::vector<std::size_t> width = widths(rows, columns, style_.columns);
  for (const Row& row : rows) {
    std::string text;
    for (std::size_t index = 0; index < row.size(); ++index) {
      if (index > 0) text += gap;
      const std::string cell = cut(row[index], width[index]);
      const std::string blanks = padding(width[index], cell);
      const bool isRight = columns[index].alignment == Table::Alignment::right;
      text += isRight ? blanks + cell : cell + blanks;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    line(&row == &rows.front() ? bold(text) : text);
  }
}

void Output::section(std::string_view title, const Table& rows) {
  if (rows.rows_.empty()) return;
  heading(title);
  table(rows);
}

void Output::json(std::string_view text) {
  line(style_.format == OutputStyle::Format::compact ? std::string(text) : indented(text));
}

void Output::flush() {
  const bool isWritten =
      std::fwrite(buffer_.data(), 1, buffer_.size(), stream_) == buffer_.size() &&
      std::fflush(stream_) == 0;
  buffer_.clear();
  if (isWritten) return;
  // Whoever read has seen enough: no fault, as with any other program.
  if (errno == EPIPE) throw Failure(ExitCode::output, "");
  throw Failure(ExitCode::output,
                std::string("the output can't be written: ") + std::strerror(errno));
}

std::string Output::bold(std::string_view text) const {
  return style_.isColoured ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

std::string Output::dimmed(std::string_view text) const {
  return style_.isColoured ? "\x1b[2m" + std::string(text) + "\x1b[0m" : std::string(text);
}

std::string indented(std::string_view json) {
  std::string text;
  std::size_t depth = 0;
  bool isInText = false;
  const auto newLine = [&] { text.append(1, '\n').append(2 * depth, ' '); };
  for (std::size_t index = 0; index < json.size(); ++index) {
    const char character = json[index];
    if (isInText) {
      text += character;
      if (character == '\\' && index + 1 < json.size()) text += json[++index];
      isInText = character != '"';
      continue;
    }
    const bool isOpening = character == '{' || character == '[';
    const bool isClosing = character == '}' || character == ']';
    if (isClosing) {
      --depth;
      const bool isEmpty = json[index - 1] == '{' || json[index - 1] == '[';
      if (!isEmpty) newLine();
    }
    text += character;
    isInText = character == '"';
    if (character == ':') text += ' ';
    if (character == ',') newLine();
    if (isOpening) {
      ++depth;
      const bool isEmpty =
          index + 1 < json.size() && (json[index + 1] == '}' || json[index + 1] == ']');
      if (!isEmpty) newLine();
    }
  }
  return text;
}

}  // namespace orvane::cli
