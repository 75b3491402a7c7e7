// SPDX-License-Identifier: Apache-2.0
#include "DayChart.h"

#include "ChartAxes.h"
#include "SVG.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace orvane::cli {
namespace {

using Day = DayChart::Day;
using Point = DayChart::Point;
using std::chrono::days;

struct Period {
  Day first;
  Day last;

  [[nodiscard]] std::size_t length() const {
    return static_cast<std::size_t>((last - first).count()) + 1;
  }
};

// The days that were asked for and those that there are. Absent where there are none.
std::optional<Period> drawnPeriod(const DayChart& chart) {
  std::optional<Period> drawn;
  if (chart.period) drawn = {chart.period->first, chart.period->second};
  for (const Point& point : chart.points) {
    if (!drawn) drawn = {point.day, point.day};
    drawn = {std::min(drawn->first, point.day), std::max(drawn->last, point.day)};
  }
  return drawn;
}

std::vector<double> valuesOf(const DayChart& chart) {
  std::vector<double> values;
  for (const Point& point : chart.points) values.push_back(point.value);
  if (chart.average) values.push_back(*chart.average);
  return values;
}

// --- In a terminal
// --------------------------------------------------------------------------------

// What bars and axes are made of.
struct Glyphs {
  std::vector<std::string_view> parts;  // of a cell, from the lowest to the whole
  std::string_view tick;
  std::string_view line;
  std::string_view corner;
  std::string_view base;
  std::string_view baseTick;
};

const Glyphs& glyphsOf(const OutputStyle& style) {
  static const Glyphs blocks{{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"}, "┤", "│", "└", "─", "┬"};
  static const Glyphs ascii{{".", ":", "#"}, "+", "|", "+", "-", "+"};
  return style.isUnicode ? blocks : ascii;
}

// A row of cells of one column each.
class Row {
 public:
  explicit Row(std::size_t columns) : cells_(columns, " ") {}

  void set(std::size_t column, std::string_view glyph) { cells_[column] = glyph; }
  /// Writes ASCII text from the column on, if there is room and a blank before it.
  void write(std::size_t column, std::string_view text) {
    // The last one may begin further to the left.
    if (text.size() > cells_.size()) return;
    column = std::min(column, cells_.size() - text.size());
    const std::size_t before = column == 0 ? 0 : column - 1;
    for (std::size_t at = before; at < column + text.size(); ++at) {
      if (cells_[at] != " ") return;
    }
    for (std::size_t at = 0; at < text.size(); ++at) cells_[column + at] = text.substr(at, 1);
  }

  [[nodiscard]] std::string text() const {
    std::size_t end = cells_.size();
    while (end > 0 && cells_[end - 1] == " ") --end;
    std::string whole;
    for (std::size_t at = 0; at < end; ++at) whole += cells_[at];
    return whole;
  }

 private:
  std::vector<std::string_view> cells_;
};

// How days become columns: bars of one day each with room between them, or of several days.
struct Bars {
  std::size_t daysPerBar = 1;
  std::size_t pitch = 1;  // columns from a bar to the next
  std::size_t width = 1;
  std::size_t count = 1;

  Bars(std::size_t length, std::size_t columns) {
    constexpr std::size_t widest = 6;
    daysPerBar = (length + columns - 1) / columns;
    count = (length + daysPerBar - 1) / daysPerBar;
    pitch = std::clamp(columns / count, std::size_t{1}, widest);
    width = pitch == 1 ? 1 : pitch - 1;
  }

  [[nodiscard]] std::size_t columnOf(std::size_t day) const { return day / daysPerBar * pitch; }
  [[nodiscard]] std::size_t columns() const { return (count - 1) * pitch + width; }
};

// The mean of the values that each bar stands for; absent where there is none.
std::vector<std::optional<double>> heights(const DayChart& chart, Day first, const Bars& bars) {
  struct Sum {
    double values = 0;
    std::size_t count = 0;
  };
  std::vector<Sum> sums(bars.count);
  for (const Point& point : chart.points) {
    Sum& sum = sums[static_cast<std::size_t>((point.day - first).count()) / bars.daysPerBar];
    sum.values += point.value;
    ++sum.count;
  }
  std::vector<std::optional<double>> means;
  means.reserve(sums.size());
  for (const Sum& sum : sums) {
    means.push_back(sum.count == 0 ? std::nullopt
                                   : std::optional(sum.values / static_cast<double>(sum.count)));
  }
  return means;
}

class TerminalChart {
 public:
  TerminalChart(const DayChart& chart, const OutputStyle& style, const Period& period,
                const ValueAxis& axis)
      : chart_(chart), style_(style), period_(period), axis_(axis), glyphs_(glyphsOf(style)) {
    constexpr std::size_t usualHeight = 10;
    rowsPerStep_ = std::max<std::size_t>(1, (usualHeight + axis.steps / 2) / axis.steps);
    for (std::size_t tick = 0; tick <= axis.steps; ++tick) {
      labelWidth_ = std::max(labelWidth_, axis.label(tick).size());
    }
  }

  [[nodiscard]] std::vector<std::string> lines() const {
    constexpr std::size_t narrowest = 10;
    const std::size_t margin = labelWidth_ + 2;
    if (style_.columns < margin + narrowest) return {};
    const Bars bars(period_.length(), style_.columns - margin);
    std::vector<std::string> lines{cut(heading(), style_.columns)};
    addBars(lines, bars);
    addDays(lines, bars);
    if (bars.daysPerBar > 1) {
      const std::string note = "A bar is the mean of " + std::to_string(bars.daysPerBar) + " days.";
      lines.push_back(cut(note, style_.columns));
    }
    return lines;
  }

 private:
  [[nodiscard]] std::string heading() const {
    const std::string text = visible(chart_.title) + ", " + isoDay(period_.first);
    return period_.length() > 1 ? text + " to " + isoDay(period_.last) : text;
  }

  [[nodiscard]] std::string accented(const std::string& text) const {
    return style_.isColoured && !text.empty() ? "\x1b[36m" + text + "\x1b[0m" : text;
  }

  // In parts of cells. What there is can be seen, however low it lies.
  [[nodiscard]] std::size_t levelOf(double value) const {
    const auto most = static_cast<double>(axis_.steps * rowsPerStep_ * glyphs_.parts.size());
    return static_cast<std::size_t>(
        std::clamp(std::round(axis_.position(value) * most), 1.0, most));
  }

  void addBars(std::vector<std::string>& lines, const Bars& bars) const {
    const auto means = heights(chart_, period_.first, bars);
    const std::size_t parts = glyphs_.parts.size();
    for (std::size_t row = axis_.steps * rowsPerStep_; row-- > 0;) {
      Row cells(bars.columns());
      for (std::size_t bar = 0; bar < bars.count; ++bar) {
        const std::size_t level = means[bar] ? levelOf(*means[bar]) : 0;
        if (level <= row * parts) continue;
        const std::size_t part = std::min(level - row * parts, parts);
        for (std::size_t at = 0; at < bars.width; ++at) {
          cells.set(bar * bars.pitch + at, glyphs_.parts[part - 1]);
        }
      }
      // The upper edge of a row is what its label says.
      const bool hasLabel = (row + 1) % rowsPerStep_ == 0;
      lines.push_back(label(hasLabel ? axis_.label((row + 1) / rowsPerStep_) : std::string()) +
                      std::string(hasLabel ? glyphs_.tick : glyphs_.line) + accented(cells.text()));
    }
  }

  void addDays(std::vector<std::string>& lines, const Bars& bars) const {
    constexpr std::size_t columnsPerLabel = 8;
    const auto ticks = dayTicks(period_.first, period_.last,
                                std::max<std::size_t>(1, bars.columns() / columnsPerLabel));
    Row base(bars.columns());
    for (std::size_t at = 0; at < bars.columns(); ++at) base.set(at, glyphs_.base);
    Row labels(std::max(bars.columns(), columnsPerLabel));
    for (const DayTick& tick : ticks) {
      const auto day = static_cast<std::size_t>((tick.day - period_.first).count());
      base.set(bars.columnOf(day), glyphs_.baseTick);
      labels.write(bars.columnOf(day), tick.label);
    }
    lines.push_back(label(axis_.label(0)) + std::string(glyphs_.corner) + base.text());
    const std::string text = labels.text();
    if (!text.empty()) lines.push_back(label({}) + " " + text);
  }

  [[nodiscard]] std::string label(const std::string& text) const {
    return std::string(labelWidth_ - text.size(), ' ') + text + " ";
  }

  const DayChart& chart_;
  const OutputStyle& style_;
  const Period period_;
  const ValueAxis axis_;
  const Glyphs& glyphs_;
  std::size_t rowsPerStep_ = 1;
  std::size_t labelWidth_ = 0;
};

// --- As a document
// --------------------------------------------------------------------------------

constexpr double width = 860;
constexpr double height = 340;
constexpr double left = 56;
constexpr double right = width - 24;
constexpr double top = 72;
constexpr double bottom = height - 44;

class ChartDocument {
 public:
  ChartDocument(const DayChart& chart, const Period& period, const ValueAxis& axis)
      : chart_(chart),
        period_(period),
        axis_(axis),
        points_(chart.points),
        svg_({width, height}, chart.title, summary()) {
    std::ranges::stable_sort(points_, {}, &Point::day);
  }

  [[nodiscard]] std::string text() && {
    svg_.text(24, 32, chart_.title, {{"font-size", 17}, {"font-weight", "600"}});
    svg_.text(24, 52, summary(), {{"class", "muted"}});
    drawValues();
    drawDays();
    if (chart_.average) drawAverage(*chart_.average);
    drawLine();
    drawDots();
    if (points_.empty()) {
      svg_.text((left + right) / 2, (top + bottom) / 2, "No day has a value.",
                {{"class", "muted"}, {"text-anchor", "middle"}});
    }
    return std::move(svg_).take();
  }

 private:
  [[nodiscard]] std::string summary() const {
    std::string text = isoDay(period_.first);
    if (period_.length() > 1) text += " to " + isoDay(period_.last);
    if (chart_.average) text += ", average " + decimal(*chart_.average, 2);
    return text;
  }

  [[nodiscard]] double dayWidth() const {
    return (right - left) / static_cast<double>(period_.length());
  }
  [[nodiscard]] double x(Day day) const {
    return left + (static_cast<double>((day - period_.first).count()) + 0.5) * dayWidth();
  }
  [[nodiscard]] double y(double value) const {
    return bottom - axis_.position(value) * (bottom - top);
  }
  [[nodiscard]] double radius() const { return std::clamp(dayWidth() * 0.35, 1.5, 4.0); }

  void line(double x1, double y1, double x2, double y2, SVG::Attributes more = {}) {
    SVG::Attributes attributes{
        {"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}, {"stroke", "currentColor"}};
    attributes.insert(attributes.end(), more.begin(), more.end());
    svg_.element("line", attributes);
  }

  void drawValues() {
    for (std::size_t tick = 0; tick <= axis_.steps; ++tick) {
      const double at = y(axis_.tick(tick));
      line(left, at, right, at, {{"class", "line"}});
      svg_.text(left - 10, at + 4.5, axis_.label(tick),
                {{"class", "muted"}, {"text-anchor", "end"}});
    }
  }

  void drawDays() {
    // Room for "30 Nov" and as much again beside it.
    constexpr std::size_t mostLabels = 11;
    for (const DayTick& tick : dayTicks(period_.first, period_.last, mostLabels)) {
      line(x(tick.day), bottom, x(tick.day), bottom + 6, {{"class", "line"}});
      svg_.text(x(tick.day), bottom + 24, tick.label,
                {{"class", "muted"}, {"text-anchor", "middle"}});
    }
  }

  void drawAverage(double average) {
    line(left, y(average), right, y(average), {{"class", "muted"}, {"stroke-dasharray", "5 4"}});
  }

  // Only from a day to the next: over a gap there is no line.
  void drawLine() {
    SVGPath path;
    const Point* before = nullptr;
    for (const Point& point : points_) {
      if (before != nullptr && point.day - before->day <= days(1)) {
        path.lineTo(x(point.day), y(point.value));
      } else {
        path.moveTo(x(point.day), y(point.value));
      }
      before = &point;
    }
    svg_.element("path", {{"class", "accent"},
                          {"d", path.text()},
                          {"fill", "none"},
                          {"stroke", "currentColor"},
                          {"stroke-width", 1.75},
                          {"stroke-linejoin", "round"}});
  }

  void drawDots() {
    svg_.group({{"class", "accent"}}, [&] {
      for (const Point& point : points_) {
        svg_.element("circle", {{"cx", x(point.day)}, {"cy", y(point.value)}, {"r", radius()}});
      }
    });
    // The whole height of a day shows its value, not the dot alone.
    svg_.group({{"fill", "none"}, {"pointer-events", "all"}}, [&] {
      for (const Point& point : points_) {
        svg_.element("rect",
                     {{"x", x(point.day) - dayWidth() / 2},
                      {"y", top},
                      {"width", dayWidth()},
                      {"height", bottom - top}},
                     hint(point));
      }
    });
  }

  static std::string hint(const Point& point) {
    const std::string text = isoDay(point.day) + ": " + decimal(point.value, 2);
    return point.note.empty() ? text : text + ", " + point.note;
  }

  const DayChart& chart_;
  const Period period_;
  const ValueAxis axis_;
  std::vector<Point> points_;
  SVG svg_;
};

std::optional<ValueAxis> axisOf(const DayChart& chart, std::size_t steps) {
  const std::vector<double> values = valuesOf(chart);
  return values.empty() ? std::nullopt : valueAxis(values, steps, chart.usualValues);
}

ValueAxis usualAxis(const DayChart& chart, std::size_t steps) {
  if (!chart.usualValues) return {};
  const std::array<double, 2> ends{chart.usualValues->first, chart.usualValues->second};
  return valueAxis(ends, steps, std::nullopt).value_or(ValueAxis{});
}

}  // namespace

std::vector<std::string> chartLines(const DayChart& chart, const OutputStyle& style) {
  constexpr std::size_t steps = 4;
  const auto period = drawnPeriod(chart);
  const auto axis = axisOf(chart, steps);
  if (chart.points.empty() || !period || !axis) return {};
  return TerminalChart(chart, style, *period, *axis).lines();
}

std::string chartDocument(const DayChart& chart) {
  constexpr std::size_t steps = 5;
  const Period period = drawnPeriod(chart).value_or(Period{});
  const auto axis = axisOf(chart, steps);
  if (axis) return ChartDocument(chart, period, *axis).text();
  const DayChart empty{.title = chart.title, .period = chart.period};
  return ChartDocument(empty, period, usualAxis(chart, steps)).text();
}

}  // namespace orvane::cli
