// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Record.h>

#include <bit>

namespace orvane {
namespace {

// The row of a key, looked for from the row after the last hit on: a backend sends members in a
// steady order, so that most are found at once.
std::size_t findRow(std::span<const KeyRow> rows, std::string_view key, std::size_t expected) {
  for (std::size_t row = expected; row < rows.size(); ++row) {
    if (detail::isSameKey(rows[row].key, key)) return row;
  }
  for (std::size_t row = 0; row < expected; ++row) {
    if (detail::isSameKey(rows[row].key, key)) return row;
  }
  return rows.size();
}

}  // namespace

bool decodeMembers(ObjectWalk walk, void* record, const KeyTable& table, Decoder& decoder) {
  const std::span<const KeyRow> rows = table.rows;
  for (auto& [member, end, expected, seen] = walk; member != end; ++member) {
    const std::size_t row = findRow(rows, member.key(), expected);
    if (row == rows.size()) continue;
    expected = row + 1;
    seen |= std::uint64_t{1} << row;
    if (!rows[row].decode(member.value(), record, decoder) && !appearsAgain(member, end)) {
      return decoder.failedAt(rows[row].key);
    }
  }
  if (const std::uint64_t missing = table.requiredRows & ~walk.seen) {
    return decoder.keyNotFound(rows[static_cast<std::size_t>(std::countr_zero(missing))].key);
  }
  return true;
}

bool decodeObject(json::Element element, void* record, const KeyTable& table, Decoder& decoder) {
  json::Object object;
  if (element.get(object) != simdjson::SUCCESS) return decoder.typeMismatch("an object", element);
  const bool isRead = decoder.enterRecord() &&
                      decodeMembers({object.begin(), object.end()}, record, table, decoder);
  decoder.leaveRecord();
  return isRead;
}

void encodeObject(const void* record, std::span<const KeyRow> rows, json::Writer& writer) {
  writer.beginObject();
  for (const KeyRow& row : rows) row.encode(record, row.key, writer);
  writer.endObject();
}

}  // namespace orvane
