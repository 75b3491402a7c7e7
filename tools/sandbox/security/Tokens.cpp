// SPDX-License-Identifier: Apache-2.0
#include "security/Tokens.h"

#include "JsonWriter.h"
#include "http/Message.h"

#include <nlohmann/json.hpp>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <array>
#include <fstream>
#include <optional>
#include <stdexcept>

namespace orvane::sandbox {

namespace {

constexpr std::size_t keyBytes = 32;
constexpr std::string_view alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

Problem unauthorized(const std::string& message) {
  return {401, "unauthorized", message, {{"WWW-Authenticate", "Bearer error=\"invalid_token\""}}};
}

std::string fromHex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    const std::string pair{hex.substr(i, 2)};
    std::size_t used = 0;
    bytes.push_back(static_cast<char>(std::stoi(pair, &used, 16)));
    if (used != 2) throw std::invalid_argument("hex");
  }
  return bytes;
}

nlohmann::json parsePart(std::string_view part) {
  const auto bytes = decodeBase64url(part);
  auto json = nlohmann::json::parse(bytes.value_or(""), nullptr, false);
  if (!json.is_object()) throw unauthorized("the token is malformed");
  return json;
}

double seconds(const nlohmann::json& claims, const char* name) {
  const auto found = claims.find(name);
  if (found == claims.end() || !found->is_number()) {
    throw unauthorized(std::string{"the token has no \""} + name + "\"");
  }
  return found->get<double>();
}

}  // namespace

std::string base64url(std::string_view bytes) {
  std::string text;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char c : bytes) {
    bits = (bits << 8U) | static_cast<unsigned char>(c);
    for (count += 8; count >= 6; count -= 6) text.push_back(alphabet[(bits >> (count - 6)) & 63U]);
  }
  if (count > 0) text.push_back(alphabet[(bits << (6 - count)) & 63U]);
  return text;
}

std::optional<std::string> decodeBase64url(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char c : text) {
    const auto value = alphabet.find(c);
    if (value == std::string_view::npos) return std::nullopt;
    bits = (bits << 6U) | static_cast<std::uint32_t>(value);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes.push_back(static_cast<char>((bits >> count) & 0xFFU));
    }
  }
  return bytes;
}

std::string randomBase64url(std::size_t bytes) {
  std::string random(bytes, '\0');
  if (RAND_bytes(reinterpret_cast<unsigned char*>(random.data()), static_cast<int>(bytes)) != 1) {
    throw std::runtime_error("no random numbers");
  }
  return base64url(random);
}

std::string randomHex(std::size_t bytes) {
  constexpr std::string_view hexDigits = "0123456789abcdef";
  std::string hex;
  for (std::size_t i = 0; i < bytes; ++i) {
    unsigned char byte = 0;
    if (RAND_bytes(&byte, 1) != 1) throw std::runtime_error("no random numbers");
    hex.push_back(hexDigits[byte >> 4U]);
    hex.push_back(hexDigits[byte & 0xFU]);
  }
  return hex;
}

bool equalInConstantTime(std::string_view left, std::string_view right) {
  return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

SigningKey::SigningKey(const std::filesystem::path& file) {
  if (!exists(file)) {
    std::ofstream stream{file};
    using std::filesystem::perms;
    permissions(file, perms::owner_read | perms::owner_write);
    stream << randomHex(keyBytes) << '\n';
  }
  std::ifstream{file} >> hex_;
  if (hex_.size() != 2 * keyBytes ||
      hex_.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
    throw std::runtime_error(file.string() + " does not hold 64 hexadecimal digits");
  }
  bytes_ = fromHex(hex_);
}

std::string SigningKey::signature(std::string_view text) const {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  HMAC(EVP_sha256(), bytes_.data(), static_cast<int>(bytes_.size()),
       reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(), &size);
  return base64url({reinterpret_cast<const char*>(digest.data()), size});
}

std::string SigningKey::sign(const std::map<std::string, std::string>& texts,
                             const std::map<std::string, std::int64_t>& numbers) const {
  JsonWriter claims;
  claims.beginObject();
  for (const auto& [name, value] : texts) claims.member(name, value);
  for (const auto& [name, value] : numbers) claims.member(name, value);
  claims.endObject();
  const std::string text =
      base64url(R"({"alg":"HS256","typ":"JWT"})") + "." + base64url(claims.text());
  return text + "." + signature(text);
}

std::string SigningKey::verify(std::string_view token, Milliseconds now) const {
  const auto firstDot = token.find('.');
  const auto lastDot = token.rfind('.');
  if (firstDot == std::string_view::npos || firstDot == lastDot) {
    throw unauthorized("the token is malformed");
  }
  const auto header = parsePart(token.substr(0, firstDot));
  if (header.value("alg", nlohmann::json{}) != "HS256") {
    throw unauthorized("the token is not signed with HS256");
  }
  if (!equalInConstantTime(signature(token.substr(0, lastDot)), token.substr(lastDot + 1))) {
    throw unauthorized("the token's signature is wrong");
  }
  const auto claims = parsePart(token.substr(firstDot + 1, lastDot - firstDot - 1));
  const double nowSeconds = static_cast<double>(now) / millisPerSecond;
  const double issued = seconds(claims, "iat");
  if (issued > nowSeconds + leewaySeconds) {
    throw unauthorized("the token was issued in the future");
  }
  if (issued < nowSeconds - longestAgeSeconds - leewaySeconds) {
    throw unauthorized("the token was issued too long ago");
  }
  if (seconds(claims, "exp") <= nowSeconds - leewaySeconds) {
    throw unauthorized("the token has expired");
  }
  const auto subject = claims.find("sub");
  if (subject == claims.end() || !subject->is_string()) {
    throw unauthorized("the token has no \"sub\"");
  }
  return subject->get<std::string>();
}

}  // namespace orvane::sandbox
