// SPDX-License-Identifier: Apache-2.0
#include "Output.h"

#include "ExitCode.h"
#include "JSONText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

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

// In columns.
std::size_t longestWord(std::string_view text) {
  std::size_t longest = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    longest = std::max(longest, columnsOf(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return longest;
}

std::string tabbed(const Row& cells) {
  std::string line;
  for (std::size_t index = 0; index < cells.size(); ++index) {
    line.append(index == 0 ? "" : "\t").append(visible(cells[index]));
  }
  return line;
}

// A column as it is laid out: its cells, the title first.
struct Laid {
  Row cells;
  Look look;
  int rank;
  std::size_t width = 0;
  bool isGone = false;

  [[nodiscard]] bool isEmpty() const {
    return std::all_of(cells.begin() + 1, cells.end(),
                       [](const auto& cell) { return cell.empty(); });
  }
  // How much of it may be cut off.
  [[nodiscard]] std::size_t spare() const {
    return look != Look::text || width <= narrowest ? 0 : width - narrowest;
  }
};

std::size_t widthOf(const std::vector<Laid>& columns) {
  std::size_t width = columns.empty() ? 0 : gap.size() * (columns.size() - 1);
  for (const Laid& column : columns) width += column.width;
  return width;
}

// Makes the columns fit: those of the lowest rank come first, each where there is still room for
// it, and where those that have to stay need more, the widest texts give way. Answers the titles of
// what went.
std::vector<std::string> fit(std::vector<Laid>& columns, std::size_t room) {
  std::vector<Laid*> ranked;
  ranked.reserve(columns.size());
  for (Laid& column : columns) ranked.push_back(&column);
  std::ranges::stable_sort(ranked, {}, &Laid::rank);
  std::size_t used = 0;
  for (Laid* column : ranked) {
    const std::size_t needed = column->width + (used == 0 ? 0 : gap.size());
    column->isGone = column->rank > 0 && used + needed > room;
    if (!column->isGone) used += needed;
  }
  std::vector<std::string> gone;
  for (const Laid& column : columns) {
    if (column.isGone) gone.push_back(column.cells.front());
  }
  std::erase_if(columns, [](const Laid& column) { return column.isGone; });
  while (widthOf(columns) > room) {
    Laid& widest = *std::ranges::max_element(columns, {}, &Laid::spare);
    if (widest.spare() == 0) break;
    --widest.width;
  }
  return gone;
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
    if (!style_.isTable()) {
      line(tabbed({prefix + row.name, row.text}));
      continue;
    }
    const std::string name =
        prefix + dimmed(row.name) + padding(width, row.name) + std::string(gap);
    const std::string text = visible(row.text);
    std::size_t margin = prefix.size() + width + gap.size();
    std::string start = name;
    if (margin + longestWord(text) > style_.columns) {
      // It has a line to itself.
      margin = prefix.size() + gap.size();
      start = prefix + dimmed(row.name) + "\n" + std::string(margin, ' ');
    }
    line(start + wrapped(text, style_.columns, margin, margin));
  }
}

void Output::block(const Block& block) { rows(block, {}); }

void Output::section(std::string_view title, const Block& block) {
  if (block.rows_.empty()) return;
  if (!style_.isTable()) return rows(block, std::string(title) + ": ");
  heading(title);
  rows(block, std::string(gap));
}

void Output::table(const Table& table) {
  if (!style_.isTable()) {
    Row titles;
    for (const Table::Head& head : table.columns_) titles.push_back(head.title);
    line(tabbed(titles));
    for (const Row& row : table.rows_) line(tabbed(row));
    return;
  }
  if (table.rows_.empty()) return line("No " + std::string(table.what_) + ".");
  std::vector<Laid> columns;
  for (std::size_t index = 0; index < table.columns_.size(); ++index) {
    const Table::Head& head = table.columns_[index];
    Laid column{{head.title}, head.look, head.rank};
    for (const Row& row : table.rows_) column.cells.push_back(visible(row[index]));
    for (const std::string& cell : column.cells) {
      column.width = std::max(column.width, columnsOf(cell));
    }
    if (!column.isEmpty()) columns.push_back(std::move(column));
  }
  const std::vector<std::string> gone = fit(columns, style_.columns);
  for (std::size_t row = 0; row <= table.rows_.size(); ++row) {
    std::string text;
    for (const Laid& column : columns) {
      if (&column != &columns.front()) text += gap;
      const std::string cell = cut(column.cells[row], column.width);
      const std::string blanks = padding(column.width, cell);
      text += column.look == Look::number ? blanks + cell : cell + blanks;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    line(row == 0 ? bold(text) : text);
  }
  if (gone.empty()) return;
  const std::string note = "There is no room for: " + joined(gone, ", ") + ".";
  line(dimmed(wrapped(note, style_.columns, 0, 0)));
}

void Output::section(std::string_view title, const Table& rows) {
  if (rows.rows_.empty()) return;
  heading(title);
  table(rows);
}

void Output::json(std::string_view text) {
  line(style_.format == OutputStyle::Format::compact ? compactJSON(text) : indentedJSON(text));
}

void Output::flush() {
  // The shell's prompt has a line of its own.
  if (style_.isTerminal && !buffer_.empty() && buffer_.back() != '\n') buffer_ += '\n';
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

}  // namespace orvane::cli
