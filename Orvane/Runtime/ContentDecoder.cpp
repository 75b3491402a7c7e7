// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/ContentDecoder.h>

#include <new>

namespace orvane {
namespace {

// The largest window, and: find out which of the two formats it is.
constexpr int anyFormat = 15 + 32;

}  // namespace

std::unique_ptr<ContentDecoder> ContentDecoder::make(std::string_view coding) {
  if (coding != "gzip" && coding != "x-gzip" && coding != "deflate") return nullptr;
  std::unique_ptr<ContentDecoder> decoder(new ContentDecoder);
  if (inflateInit2(&decoder->stream_, anyFormat) != Z_OK) throw std::bad_alloc();
  return decoder;
}

ContentDecoder::~ContentDecoder() { inflateEnd(&stream_); }

void ContentDecoder::setInput(std::string_view bytes) noexcept {
  // zlib only reads it.
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream_.avail_in = static_cast<uInt>(bytes.size());
}

std::ptrdiff_t ContentDecoder::next(char* piece, std::size_t size) noexcept {
  // RFC 1952, section 2.2: texts may follow one another.
  if (isWhole_ && inflateReset(&stream_) != Z_OK) return -1;
  isWhole_ = false;
  stream_.next_out = reinterpret_cast<Bytef*>(piece);
  stream_.avail_out = static_cast<uInt>(size);
  const int code = inflate(&stream_, Z_NO_FLUSH);
  if (code != Z_OK && code != Z_STREAM_END && code != Z_BUF_ERROR) return -1;
  isWhole_ = code == Z_STREAM_END;
  isFull_ = stream_.avail_out == 0 && !isWhole_;
  return static_cast<std::ptrdiff_t>(size - stream_.avail_out);
}

}  // namespace orvane
