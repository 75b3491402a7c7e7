// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Key tables: the members of a record, each with its key, its conversion and whether it must be
// there.
#pragma once

#include <Orvane/Coding/Values.h>
#include <Orvane/Platform/Date.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace orvane {

/// One row of a key table. The functions take the record without its type, so that the walk over an
/// object is compiled once for all records.
struct KeyRow {
  std::string_view key;
  bool isRequired;
  bool (*decode)(json::Element element, void* record, Decoder& decoder);
  void (*encode)(const void* record, std::string_view key, json::Writer& writer);
};

/// The rows by which a record is read.
struct KeyTable {
  std::span<const KeyRow> rows;
  /// A bit for each row, from the lowest on: whether it must be there.
  std::uint64_t requiredRows = 0;

  template <std::size_t count>
  // NOLINTNEXTLINE(google-explicit-constructor)
  constexpr KeyTable(const KeyRow (&keys)[count]) : rows(keys) {
    static_assert(count <= 64, "the walk over an object notes the rows it has met in 64 bits");
    for (std::size_t row = 0; row < count; ++row) {
      requiredRows |= std::uint64_t{keys[row].isRequired} << row;
    }
  }
};

/// How far the members of an object have been read.
struct ObjectWalk {
  json::Object::iterator member;
  json::Object::iterator end;
  std::size_t expected = 0;  ///< The row behind the last one met.
  std::uint64_t seen = 0;    ///< A bit for each row that has been met.
};

/// Reads the members of an object that are left into `record`. Of duplicate members the last one
/// counts.
bool decodeMembers(ObjectWalk walk, void* record, const KeyTable& table, Decoder& decoder);

/// Reads an object into `record`.
bool decodeObject(json::Element element, void* record, const KeyTable& table, Decoder& decoder);

namespace detail {

template <class Word>
Word wordAt(const char* position) noexcept {
  Word word = 0;
  std::memcpy(&word, position, sizeof word);
  return word;
}

// The last word may overlap the one before it.
template <class Word>
bool isSameInWords(const char* left, const char* right, std::size_t size) noexcept {
  for (std::size_t at = 0; at + sizeof(Word) < size; at += sizeof(Word)) {
    if (wordAt<Word>(left + at) != wordAt<Word>(right + at)) return false;
  }
  const std::size_t last = size - sizeof(Word);
  return wordAt<Word>(left + last) == wordAt<Word>(right + last);
}

// Whether two keys are the same: what == says, in place, since for texts as short as keys a call
// would cost more than the comparison.
inline bool isSameKey(std::string_view left, std::string_view right) noexcept {
  const std::size_t size = left.size();
  if (size != right.size()) return false;
  if (size >= 8) return isSameInWords<std::uint64_t>(left.data(), right.data(), size);
  if (size >= 4) return isSameInWords<std::uint32_t>(left.data(), right.data(), size);
  return std::equal(left.begin(), left.end(), right.begin());
}

// Reads the member that the walk has come to if it is the one of the row, and goes on behind it.
// False where the member could not be read.
template <const auto& rows, std::size_t row>
bool decodeIfNext(ObjectWalk& walk, void* record, Decoder& decoder) {
  if (walk.member == walk.end || !isSameKey(rows[row].key, walk.member.key())) return true;
  if (!rows[row].decode(walk.member.value(), record, decoder)) return false;
  ++walk.member;
  walk.expected = row + 1;
  walk.seen |= std::uint64_t{1} << row;
  return true;
}

template <const auto& rows, std::size_t... row>
void decodeWhileInOrder(ObjectWalk& walk, void* record, Decoder& decoder,
                        std::index_sequence<row...> /*all*/) {
  (void)(decodeIfNext<rows, row>(walk, record, decoder) && ...);
}

}  // namespace detail

/// What `decodeObject` does with the table of `rows`, in straight-line code as long as the members
/// stand in their order: larger and faster, for a record of which a page holds thousands.
template <const auto& rows>
[[gnu::flatten]] bool decodeInOrder(json::Element element, void* record, Decoder& decoder) {
  json::Object object;
  if (element.get(object) != simdjson::SUCCESS) return decoder.typeMismatch("an object", element);
  ObjectWalk walk{object.begin(), object.end()};
  detail::decodeWhileInOrder<rows>(walk, record, decoder,
                                   std::make_index_sequence<std::size(rows)>());
  constexpr KeyTable table = rows;
  if (walk.member == walk.end && (table.requiredRows & ~walk.seen) == 0) return true;
  return decodeMembers(walk, record, table, decoder);
}

/// Writes an object with the members of `rows`, in their order.
void encodeObject(const void* record, std::span<const KeyRow> rows, json::Writer& writer);

/// What `encodeObject` does, in straight-line code (see `decodeInOrder`).
template <const auto& rows>
[[gnu::flatten]] void encodeInOrder(const void* record, json::Writer& writer) {
  writer.beginObject();
  [&]<std::size_t... row>(std::index_sequence<row...> /*all*/) {
    (rows[row].encode(record, rows[row].key, writer), ...);
  }
  (std::make_index_sequence<std::size(rows)>());
  writer.endObject();
}

/// The tables of a record: one for both directions where they mirror each other, or one for each.
struct KeyTables {
  KeyTable decoding;
  std::span<const KeyRow> encoding;

  template <std::size_t count>
  constexpr KeyTables(const KeyRow (&both)[count])  // NOLINT(google-explicit-constructor)
      : KeyTables(both, both) {}
  template <std::size_t first, std::size_t second>
  constexpr KeyTables(const KeyRow (&whenDecoding)[first], const KeyRow (&whenEncoding)[second])
      : decoding(whenDecoding), encoding(whenEncoding) {}
};

/// Names a record when its tables are asked for: `keysOf(RecordTag<User>{})`.
template <class T>
struct RecordTag {};

/// A type whose tables are declared (see Models/Coders.h).
template <class T>
concept Record = requires {
  keysOf(RecordTag<T>{});
};

template <Record T>
bool decodeValue(json::Element element, T& record, Decoder& decoder) {
  return decodeObject(element, &record, keysOf(RecordTag<T>{}).decoding, decoder);
}

template <Record T>
void encodeValue(const T& record, json::Writer& writer) {
  encodeObject(&record, keysOf(RecordTag<T>{}).encoding, writer);
}

/// The conversion of a member that stands on the wire as it is.
struct AsIs {};

/// What a conversion looks like: the type on the wire, and the two directions. Either direction may
/// answer an optional; absent then leaves the member out. With `isLenient` a value of the wrong
/// type leaves the member absent instead of failing the record.
template <class C>
concept Conversion = requires {
  typename C::Wire;
};

/// A point in time as an integer count of milliseconds since 1970-01-01 UTC.
struct Milliseconds {
  using Wire = std::int64_t;
  static Date fromWire(Wire milliseconds) { return dateFromMilliseconds(milliseconds); }
  static std::optional<Wire> toWire(Date date) { return millisecondsSince1970(date); }
  static constexpr std::string_view fault =
      "a point in time does not fit in 64 bits of milliseconds";
};

namespace detail {

template <auto member>
struct MemberTraits;
template <class Record_, class Member_, Member_ Record_::*member>
struct MemberTraits<member> {
  using Record = Record_;
  using Member = Member_;
};

template <class T>
constexpr bool isOptionalLike = false;
template <class T>
constexpr bool isOptionalLike<std::optional<T>> = true;
template <class T>
constexpr bool isOptionalLike<Indirect<T>> = true;

template <class C, class Member>
bool decodeConverted(json::Element element, Member& member, Decoder& decoder) {
  typename C::Wire wire{};
  if constexpr (isOptionalLike<Member>) {
    member.reset();
    if (element.is_null()) return true;
  }
  if (!decodeValue(element, wire, decoder)) {
    if constexpr (requires { C::isLenient; }) return C::isLenient;
    return false;
  }
  if constexpr (requires { C::fromWire(wire, decoder); }) {
    member = C::fromWire(wire, decoder);
  } else {
    member = C::fromWire(wire);
  }
  return true;
}

template <auto member, class C>
bool decodeMember(json::Element element, void* record, Decoder& decoder) {
  using Traits = MemberTraits<member>;
  auto& target = static_cast<typename Traits::Record*>(record)->*member;
  if constexpr (Conversion<C>) {
    return decodeConverted<C>(element, target, decoder);
  } else {
    // An earlier duplicate may have filled it.
    if constexpr (Record<typename Traits::Member>) target = {};
    return decodeValue(element, target, decoder);
  }
}

template <auto member, class C>
bool decodeRequired(json::Element element, void* record, Decoder& decoder) {
  if (element.is_null()) return decoder.valueNotFound("a value");
  return decodeMember<member, C>(element, record, decoder);
}

template <class C, class Value>
void encodeKeyed(const Value& value, std::string_view key, json::Writer& writer) {
  if constexpr (Conversion<C>) {
    const auto wire = C::toWire(value);
    if constexpr (isOptionalLike<std::remove_const_t<decltype(wire)>>) {
      if (!wire) {
        if constexpr (requires { C::fault; }) writer.fault(C::fault);
        return;
      }
      writer.plainKey(key);
      encodeValue(*wire, writer);
    } else {
      writer.plainKey(key);
      encodeValue(wire, writer);
    }
  } else {
    writer.plainKey(key);
    encodeValue(value, writer);
  }
}

enum class WhenAbsent { isLeftOut, isNull, stopsTheProcess };

template <auto member, class C, WhenAbsent whenAbsent>
void encodeMember(const void* record, std::string_view key, json::Writer& writer) {
  using Traits = MemberTraits<member>;
  const auto& source = static_cast<const typename Traits::Record*>(record)->*member;
  if constexpr (isOptionalLike<typename Traits::Member>) {
    if (source) return encodeKeyed<C>(*source, key, writer);
    if constexpr (whenAbsent == WhenAbsent::isNull) {
      writer.plainKey(key);
      writer.null();
    }
    if constexpr (whenAbsent == WhenAbsent::stopsTheProcess) {
      writer.fault("a record without \"" + std::string(key) + "\" can't be encoded");
    }
  } else {
    encodeKeyed<C>(source, key, writer);
  }
}

// The key of a row. One that would have to be escaped does not compile.
constexpr std::string_view tableKey(std::string_view name) {
  if (!json::isPlain(name)) std::abort();
  return name;
}

}  // namespace detail

/// An optional member: missing or null leaves it absent; absent it is not written.
template <auto member, class C = AsIs>
constexpr KeyRow key(std::string_view name) {
  static_assert(detail::isOptionalLike<typename detail::MemberTraits<member>::Member>);
  return {detail::tableKey(name), false, detail::decodeMember<member, C>,
          detail::encodeMember<member, C, detail::WhenAbsent::isLeftOut>};
}

/// A member that must be there when decoding and is always written, as null when it is absent.
template <auto member, class C = AsIs>
constexpr KeyRow required(std::string_view name) {
  return {detail::tableKey(name), true, detail::decodeRequired<member, C>,
          detail::encodeMember<member, C, detail::WhenAbsent::isNull>};
}

/// A member that must be there in both directions: writing a record without it is a programming
/// fault that stops the process.
template <auto member, class C = AsIs>
constexpr KeyRow indispensable(std::string_view name) {
  return {detail::tableKey(name), true, detail::decodeRequired<member, C>,
          detail::encodeMember<member, C, detail::WhenAbsent::stopsTheProcess>};
}

}  // namespace orvane
