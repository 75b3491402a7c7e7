// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Record.h>

#include <algorithm>
#include <cstring>

namespace orvane {
namespace {

std::uint64_t eightBytes(const char* position) noexcept {
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, position, sizeof bytes);
  return bytes;
}

// What == does, in place: for texts as short as keys the call would cost more than the comparison.
bool isSame(std::string_view left, std::string_view right) noexcept {
  const std::size_t size = left.size();
  if (size != right.size()) return false;
  if (size < 8) return std::equal(left.begin(), left.end(), right.begin());
  for (std::size_t at = 0; at + 8 < size; at += 8) {
    if (eightBytes(left.data() + at) != eightBytes(right.data() + at)) return false;
  }
  return eightBytes(left.data() + size - 8) == eightBytes(right.data() + size - 8);
}

// The row of a key, looked for from the row after the last hit on: a backend sends members in a
// steady order, so that most are found at once.
std::size_t findRow(std::span<const KeyRow> rows, std::string_view key, std::size_t expected) {
  for (std::size_t row = expected; row < rows.size(); ++row) {
    if (isSame(rows[row].key, key)) return row;
  }
  for (std::size_t row = 0; row < expected; ++row) {
    if (isSame(rows[row].key, key)) return row;
  }
  return rows.size();
}

}  // namespace

bool decodeObject(json::Element element, void* record, std::span<const KeyRow> rows,
                  Decoder& decoder) {
  json::Object object;
  if (element.get(object) != simdjson::SUCCESS) return decoder.typeMismatch("an object", element);

  std::uint64_t seen = 0;
  std::size_t expected = 0;
  for (auto member = object.begin(); member != object.end(); ++member) {
    const std::size_t row = findRow(rows, member.key(), expected);
    if (row == rows.size()) continue;
    expected = row + 1;
    seen |= std::uint64_t{1} << row;
    if (!rows[row].decode(member.value(), record, decoder) && !appearsAgain(object, member)) {
      return decoder.failedAt(rows[row].key);
    }
  }
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (rows[row].isRequired && (seen >> row & 1U) == 0) return decoder.keyNotFound(rows[row].key);
  }
  return true;
}

void encodeObject(const void* record, std::span<const KeyRow> rows, json::Writer& writer) {
  writer.beginObject();
  for (const KeyRow& row : rows) row.encode(record, row.key, writer);
  writer.endObject();
}

}  // namespace orvane
