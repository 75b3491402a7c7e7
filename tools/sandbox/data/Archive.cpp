// SPDX-License-Identifier: Apache-2.0
#include "data/Archive.h"

#include <zlib.h>

#include <cstdint>

namespace orvane::sandbox {

namespace {

// The records of the ZIP file format (APPNOTE 6.3, sections 4.3.7, 4.3.12 and 4.3.16).
constexpr std::uint32_t localHeader = 0x04034B50;
constexpr std::uint32_t centralHeader = 0x02014B50;
constexpr std::uint32_t endOfCentralDirectory = 0x06054B50;
constexpr std::uint16_t version = 20;
constexpr std::uint16_t utf8Names = 0x0800;
constexpr std::uint16_t stored = 0;
constexpr std::uint16_t midnight = 0;
constexpr std::uint16_t newYear2024 = ((2024 - 1980) << 9) | (1 << 5) | 1;

class Bytes {
 public:
  Bytes& put16(std::uint32_t value) {
    text_.push_back(static_cast<char>(value & 0xFFU));
    text_.push_back(static_cast<char>((value >> 8U) & 0xFFU));
    return *this;
  }
  Bytes& put32(std::uint32_t value) { return put16(value & 0xFFFFU).put16(value >> 16U); }
  Bytes& put(std::string_view text) {
    text_.append(text);
    return *this;
  }
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(text_.size()); }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
};

/// What the local and the central header share.
void putCommon(Bytes& bytes, const ArchiveEntry& entry) {
  const auto size = static_cast<std::uint32_t>(entry.content.size());
  const auto checksum = static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(entry.content.data()), size));
  bytes.put16(version).put16(utf8Names).put16(stored).put16(midnight).put16(newYear2024);
  bytes.put32(checksum).put32(size).put32(size);
  bytes.put16(static_cast<std::uint32_t>(entry.name.size())).put16(0);
}

}  // namespace

std::string makeArchive(std::span<const ArchiveEntry> entries) {
  Bytes archive;
  Bytes directory;
  for (const ArchiveEntry& entry : entries) {
    const std::uint32_t offset = archive.size();
    archive.put32(localHeader);
    putCommon(archive, entry);
    archive.put(entry.name).put(entry.content);

    directory.put32(centralHeader).put16(version);
    putCommon(directory, entry);
    directory.put16(0).put16(0).put16(0).put32(0).put32(offset).put(entry.name);
  }
  const auto count = static_cast<std::uint32_t>(entries.size());
  const std::uint32_t start = archive.size();
  archive.put(directory.text()).put32(endOfCentralDirectory).put16(0).put16(0);
  archive.put16(count).put16(count).put32(directory.size()).put32(start).put16(0);
  return archive.text();
}

}  // namespace orvane::sandbox
