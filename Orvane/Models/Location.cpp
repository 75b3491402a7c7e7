// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Location.h>
#include <Orvane/Platform/Fatal.h>

namespace orvane {
namespace {

constexpr KeyRow locationKeys[] = {
    required<&Location::latitude>("lat"),
    required<&Location::longitude>("lng"),
    indispensable<&Location::date, Milliseconds>("utcDateTime"),
};

}  // namespace

CLLocation Location::location() const {
  precondition(latitude && longitude && date, "a location lacks its coordinates or its date");
  return {.coordinate = {*latitude, *longitude}, .timestamp = *date};
}

KeyTables keysOf(RecordTag<Location>) { return locationKeys; }

template struct RecordCoding<Location>;
template struct RecordCoding<std::vector<Location>>;

bool Location::operator==(const Location&) const noexcept = default;

}  // namespace orvane
