// SPDX-License-Identifier: Apache-2.0
#include "TripMap.h"

#include "SVG.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <set>
#include <utility>
#include <vector>

namespace orvane::cli {
namespace {

constexpr double earthRadius = 6378137;  // metres, of WGS 84
// Beyond, the projection leads to nowhere; web maps end there.
constexpr double northernmost = 85.05;
// What a trip that went nowhere is shown in.
constexpr double leastExtent = 120;  // metres

constexpr double pageWidth = 960;
constexpr double edge = 24;
constexpr double mapTop = 84;
constexpr double mapWidth = pageWidth - 2 * edge;
constexpr double lowestMap = 260;
constexpr double highestMap = 640;
// Leaves room for the labels of the grid.
constexpr double mapMargin = 60;
constexpr double lineHeight = 26;
constexpr double longestBar = 160;

double radians(double degrees) { return degrees * std::numbers::pi / 180; }
double degrees(double radians) { return radians * 180 / std::numbers::pi; }

MapView::Point projected(CLLocationCoordinate2D place) {
  const double latitude = radians(std::clamp(place.latitude, -northernmost, northernmost));
  return {radians(place.longitude), -std::asinh(std::tan(latitude))};
}

// --- Words ---------------------------------------------------------------------------------------

std::string joinedWords(const std::vector<std::string>& words) {
  std::vector<std::string> kept;
  for (const std::string& word : words) {
    if (!word.empty()) kept.push_back(word);
  }
  return joined(kept, " · ");
}

template <class T, class Convert>
std::string wordOf(const std::optional<T>& value, Convert convert) {
  return value ? convert(*value) : std::string();
}

bool isUnderWay(const Trip& trip) { return trip.status == Trip::Status::inProgress; }

std::string titleOf(const Trip& trip) { return "Trip " + trip.id.value_or("without an id"); }

std::string subtitleOf(const Trip& trip) {
  const auto toWord = [](auto value) { return toText(value); };
  const auto minute = [&](Date date) { return localMinute(date, trip.timeZone); };
  return joinedWords({isUnderWay(trip) ? "under way" : "", wordOf(trip.dateStarted, minute),
                      wordOf(trip.distance, kilometresOf), wordOf(trip.duration, durationOf),
                      wordOf(trip.transportMode, toWord),
                      wordOf(trip.purpose, [](Trip::Purpose purpose) {
                        return purpose == Trip::Purpose::unknown ? "" : toText(purpose);
                      })});
}

std::string hoverTextOf(const TripShape::Mark& mark, const std::optional<TimeZone>& zone) {
  const Event& event = *mark.what.event;
  const auto limit = [](double speed) { return "limit " + kilometresPerHourOf(speed); };
  return joinedWords({toText(*mark.what.type),
                      wordOf(event.severity, [](auto severity) { return toText(severity); }),
                      wordOf(event.date, [&](Date date) { return localTimeOfDay(date, zone); }),
                      wordOf(event.speed, kilometresPerHourOf), wordOf(event.speedLimit, limit),
                      wordOf(event.duration, durationOf)});
}

std::string lengthText(double metres) {
  return metres >= 1000 ? decimal(metres / 1000, 0) + " km" : decimal(metres, 0) + " m";
}

// --- Signs ---------------------------------------------------------------------------------------

// What stands for a place, or for what the legend explains, in the colour of a class.
struct MapSign {
  enum class Shape : std::uint8_t { disc, square, ring, dots };
  std::string paint;
  std::string letter{};  // in the disc, larger then
  Shape shape = Shape::disc;
};

MapSign startSign() { return {"start"}; }
MapSign endSign() { return {"end", {}, MapSign::Shape::square}; }
// Of a trip under way.
MapSign latestSign() { return {"end", {}, MapSign::Shape::ring}; }
// A kind of event, whatever its severity: a ring, since greys are severities, too.
MapSign kindSign(std::string letter) { return {"end", std::move(letter), MapSign::Shape::ring}; }

constexpr std::string_view dotted = "1 7";

std::string paintOf(const std::optional<Event::Severity>& severity) {
  return "severity-" + (severity ? std::string(wireText(*severity)) : "none");
}

std::string letterOf(const Event::EventType& type) {
  const auto* known = type.as<Event::KnownEventType>();
  if (known == nullptr) return "?";
  constexpr std::array<const char*, 5> letters{"A", "B", "C", "S", "L"};
  return letters.at(static_cast<std::size_t>(*known));
}

// The colours of a drawing: those of the severities that occur in it, and its own.
class SeverityPaints {
 public:
  explicit SeverityPaints(const TripShape& shape) {
    for (const TripShape::Mark& mark : shape.marks) {
      const auto& severity = mark.what.event->severity;
      colours_[paintOf(severity)] = &colourOf(severity);
    }
  }

  // They refer to this.
  [[nodiscard]] std::vector<Paint> paints() const {
    std::vector<Paint> all{{"ground", "#f6f8fa", "#161b22"},
                           {"start", "#1a7f37", "#3fb950"},
                           {"end", "#1f2328", "#e6edf3"}};
    for (const auto& [name, colour] : colours_) all.push_back({name, colour->light, colour->dark});
    return all;
  }

 private:
  std::map<std::string, const SeverityColour*> colours_;
};

constexpr double rim = 2;

double radiusOf(const MapSign& sign) { return sign.letter.empty() ? 6 : 8; }

void drawSign(SVG& svg, MapView::Point at, const MapSign& sign, std::string_view title = {}) {
  const double radius = radiusOf(sign);
  if (sign.shape == MapSign::Shape::dots) {
    const SVGPath dots = SVGPath().moveTo(at.x - 7, at.y).lineTo(at.x + 8, at.y);
    svg.element("path", {{"class", sign.paint},
                         {"d", dots.text()},
                         {"stroke", "currentColor"},
                         {"stroke-width", 3},
                         {"stroke-dasharray", dotted},
                         {"stroke-linecap", "round"}});
    return;
  }
  const auto shape = [&](std::string_view paint, double size, std::string_view hover) {
    if (sign.shape == MapSign::Shape::square) {
      svg.element("rect",
                  {{"class", paint},
                   {"x", at.x - size},
                   {"y", at.y - size},
                   {"width", 2 * size},
                   {"height", 2 * size},
                   {"rx", 2}},
                  hover);
    } else {
      svg.element("circle", {{"class", paint}, {"cx", at.x}, {"cy", at.y}, {"r", size}}, hover);
    }
  };
  shape("paper", radius + rim, {});
  shape(sign.paint, radius, title);
  const bool isRing = sign.shape == MapSign::Shape::ring;
  if (isRing) shape("paper", radius - rim, title);
  if (sign.letter.empty()) return;
  svg.text(at.x, at.y + 3.5, sign.letter,
           {{"class", isRing ? sign.paint : "paper"},
            {"font-size", 10},
            {"font-weight", 700},
            {"text-anchor", "middle"},
            {"pointer-events", "none"}});
}

// --- The legend ----------------------------------------------------------------------------------

struct LegendEntry {
  MapSign sign;
  std::string label;
  MapView::Point at{};
};

struct MapLegend {
  std::vector<LegendEntry> entries;
  double height = 0;
};

std::vector<LegendEntry> entriesOf(const TripShape& shape, bool isUnderWay) {
  std::vector<LegendEntry> entries;
  if (!shape.route.empty()) entries.push_back({startSign(), "start"});
  if (shape.route.size() > 1 && isUnderWay) {
    entries.push_back({latestSign(), "so far"});
  } else if (shape.route.size() > 1) {
    entries.push_back({endSign(), "end"});
  }
  if (!shape.reconstructedStart.empty()) {
    entries.push_back({{"accent", {}, MapSign::Shape::dots}, "reconstructed start"});
  }
  std::map<Event::EventType, int> types;
  std::set<std::optional<Event::Severity>> severities;
  for (const TripShape::Mark& mark : shape.marks) {
    ++types[*mark.what.type];
    severities.insert(mark.what.event->severity);
  }
  for (const auto& [type, count] : types) {
    const std::string times = count > 1 ? " ×" + std::to_string(count) : "";
    entries.push_back({kindSign(letterOf(type)), toText(type) + times});
  }
  for (const auto& severity : severities) {
    if (severity) entries.push_back({{paintOf(severity)}, toText(*severity)});
  }
  return entries;
}

// One entry after the other, in lines that leave room for the scale.
MapLegend legendOf(const TripShape& shape, bool isUnderWay) {
  constexpr double widthOfColumn = 7.5;  // about what a letter takes
  constexpr double widthOfSign = 40;     // with the room around it
  MapLegend legend{entriesOf(shape, isUnderWay)};
  const double right = pageWidth - edge - longestBar - widthOfSign;
  double x = edge + 8;
  double y = lineHeight;
  for (LegendEntry& entry : legend.entries) {
    const double width = widthOfSign + widthOfColumn * static_cast<double>(columnsOf(entry.label));
    if (x + width > right && x > edge + 8) {
      x = edge + 8;
      y += lineHeight;
    }
    entry.at = {x, y};
    x += width;
  }
  legend.height = y;
  return legend;
}

void drawLegend(SVG& svg, const MapLegend& legend, double top) {
  for (const LegendEntry& entry : legend.entries) {
    const MapView::Point at{entry.at.x, top + entry.at.y};
    drawSign(svg, at, entry.sign);
    svg.text(at.x + 15, at.y + 4.5, entry.label);
  }
}

// How long a length is on the map, below its right corner.
void drawScale(SVG& svg, double metresPerPixel, double top) {
  const double metres = roundLength(longestBar * metresPerPixel);
  const double right = pageWidth - edge;
  const double left = right - metres / metresPerPixel;
  const double y = top + lineHeight + 4;
  constexpr double tick = 5;
  const SVGPath bar =
      SVGPath().moveTo(left, y - tick).lineTo(left, y).lineTo(right, y).lineTo(right, y - tick);
  svg.element(
      "path",
      {{"d", bar.text()}, {"fill", "none"}, {"stroke", "currentColor"}, {"stroke-width", 1.5}});
  svg.text((left + right) / 2, y - 6, lengthText(metres),
           {{"font-size", 12}, {"text-anchor", "middle"}});
}

// --- The grid ------------------------------------------------------------------------------------

// "7.6° E"; nothing beside the number where there is neither.
std::string degreesText(double value, const char* positive, const char* negative) {
  const std::string number = decimal(std::abs(value), 5);
  if (number == "0") return "0°";
  return number + "° " + (value < 0 ? negative : positive);
}

// The multiples of a round number between two angles, a few of them.
std::vector<double> roundAngles(double least, double most) {
  constexpr double atLeast = 3;
  const double step = roundLength((most - least) / atLeast);
  std::vector<double> angles;
  if (!(step > 0)) return angles;
  const auto first = static_cast<std::int64_t>(std::ceil(least / step));
  const auto last = static_cast<std::int64_t>(std::floor(most / step));
  for (std::int64_t number = first; number <= last; ++number) {
    angles.push_back(static_cast<double>(number) * step);
  }
  return angles;
}

// Meridians and parallels, so that it can be told where on earth this is.
void drawGrid(SVG& svg, const MapView& view) {
  const CLLocationCoordinate2D northWest = view.placeAt({0, 0});
  const CLLocationCoordinate2D southEast = view.placeAt({mapWidth, view.height()});
  const SVG::Attributes look{{"class", "muted"}, {"font-size", 11}};
  SVGPath lines;
  for (const double longitude : roundAngles(northWest.longitude, southEast.longitude)) {
    const double x = view.at({0, longitude}).x;
    lines.moveTo(x, 0).lineTo(x, view.height());
    if (x + mapMargin > mapWidth) continue;
    svg.text(x + 4, view.height() - 6, degreesText(nearestTurn(longitude, 0), "E", "W"), look);
  }
  for (const double latitude : roundAngles(southEast.latitude, northWest.latitude)) {
    const double y = view.at({latitude, 0}).y;
    lines.moveTo(0, y).lineTo(mapWidth, y);
    // Where the meridians' labels are there is no room for another.
    if (y > view.height() - lineHeight) continue;
    svg.text(6, y - 4, degreesText(latitude, "N", "S"), look);
  }
  svg.element("path", {{"class", "line"}, {"d", lines.text()}, {"stroke", "currentColor"}});
}

// --- The route -----------------------------------------------------------------------------------

double middleOf(const Places& line) {
  const auto [west, east] = std::ranges::minmax(line, {}, &CLLocationCoordinate2D::longitude);
  return (west.longitude + east.longitude) / 2;
}

// The shape in longitudes that don't jump where the earth's end.
TripShape inOnePiece(TripShape shape) {
  const Places& first = shape.route.empty() ? shape.reconstructedStart : shape.route;
  const double reference = first.empty() ? 0 : first.front().longitude;
  shape.route = unwrapped(shape.route, reference);
  shape.reconstructedStart = unwrapped(shape.reconstructedStart, reference);
  double middle = shape.route.empty() ? reference : middleOf(shape.route);
  for (TripShape::Mark& mark : shape.marks) {
    mark.place.longitude = nearestTurn(mark.place.longitude, middle);
    mark.stretch = unwrapped(mark.stretch, mark.place.longitude);
    // Events without a route follow the first of them.
    if (first.empty()) middle = shape.marks.front().place.longitude;
  }
  return shape;
}

Places everyPlaceOf(const TripShape& shape) {
  Places all = shape.route;
  const auto add = [&](const Places& places) {
    all.insert(all.end(), places.begin(), places.end());
  };
  add(shape.reconstructedStart);
  for (const TripShape::Mark& mark : shape.marks) {
    all.push_back(mark.place);
    add(mark.stretch);
  }
  return all;
}

// A line without the points that nobody could tell from their neighbours.
std::string pathOf(const Places& line, const MapView& view) {
  constexpr double least = 0.5;  // pixels
  SVGPath path;
  MapView::Point last = view.at(line.front());
  path.moveTo(last.x, last.y);
  for (std::size_t index = 1; index < line.size(); ++index) {
    const MapView::Point point = view.at(line[index]);
    const bool isEnd = index + 1 == line.size();
    if (!isEnd && std::hypot(point.x - last.x, point.y - last.y) < least) continue;
    path.lineTo(point.x, point.y);
    last = point;
  }
  return path.text();
}

void drawLine(SVG& svg, const Places& line, const MapView& view, std::string_view paint,
              double width, std::string_view dashes = "none") {
  if (line.size() < 2) return;
  svg.element("path", {{"class", paint},
                       {"d", pathOf(line, view)},
                       {"fill", "none"},
                       {"stroke", "currentColor"},
                       {"stroke-width", width},
                       {"stroke-dasharray", dashes},
                       {"stroke-linecap", "round"},
                       {"stroke-linejoin", "round"}});
}

void drawEnds(SVG& svg, const TripShape& shape, const MapView& view, const Trip& trip) {
  if (shape.route.empty()) return;
  const auto time = [&](Date date) { return localTimeOfDay(date, trip.timeZone); };
  drawSign(svg, view.at(shape.route.front()), startSign(),
           joinedWords({"start", wordOf(trip.dateStarted, time)}));
  if (shape.route.size() == 1) return;
  if (isUnderWay(trip)) return drawSign(svg, view.at(shape.route.back()), latestSign(), "so far");
  drawSign(svg, view.at(shape.route.back()), endSign(),
           joinedWords({"end", wordOf(trip.dateEnded, time)}));
}

// Finds room for signs that would lie on one another: as near to their places as there is some.
class SignPlacer {
 public:
  explicit SignPlacer(double height) : height_(height) {}

  /// Where a sign that belongs to `place` goes; no other one will lie there.
  MapView::Point put(MapView::Point place) {
    constexpr int farthest = 12;  // rings
    MapView::Point free = place;
    for (int ring = 0; ring <= farthest && isTaken(free); ++ring) {
      for (int step = 0; step < 6 * ring && isTaken(free); ++step) {
        const double angle = 2 * std::numbers::pi * step / (6 * ring);
        const MapView::Point tried{place.x + ring * pitch * std::cos(angle),
                                   place.y + ring * pitch * std::sin(angle)};
        const bool isInside = tried.x > pitch / 2 && tried.x < mapWidth - pitch / 2 &&
                              tried.y > pitch / 2 && tried.y < height_ - pitch / 2;
        if (isInside) free = tried;
      }
    }
    taken_[cellOf(free)].push_back(free);
    return free;
  }

 private:
  static constexpr double pitch = 21;  // of two signs side by side
  using Cell = std::pair<std::int64_t, std::int64_t>;

  static Cell cellOf(MapView::Point point) {
    return {static_cast<std::int64_t>(std::floor(point.x / pitch)),
            static_cast<std::int64_t>(std::floor(point.y / pitch))};
  }

  [[nodiscard]] bool isTaken(MapView::Point point) const {
    const auto [column, row] = cellOf(point);
    for (std::int64_t x = column - 1; x <= column + 1; ++x) {
      for (std::int64_t y = row - 1; y <= row + 1; ++y) {
        const auto found = taken_.find({x, y});
        if (found == taken_.end()) continue;
        for (const MapView::Point& other : found->second) {
          if (std::hypot(other.x - point.x, other.y - point.y) < pitch - rim) return true;
        }
      }
    }
    return false;
  }

  const double height_;
  std::map<Cell, std::vector<MapView::Point>> taken_;
};

// From a sign that had to make room to its place.
void drawLeader(SVG& svg, MapView::Point place, MapView::Point sign, std::string_view paint) {
  if (std::hypot(sign.x - place.x, sign.y - place.y) < 1) return;
  svg.element("path", {{"class", paint},
                       {"d", SVGPath().moveTo(place.x, place.y).lineTo(sign.x, sign.y).text()},
                       {"stroke", "currentColor"},
                       {"stroke-width", 1.5}});
  svg.element("circle", {{"class", paint}, {"cx", place.x}, {"cy", place.y}, {"r", 2.5}});
}

void drawRoute(SVG& svg, const TripShape& shape, const MapView& view, const Trip& trip) {
  drawLine(svg, shape.route, view, "paper", 8);
  drawLine(svg, shape.route, view, "accent", 4);
  drawLine(svg, shape.reconstructedStart, view, "accent", 3, dotted);
  // The worst on top.
  std::vector<const TripShape::Mark*> marks;
  for (const TripShape::Mark& mark : shape.marks) marks.push_back(&mark);
  const auto severity = [](const TripShape::Mark* mark) { return mark->what.event->severity; };
  std::ranges::stable_sort(marks, {}, severity);
  for (const TripShape::Mark* mark : marks) {
    drawLine(svg, mark->stretch, view, paintOf(severity(mark)), 6);
  }
  drawEnds(svg, shape, view, trip);
  SignPlacer placer(view.height());
  if (!shape.route.empty()) {
    placer.put(view.at(shape.route.front()));
    placer.put(view.at(shape.route.back()));
  }
  // The worst has the first choice, and its sign is drawn last.
  std::vector<std::pair<const TripShape::Mark*, MapView::Point>> placed;
  std::ranges::reverse(marks);
  for (const TripShape::Mark* mark : marks) {
    const MapView::Point place = view.at(mark->place);
    placed.emplace_back(mark, placer.put(place));
    drawLeader(svg, place, placed.back().second, paintOf(severity(mark)));
  }
  std::ranges::reverse(placed);
  for (const auto& [mark, at] : placed) {
    drawSign(svg, at, {paintOf(severity(mark)), letterOf(*mark->what.type)},
             hoverTextOf(*mark, trip.timeZone));
  }
}

std::string descriptionOf(const Trip& trip, const TripShape& shape) {
  const std::size_t count = shape.marks.size();
  const std::string events = count == 1 ? "1 event" : std::to_string(count) + " events";
  const std::string route = shape.route.empty() ? "No route was recorded" : "The route";
  return joinedWords({route + ", " + events, subtitleOf(trip)});
}

}  // namespace

MapView::MapView(std::span<const CLLocationCoordinate2D> places, double width, double least,
                 double most, double margin) {
  Point low{};
  Point high{};
  double latitude = 0;
  if (!places.empty()) {
    low = high = projected(places.front());
    for (const CLLocationCoordinate2D place : places) {
      const Point point = projected(place);
      low = {std::min(low.x, point.x), std::min(low.y, point.y)};
      high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
  }
  const Point middle{(low.x + high.x) / 2, (low.y + high.y) / 2};
  latitude = std::atan(std::sinh(-middle.y));
  const double onGround = earthRadius * std::cos(latitude);  // metres per radian
  const double extentX = std::max(high.x - low.x, leastExtent / onGround);
  const double extentY = std::max(high.y - low.y, leastExtent / onGround);
  const double inner = width - 2 * margin;
  height_ = std::clamp(inner * extentY / extentX + 2 * margin, least, most);
  scale_ = std::min(inner / extentX, (height_ - 2 * margin) / extentY);
  metresPerPixel_ = onGround / scale_;
  origin_ = {middle.x - width / 2 / scale_, middle.y - height_ / 2 / scale_};
}

MapView::Point MapView::at(CLLocationCoordinate2D place) const {
  const Point point = projected(place);
  return {(point.x - origin_.x) * scale_, (point.y - origin_.y) * scale_};
}

CLLocationCoordinate2D MapView::placeAt(Point point) const {
  const double x = origin_.x + point.x / scale_;
  const double y = origin_.y + point.y / scale_;
  return {degrees(std::atan(std::sinh(-y))), degrees(x)};
}

Places unwrapped(const Places& line, double reference) {
  Places whole = line;
  for (CLLocationCoordinate2D& place : whole) {
    place.longitude = nearestTurn(place.longitude, reference);
    reference = place.longitude;
  }
  return whole;
}

double roundLength(double most) {
  const double power = std::pow(10, std::floor(std::log10(most)));
  for (const double factor : {5.0, 2.0}) {
    if (factor * power <= most) return factor * power;
  }
  return power;
}

std::string mapOf(const Trip& trip) {
  const TripShape shape = inOnePiece(shapeOf(trip));
  const Places places = everyPlaceOf(shape);
  const MapView view(places, mapWidth, lowestMap, highestMap, mapMargin);
  const MapLegend legend = legendOf(shape, isUnderWay(trip));
  const double bottom = mapTop + view.height();

  const SeverityPaints severities(shape);
  SVG svg({pageWidth, bottom + legend.height + edge}, titleOf(trip), descriptionOf(trip, shape),
          severities.paints());
  svg.text(edge, 42, titleOf(trip), {{"font-size", 20}, {"font-weight", 600}});
  svg.text(edge, 66, subtitleOf(trip), {{"class", "muted"}});
  const std::string corner = SVG::number(edge) + " " + SVG::number(mapTop);
  svg.group({{"transform", "translate(" + corner + ")"}}, [&] {
    svg.element("rect",
                {{"class", "ground"}, {"width", mapWidth}, {"height", view.height()}, {"rx", 8}});
    if (!places.empty()) drawGrid(svg, view);
    drawRoute(svg, shape, view, trip);
    if (shape.route.empty()) svg.text(16, 28, "No route was recorded.", {{"class", "muted"}});
  });
  drawLegend(svg, legend, bottom);
  if (!places.empty()) drawScale(svg, view.metresPerPixel(), bottom);
  return std::move(svg).take();
}

}  // namespace orvane::cli
