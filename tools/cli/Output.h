// SPDX-License-Identifier: Apache-2.0
// What a command prints: blocks, tables, and records as JSON, fit for a terminal or for a pipe.
#pragma once

#include "Text.h"
#include <Orvane/Platform/Indirect.h>

#include <cstdio>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::cli {

/// Names and values, one pair per line. What is absent is left out.
class Block {
 public:
  template <class T>
  Block& row(std::string name, const std::optional<T>& value) {
    if (value) rows_.push_back({std::move(name), toText(*value)});
    return *this;
  }
  /// The same with a unit or form of its own: `convert` makes the text.
  template <class T, class Convert>
  Block& row(std::string name, const std::optional<T>& value, Convert convert) {
    if (value) rows_.push_back({std::move(name), toText(convert(*value))});
    return *this;
  }
  Block& row(std::string name, std::string text) {
    rows_.push_back({std::move(name), std::move(text)});
    return *this;
  }

 private:
  friend class Output;
  struct Row {
    std::string name;
    std::string text;
  };
  std::vector<Row> rows_;
};

/// Rows under a header.
class Table {
 public:
  /// Numbers stand to the right of their column, everything else to the left.
  enum class Alignment : bool { left, right };
  /// Texts give way where a table is too wide; numbers and times, which say something else without
  /// their end, do not.
  enum class Fit : bool { cut, whole };
  struct Column {
    Column(const char* text,
           Alignment side = Alignment::left)  // NOLINT(google-explicit-constructor)
        : title(text), alignment(side), fit(side == Alignment::right ? Fit::whole : Fit::cut) {}
    Column(const char* text, Fit wanted) : title(text), alignment(Alignment::left), fit(wanted) {}
    std::string title;
    Alignment alignment;
    Fit fit;
  };

  Table(std::initializer_list<Column> columns) : columns_(columns) {}

  /// Adds a row: a cell per column, values or optionals, an absent one empty.
  template <class... Cells>
  Table& row(const Cells&... cells) {
    rows_.push_back({cellText(cells)...});
    return *this;
  }

 private:
  friend class Output;

  template <class T>
  static std::string cellText(const std::optional<T>& value) {
    return value ? cellText(*value) : std::string();
  }
  template <class T>
  static std::string cellText(const T& value) {
    return toText(value);
  }
  // A column is no place for seconds and offset.
  static std::string cellText(Date date) { return localMinute(date, std::nullopt); }

  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

/// How the output looks.
struct OutputStyle {
  enum class Format : std::uint8_t {
    table,    ///< For people: aligned, and cut to `columns`.
    tabs,     ///< For other programs: cells are separated by tabs.
    json,     ///< Records as JSON, indented.
    compact,  ///< The same on one line.
  };

  [[nodiscard]] bool isJSON() const { return format == Format::json || format == Format::compact; }

  Format format = Format::tabs;
  bool isColoured = false;
  bool isUnicode = true;  ///< Else drawings do with ASCII.
  std::size_t columns = 80;
};

/// Prints to one stream. Texts from the backend can't move the cursor: see `visible`.
class Output {
 public:
  Output(std::FILE* stream, OutputStyle style) : stream_(stream), style_(style) {}

  [[nodiscard]] const OutputStyle& style() const noexcept { return style_; }

  /// A line as it is.
  void line(std::string_view text);
  /// As a table the names stand in a column; else every line is name, tab, value.
  void block(const Block& block);
  /// The same under a heading, which stands before every name where there is no table.
  void section(std::string_view title, const Block& block);
  /// The header first, then the rows. As a table without the columns that are empty in every row.
  void table(const Table& table);
  void section(std::string_view title, const Table& rows);
  /// A JSON text, which has no white space yet.
  void json(std::string_view text);
  /// Everything as it is, without a line break at its end: for contents, not for records.
  void raw(std::string_view text);

  /// Hands everything to the system. A `Failure` where it does not take it.
  void flush();

 private:
  void heading(std::string_view text);
  void rows(const Block& block, const std::string& prefix);
  [[nodiscard]] std::string bold(std::string_view text) const;
  [[nodiscard]] std::string dimmed(std::string_view text) const;

  std::FILE* stream_;
  OutputStyle style_;
  std::string buffer_;
};

}  // namespace orvane::cli

template <>
struct orvane::EnumerationTable<orvane::cli::OutputStyle::Format> {
  using enum cli::OutputStyle::Format;
  static constexpr EnumerationCase<cli::OutputStyle::Format> cases[] = {
      {table, "table"}, {tabs, "tabs"}, {json, "json"}, {compact, "compact"}};
};

namespace orvane::cli {

/// `json`, which has no white space between its parts, on lines indented by two blanks per level.
[[nodiscard]] std::string indented(std::string_view json);

}  // namespace orvane::cli
