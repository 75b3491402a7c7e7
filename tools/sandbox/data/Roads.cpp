// SPDX-License-Identifier: Apache-2.0
#include "data/Roads.h"

#include <algorithm>
#include <array>
#include <limits>
#include <queue>
#include <stdexcept>
#include <string>

namespace orvane::sandbox {

namespace {

using Place = RoadMap::Place;
using Road = RoadMap::Road;

constexpr std::array<Place, 50> baselPlaces{{
    {"Bahnhof SBB", {47.5479, 7.5897}},     {"Markthalle", {47.5487, 7.5870}},
    {"Aeschenplatz", {47.5512, 7.5953}},    {"Kunstmuseum", {47.5540, 7.5945}},
    {"Heuwaage", {47.5520, 7.5864}},        {"Wettsteinplatz", {47.5597, 7.6003}},
    {"Messeplatz", {47.5636, 7.5990}},      {"Badischer Bahnhof", {47.5673, 7.6072}},
    {"Claraplatz", {47.5621, 7.5953}},      {"Spalentor", {47.5580, 7.5813}},
    {"Schuetzenhaus", {47.5538, 7.5740}},   {"Missionsstrasse", {47.5597, 7.5764}},
    {"Kannenfeldplatz", {47.5652, 7.5720}}, {"Johanniter", {47.5640, 7.5815}},
    {"Feldbergstrasse", {47.5676, 7.5893}}, {"Voltaplatz", {47.5704, 7.5745}},
    {"Dreirosen", {47.5717, 7.5872}},       {"Wiesenplatz", {47.5773, 7.5912}},
    {"Kleinhueningen", {47.5845, 7.5890}},  {"Zoll Weil", {47.5893, 7.5985}},
    {"Weil am Rhein", {47.5938, 7.6110}},   {"Eglisee", {47.5708, 7.6172}},
    {"Niederholz", {47.5748, 7.6322}},      {"Riehen", {47.5835, 7.6465}},
    {"Stetten", {47.6000, 7.6515}},         {"Loerrach", {47.6145, 7.6610}},
    {"Breite", {47.5549, 7.6120}},          {"Birsfelden", {47.5533, 7.6262}},
    {"Sankt Jakob", {47.5420, 7.6185}},     {"Hagnau", {47.5378, 7.6300}},
    {"Muttenz", {47.5262, 7.6452}},         {"Pratteln", {47.5222, 7.6925}},
    {"Augst", {47.5338, 7.7150}},           {"Frenkendorf", {47.5055, 7.7170}},
    {"Liestal", {47.4845, 7.7320}},         {"Tellplatz", {47.5437, 7.5925}},
    {"Dreispitz", {47.5372, 7.6065}},       {"Muenchenstein", {47.5190, 7.6188}},
    {"Arlesheim", {47.4950, 7.6195}},       {"Reinach", {47.4938, 7.5925}},
    {"Bottmingen", {47.5236, 7.5722}},      {"Binningen", {47.5405, 7.5703}},
    {"Dorenbach", {47.5462, 7.5742}},       {"Neubad", {47.5502, 7.5592}},
    {"Allschwil", {47.5506, 7.5372}},       {"Burgfelden", {47.5686, 7.5560}},
    {"Lysbuechel", {47.5782, 7.5702}},      {"Saint-Louis", {47.5887, 7.5602}},
    {"Hesingue", {47.5800, 7.5175}},        {"EuroAirport", {47.5992, 7.5330}},
}};

const std::vector<Road>& baselRoads() {
  static const std::vector<Road> roads{
      // The ring and the inner city.
      {"Bahnhof SBB", "Markthalle", 50, {0.03}},
      {"Bahnhof SBB", "Aeschenplatz", 50, {-0.06, -0.05}},
      {"Bahnhof SBB", "Tellplatz", 50, {0.10, 0.04}},
      {"Markthalle", "Heuwaage", 50, {0.12}},
      {"Markthalle", "Schuetzenhaus", 50, {-0.10, -0.06, 0.05}},
      {"Markthalle", "Dorenbach", 50, {0.09, 0.03}},
      {"Heuwaage", "Spalentor", 50, {0.16, 0.20, 0.10}},
      {"Heuwaage", "Aeschenplatz", 30, {-0.12, -0.14, -0.05}},
      {"Aeschenplatz", "Kunstmuseum", 50, {-0.04}},
      {"Kunstmuseum", "Wettsteinplatz", 50, {0.03, 0.0}},
      {"Wettsteinplatz", "Messeplatz", 50, {-0.05}},
      {"Wettsteinplatz", "Claraplatz", 30, {0.06}},
      {"Claraplatz", "Messeplatz", 30, {-0.04}},
      {"Claraplatz", "Feldbergstrasse", 30, {0.06, -0.05, 0.03}},
      {"Messeplatz", "Badischer Bahnhof", 50, {0.08, 0.02}},
      {"Messeplatz", "Feldbergstrasse", 50, {0.05, -0.02}},
      {"Spalentor", "Missionsstrasse", 30, {0.04}},
      {"Spalentor", "Schuetzenhaus", 50, {0.09, 0.05}},
      {"Spalentor", "Johanniter", 50, {-0.08, -0.12, -0.05}},
      {"Missionsstrasse", "Kannenfeldplatz", 50, {-0.05, 0.04}},
      {"Missionsstrasse", "Schuetzenhaus", 30, {0.06, -0.03}},
      {"Missionsstrasse", "Johanniter", 30, {0.07, 0.03}},
      {"Johanniter", "Feldbergstrasse", 50, {0.02, -0.01}},
      {"Johanniter", "Kannenfeldplatz", 50, {0.05}},
      {"Kannenfeldplatz", "Voltaplatz", 50, {-0.07, -0.03}},
      {"Kannenfeldplatz", "Burgfelden", 50, {0.03, -0.02}},
      {"Voltaplatz", "Dreirosen", 50, {0.03, 0.01}},
      {"Voltaplatz", "Lysbuechel", 50, {0.06, 0.05}},
      {"Dreirosen", "Feldbergstrasse", 50, {-0.05}},
      {"Dreirosen", "Wiesenplatz", 50, {-0.05, 0.04}},
      {"Wiesenplatz", "Kleinhueningen", 50, {-0.06, -0.07}},
      {"Wiesenplatz", "Badischer Bahnhof", 50, {0.10, 0.07, 0.03}},
      {"Schuetzenhaus", "Neubad", 50, {0.04, 0.06}},
      {"Schuetzenhaus", "Dorenbach", 50, {-0.08, -0.03}},
      {"Tellplatz", "Dreispitz", 50, {-0.03, 0.02}},
      {"Tellplatz", "Dorenbach", 30, {0.10, 0.08, 0.03}},
      {"Aeschenplatz", "Breite", 50, {0.10, 0.09, 0.02}},
      {"Aeschenplatz", "Sankt Jakob", 50, {0.05, 0.02, -0.03}},
      // North and east of the Rhine.
      {"Kleinhueningen", "Zoll Weil", 50, {0.08, 0.03}},
      {"Zoll Weil", "Weil am Rhein", 50, {-0.06, 0.04, 0.05}},
      {"Weil am Rhein", "Stetten", 60, {0.09, 0.05, -0.07, -0.05, 0.02}},
      {"Badischer Bahnhof", "Eglisee", 50, {0.04, 0.02}},
      {"Eglisee", "Niederholz", 50, {-0.03, 0.04, 0.02}},
      {"Niederholz", "Riehen", 50, {0.05, 0.02, -0.03}},
      {"Riehen", "Stetten", 50, {-0.07, -0.03, 0.05}},
      {"Stetten", "Loerrach", 50, {0.05, 0.06, -0.03}},
      {"Riehen", "Weil am Rhein", 50, {0.10, -0.06, -0.09, 0.03}},
      // The motorway and its continuation along the valley.
      {"Dreirosen", "Badischer Bahnhof", 60, {0.14, 0.15, 0.06}},
      {"Badischer Bahnhof", "Breite", 80, {-0.14, -0.17, -0.08}},
      {"Breite", "Hagnau", 80, {-0.09, -0.06, 0.06, 0.08}},
      {"Hagnau", "Augst", 120, {-0.02, -0.06, -0.09, -0.08, -0.04, 0.02, 0.03}},
      {"Augst", "Liestal", 100, {0.05, 0.10, 0.07, -0.02, -0.03}},
      {"Voltaplatz", "Hesingue", 80, {0.08, 0.05, -0.06, -0.10, -0.03}},
      {"Hesingue", "EuroAirport", 80, {0.10, 0.06}},
      // Suburbs.
      {"Breite", "Birsfelden", 50, {-0.04, 0.03}},
      {"Birsfelden", "Hagnau", 50, {0.07, -0.04}},
      {"Birsfelden", "Pratteln", 60, {-0.05, -0.08, -0.03, 0.04, 0.05}},
      {"Sankt Jakob", "Hagnau", 60, {0.05, 0.02}},
      {"Sankt Jakob", "Dreispitz", 50, {-0.07, -0.02}},
      {"Hagnau", "Muttenz", 50, {0.08, 0.03, -0.04}},
      {"Muttenz", "Pratteln", 60, {-0.04, 0.05, 0.06, -0.03}},
      {"Pratteln", "Augst", 50, {0.06, 0.08}},
      {"Pratteln", "Frenkendorf", 80, {-0.05, 0.06, 0.04}},
      {"Frenkendorf", "Liestal", 60, {0.06, 0.05, -0.04}},
      {"Dreispitz", "Muenchenstein", 50, {0.04, 0.06, -0.03}},
      {"Muenchenstein", "Arlesheim", 50, {-0.05, 0.03, 0.06}},
      {"Arlesheim", "Reinach", 50, {-0.10, -0.04, 0.05}},
      {"Dreispitz", "Reinach", 80, {0.05, 0.08, 0.03, -0.05, -0.04}},
      {"Reinach", "Bottmingen", 60, {0.08, 0.10, -0.05, -0.07, 0.02}},
      {"Bottmingen", "Binningen", 50, {0.06, -0.03, 0.04}},
      {"Binningen", "Dorenbach", 50, {0.05, -0.04}},
      {"Binningen", "Neubad", 50, {0.12, 0.08, -0.05}},
      {"Neubad", "Allschwil", 50, {0.04, 0.05, -0.02}},
      {"Allschwil", "Burgfelden", 50, {0.09, -0.05, -0.08, 0.03}},
      {"Burgfelden", "Hesingue", 80, {-0.06, 0.05, 0.07}},
      {"Burgfelden", "Saint-Louis", 50, {0.06, -0.05, -0.03}},
      {"Lysbuechel", "Saint-Louis", 50, {0.04, 0.03, -0.03}},
      {"Saint-Louis", "Hesingue", 60, {-0.08, -0.04, 0.05}},
      {"Saint-Louis", "EuroAirport", 70, {-0.07, 0.05, 0.06}},
  };
  return roads;
}

constexpr std::array<Place, 13> mumbaiPlaces{{
    {"Colaba", {18.9150, 72.8258}},
    {"Nariman Point", {18.9258, 72.8231}},
    {"Churchgate", {18.9345, 72.8245}},
    {"CSMT", {18.9402, 72.8353}},
    {"Chowpatty", {18.9548, 72.8140}},
    {"Malabar Hill", {18.9555, 72.7990}},
    {"Haji Ali", {18.9815, 72.8105}},
    {"Worli", {19.0095, 72.8155}},
    {"Bandra", {19.0440, 72.8205}},
    {"Dadar", {19.0178, 72.8440}},
    {"Byculla", {18.9765, 72.8330}},
    {"BKC", {19.0665, 72.8685}},
    {"Airport", {19.0897, 72.8655}},
}};

const std::vector<Road>& mumbaiRoads() {
  static const std::vector<Road> roads{
      {"Colaba", "Nariman Point", 40, {-0.10, -0.08, 0.03}},
      {"Nariman Point", "Churchgate", 60, {0.04, 0.03}},
      // Marine Drive, round the bay.
      {"Churchgate", "Chowpatty", 70, {-0.06, -0.12, -0.16, -0.16, -0.11}},
      {"Churchgate", "CSMT", 40, {0.06, -0.04}},
      {"Colaba", "CSMT", 40, {-0.07, -0.05, 0.04}},
      {"Chowpatty", "Malabar Hill", 40, {0.22, 0.30, 0.20}},
      {"Chowpatty", "Haji Ali", 50, {-0.05, 0.07, 0.08}},
      {"Malabar Hill", "Haji Ali", 40, {0.05, -0.06, -0.08}},
      {"CSMT", "Byculla", 50, {0.04, -0.05, 0.03}},
      {"Byculla", "Dadar", 50, {-0.04, 0.05, 0.02}},
      {"Haji Ali", "Worli", 60, {0.07, 0.09, 0.03}},
      {"Haji Ali", "Byculla", 50, {0.05, -0.04}},
      // The sea link.
      {"Worli", "Bandra", 80, {0.10, 0.17, 0.19, 0.14, 0.04}},
      {"Worli", "Dadar", 50, {-0.05, 0.04}},
      {"Dadar", "BKC", 60, {0.06, 0.04, -0.05}},
      {"Dadar", "Bandra", 50, {0.05, -0.03}},
      {"Bandra", "BKC", 60, {-0.06, -0.08, 0.04}},
      {"Bandra", "Airport", 60, {0.05, 0.07, -0.04, -0.05}},
      {"BKC", "Airport", 60, {-0.08, 0.05}},
  };
  return roads;
}

constexpr std::array<Position, 16> railwayLine{{{47.5470, 7.5910},
                                                {47.5432, 7.6080},
                                                {47.5350, 7.6330},
                                                {47.5248, 7.6600},
                                                {47.5213, 7.6905},
                                                {47.5050, 7.7160},
                                                {47.4846, 7.7310},
                                                {47.4700, 7.7550},
                                                {47.4640, 7.8030},
                                                {47.4560, 7.8260},
                                                {47.4380, 7.8420},
                                                {47.4120, 7.8640},
                                                {47.3910, 7.8800},
                                                {47.3740, 7.8960},
                                                {47.3600, 7.9050},
                                                {47.3522, 7.9077}}};

constexpr std::array<Position, 16> rhineLine{{{47.5850, 7.5870},
                                              {47.5790, 7.5845},
                                              {47.5730, 7.5840},
                                              {47.5668, 7.5850},
                                              {47.5625, 7.5882},
                                              {47.5590, 7.5930},
                                              {47.5577, 7.5985},
                                              {47.5590, 7.6060},
                                              {47.5605, 7.6150},
                                              {47.5595, 7.6240},
                                              {47.5560, 7.6350},
                                              {47.5500, 7.6480},
                                              {47.5440, 7.6640},
                                              {47.5400, 7.6850},
                                              {47.5390, 7.7050},
                                              {47.5410, 7.7230}}};

constexpr std::array<Position, 9> flightLine{{{47.5990, 7.5290},
                                              {47.6350, 7.5080},
                                              {47.6900, 7.5300},
                                              {48.4000, 8.3500},
                                              {49.4500, 9.7000},
                                              {50.6000, 11.1000},
                                              {51.7000, 12.5000},
                                              {52.3000, 13.2500},
                                              {52.3620, 13.5030}}};

constexpr std::size_t nowhere = std::numeric_limits<std::size_t>::max();

std::vector<Point> shapeOf(Point from, Point to, std::span<const double> bends) {
  const Point along = to - from;
  const Point left{-along.y, along.x};
  std::vector<Point> points{from};
  const auto pieces = static_cast<double>(bends.size() + 1);
  double piece = 0;
  for (const double bend : bends) {
    piece += 1;
    points.push_back(from + along * (piece / pieces) + left * bend);
  }
  points.push_back(to);
  return curveThrough(points, Route::step);
}

double lengthOf(std::span<const Point> line) {
  double total = 0;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) total += length(line[i + 1] - line[i]);
  return total;
}

}  // namespace

RoadMap::RoadMap(std::span<const Place> places, std::span<const Road> roads)
    : projection_(places.front().position), edges_(places.size()) {
  for (const Place& place : places) {
    names_.emplace_back(place.name);
    points_.push_back(projection_.toMap(place.position));
  }
  for (const Road& road : roads) {
    const std::size_t from = indexOf(road.from);
    const std::size_t to = indexOf(road.to);
    std::vector<Point> line = shapeOf(points_[from], points_[to], road.bends);
    const double seconds = lengthOf(line) / (road.speedLimit / 3.6) + 12;  // and the junction
    edges_[from].push_back({to, seconds, road.speedLimit, line});
    std::ranges::reverse(line);
    edges_[to].push_back({from, seconds, road.speedLimit, std::move(line)});
  }
}

const RoadMap& RoadMap::basel() {
  static const RoadMap map{baselPlaces, baselRoads()};
  return map;
}

const RoadMap& RoadMap::mumbai() {
  static const RoadMap map{mumbaiPlaces, mumbaiRoads()};
  return map;
}

std::size_t RoadMap::indexOf(std::string_view name) const {
  const auto found = std::ranges::find(names_, name);
  if (found == names_.end()) throw std::out_of_range("no place " + std::string{name});
  return static_cast<std::size_t>(found - names_.begin());
}

std::vector<const RoadMap::Edge*> RoadMap::quickestPath(std::size_t from, std::size_t to) const {
  std::vector<double> best(edges_.size(), std::numeric_limits<double>::infinity());
  std::vector<std::pair<std::size_t, const Edge*>> arrivedBy(edges_.size(), {nowhere, nullptr});
  using Stop = std::pair<double, std::size_t>;
  std::priority_queue<Stop, std::vector<Stop>, std::greater<>> open;
  best[from] = 0;
  open.emplace(0, from);
  while (!open.empty()) {
    const auto [seconds, place] = open.top();
    open.pop();
    if (place == to) break;
    if (seconds > best[place]) continue;
    for (const Edge& edge : edges_[place]) {
      if (seconds + edge.seconds >= best[edge.to]) continue;
      best[edge.to] = seconds + edge.seconds;
      arrivedBy[edge.to] = {place, &edge};
      open.emplace(best[edge.to], edge.to);
    }
  }
  std::vector<const Edge*> path;
  for (std::size_t place = to; place != from; place = arrivedBy[place].first) {
    if (arrivedBy[place].second == nullptr) throw std::out_of_range("no road leads there");
    path.push_back(arrivedBy[place].second);
  }
  std::ranges::reverse(path);
  return path;
}

Route RoadMap::route(std::string_view from, std::string_view to) const {
  constexpr int cornerReach = 3;  // points: corners are cut within 15 metres
  std::vector<Point> line;
  std::vector<std::pair<double, double>> limitUntil;  // metres from the start, km/h
  double metres = 0;
  for (const Edge* edge : quickestPath(indexOf(from), indexOf(to))) {
    line.insert(line.end(), edge->line.begin() + (line.empty() ? 0 : 1), edge->line.end());
    metres += lengthOf(edge->line);
    limitUntil.emplace_back(metres, edge->speedLimit);
  }
  Route route;
  route.line = smooth(resample(line, Route::step), cornerReach);
  std::size_t edge = 0;
  for (std::size_t i = 0; i < route.line.size(); ++i) {
    const double at = static_cast<double>(i) * Route::step;
    if (at > limitUntil[edge].first && edge + 1 < limitUntil.size()) {
      ++edge;
      route.junctions.push_back(i);
    }
    route.speedLimit.push_back(limitUntil[edge].second);
  }
  return route;
}

std::vector<RoadMap::Line> RoadMap::lines() const {
  constexpr std::size_t every = 4;  // points: about 20 metres, closer than a screen shows
  std::vector<Line> lines;
  for (std::size_t from = 0; from < edges_.size(); ++from) {
    for (const Edge& edge : edges_[from]) {
      if (edge.to < from) continue;  // the way back
      Line line{edge.speedLimit, {}};
      for (std::size_t i = 0; i + 1 < edge.line.size(); i += every) {
        line.points.push_back(projection_.toEarth(edge.line[i]));
      }
      line.points.push_back(projection_.toEarth(edge.line.back()));
      lines.push_back(std::move(line));
    }
  }
  return lines;
}

Route RoadMap::track(std::span<const Position> line, double speedLimit) const {
  std::vector<Point> points;
  for (const Position& position : line) points.push_back(projection_.toMap(position));
  Route route;
  route.line = resample(curveThrough(points, 20), Route::step);
  route.speedLimit.assign(route.line.size(), speedLimit);
  return route;
}

std::span<const Position> railway() { return railwayLine; }
std::span<const Position> rhine() { return rhineLine; }
std::span<const Position> flightToBerlin() { return flightLine; }

}  // namespace orvane::sandbox
