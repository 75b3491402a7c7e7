// SPDX-License-Identifier: Apache-2.0
// What a command prints: blocks, tables, and records as JSON, fit for a terminal or for a pipe.
#pragma once

#include "Text.h"
#include <Orvane/Platform/Indirect.h>

#include <concepts>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>
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

/// What a column holds, which says how it stands and whether it may be cut: a number (to the right)
/// and a time say something else without their end.
enum class Look : std::uint8_t { text, number, time };

/// A column of a table of `Record`s, in one declaration: its title, what stands in it, and its
/// rank. `read` is a member, or a function of a record; absent values leave the cell empty.
/// `convert` gives a value its unit. Where a table is too wide, room goes to the columns of the
/// lowest rank first, and those of rank 0 always stay.
template <class Record>
class Column {
 public:
  template <std::invocable<const Record&> Read>
  Column(const char* heading, Read read, int leavesAs = 0)
      : Column(
            heading, std::move(read), [](const auto& value) { return cellText(value); }, leavesAs) {
  }

  template <std::invocable<const Record&> Read, class Convert>
    requires(!std::convertible_to<Convert, int>)
  Column(const char* heading, Read read, Convert convert, int leavesAs = 0)
      : title(heading), rank(leavesAs) {
    using Value = std::remove_cvref_t<std::invoke_result_t<Read&, const Record&>>;
    if constexpr (requires(const Value& value) { value.has_value(); }) {
      look = lookOf<typename Value::value_type, Convert>();
      text = [read, convert](const Record& record) -> std::string {
        const auto& value = std::invoke(read, record);
        return value ? toText(convert(*value)) : std::string();
      };
    } else {
      look = lookOf<Value, Convert>();
      text = [read, convert](const Record& record) -> std::string {
        return toText(convert(std::invoke(read, record)));
      };
    }
  }

  const char* title;
  int rank;
  Look look{};
  std::function<std::string(const Record&)> text;

 private:
  // A number stays one with a unit; one that is made a time is a time.
  template <class T, class Convert>
  static constexpr Look lookOf() {
    using Shown = std::remove_cvref_t<std::invoke_result_t<const Convert&, const T&>>;
    if constexpr (std::same_as<T, Date> || std::same_as<T, Moment>) return Look::time;
    if constexpr (std::same_as<T, DateComponents> || std::same_as<Shown, Moment>) return Look::time;
    if constexpr (std::is_arithmetic_v<T> && !std::same_as<T, bool>) return Look::number;
    return Look::text;
  }
  // A column is no place for seconds and offset.
  template <class T>
  static std::string cellText(const T& value) {
    if constexpr (std::same_as<T, Date>) {
      return localMinute(value, std::nullopt);
    } else {
      return toText(value);
    }
  }
};

/// Rows under a header.
class Table {
 public:
  /// A row for each of `records`, which are `what`: "trips".
  template <std::ranges::range Records>
  Table(const char* what, const Records& records,
        std::initializer_list<Column<std::ranges::range_value_t<Records>>> columns)
      : what_(what) {
    for (const auto& column : columns) columns_.push_back({column.title, column.look, column.rank});
    for (const auto& record : records) {
      auto& row = rows_.emplace_back();
      for (const auto& column : columns) row.push_back(column.text(record));
    }
  }

 private:
  friend class Output;

  struct Head {
    std::string title;
    Look look;
    int rank;
  };
  const char* what_;
  std::vector<Head> columns_;
  std::vector<std::vector<std::string>> rows_;
};

/// How the output looks.
struct OutputStyle {
  enum class Format : std::uint8_t {
    table,    ///< For people: aligned, and fit into `columns`.
    tabs,     ///< For other programs: cells are separated by tabs.
    json,     ///< What the backend answered, as JSON, indented.
    compact,  ///< The same on one line.
    raw,      ///< What the backend answered, byte by byte.
  };

  [[nodiscard]] bool isJSON() const { return format == Format::json || format == Format::compact; }
  [[nodiscard]] bool isRaw() const { return format == Format::raw; }
  [[nodiscard]] bool isTable() const { return format == Format::table; }

  Format format = Format::tabs;
  bool isTerminal = false;  ///< A line break is added where the output ends without one.
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
  /// The header first, then the rows. As a table without the columns that are empty in every row,
  /// and without those that there is no room for; where there are no rows it says so.
  void table(const Table& table);
  void section(std::string_view title, const Table& rows);
  /// A JSON text.
  void json(std::string_view text);
  /// Everything as it is: for contents, not for records.
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
      {table, "table"}, {tabs, "tabs"}, {json, "json"}, {compact, "compact"}, {raw, "raw"}};
};
