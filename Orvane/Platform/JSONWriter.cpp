// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/JSONWriter.h>
#include <Orvane/Platform/Text.h>

#include <array>
#include <charconv>
#include <cmath>

namespace orvane::json {

void Writer::separate() {
  if (!text_.empty() && text_.back() != '{' && text_.back() != '[' && text_.back() != ':') {
    text_ += ',';
  }
}

void Writer::open(char bracket) {
  separate();
  text_ += bracket;
}

void Writer::key(std::string_view name) {
  separate();
  quoted(name);
  text_ += ':';
}

void Writer::value(std::string_view text) {
  separate();
  if (!isUTF8(text)) failure_ = "a text is not UTF-8";
  quoted(text);
}

void Writer::value(double number) {
  separate();
  if (!std::isfinite(number)) {
    failure_ = "a number is not finite";
    number = 0;
  }
  // A whole number beyond 64 bits has an exponent, and a negative zero a fraction: readers that
  // tell integers from other numbers, our own included, would refuse the one and drop the sign of
  // the other.
  if (number == 0) {
    text_ += std::signbit(number) ? "-0.0" : "0";
    return;
  }
  std::array<char, 32> digits{};
  char* const begin = digits.data();
  char* const limit = begin + digits.size();
  const bool fits = std::abs(number) < 0x1p63;
  const auto end = fits ? std::to_chars(begin, limit, number).ptr
                        : std::to_chars(begin, limit, number, std::chars_format::scientific).ptr;
  text_.append(begin, end);
}

void Writer::value(std::int64_t number) {
  separate();
  text_ += std::to_string(number);
}

void Writer::value(bool truth) {
  separate();
  text_ += truth ? "true" : "false";
}

void Writer::null() {
  separate();
  text_ += "null";
}

void Writer::fault(std::string_view message) {
  if (faults_ == Faults::stopTheProcess) fatal(message);
  failure_ = message;
}

void Writer::quoted(std::string_view text) {
  static constexpr std::string_view hexadecimal = "0123456789abcdef";
  text_ += '"';
  for (const char c : text) {
    switch (c) {
      case '"':
      case '\\':
        text_ += '\\';
        text_ += c;
        break;
      case '\n':
        text_ += "\\n";
        break;
      case '\r':
        text_ += "\\r";
        break;
      case '\t':
        text_ += "\\t";
        break;
      default:
        if (const auto code = static_cast<unsigned char>(c); code < 0x20) {
          text_ += "\\u00";
          text_ += hexadecimal[code >> 4U];
          text_ += hexadecimal[code & 0xFU];
        } else {
          text_ += c;
        }
    }
  }
  text_ += '"';
}

}  // namespace orvane::json
