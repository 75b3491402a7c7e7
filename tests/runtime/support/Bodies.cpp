// SPDX-License-Identifier: Apache-2.0
#include "tests/runtime/support/Bodies.h"

#include <zlib.h>

#include <array>
#include <charconv>

namespace orvane {

std::string gzipped(std::string_view text) {
  z_stream stream{};
  constexpr int gzipWindow = 15 + 16;
  deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, gzipWindow, 8, Z_DEFAULT_STRATEGY);
  std::string packed(deflateBound(&stream, text.size()), '\0');
  std::string input(text);
  stream.next_in = reinterpret_cast<Bytef*>(input.data());
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::string chunk(std::string_view bytes) {
  std::array<char, 16> size{};
  const auto [end, failure] =
      std::to_chars(size.data(), size.data() + size.size(), bytes.size(), 16);
  return std::string(size.data(), end).append("\r\n").append(bytes).append("\r\n");
}

}  // namespace orvane
