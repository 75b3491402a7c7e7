// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/JSONWriter.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <utility>

namespace orvane {
namespace {

// RFC 7518, section 3.2: as long as the hash.
constexpr std::size_t shortestKey = 32;

// Beyond it a token is valid for ever, and its times get too large to be computed.
constexpr std::chrono::seconds longestLifetime = std::chrono::years(100);

constexpr std::string_view header = R"({"alg":"HS256","typ":"JWT"})";

// RFC 4648, section 5, without padding.
std::string base64URL(std::string_view bytes) {
  constexpr std::string_view alphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::string text;
  text.reserve((bytes.size() * 4 + 2) / 3);
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char byte : bytes) {
    bits = (bits << 8U) | static_cast<unsigned char>(byte);
    for (count += 8; count >= 6; count -= 6) text += alphabet[(bits >> (count - 6)) & 63U];
  }
  if (count > 0) text += alphabet[(bits << (6 - count)) & 63U];
  return text;
}

std::string signature(const std::string& key, const std::string& text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
  const auto* made = HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), bytes,
                          text.size(), digest.data(), &size);
  if (made == nullptr) return {};
  return {digest.begin(), digest.begin() + size};
}

int digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

Result<std::shared_ptr<SelfSignedTokenResolver>> SelfSignedTokenResolver::make(
    SelfSignedTokenOptions options) {
  if (options.key.size() < shortestKey || options.key.size() > INT_MAX) {
    return ConfigurationError("the key that signs tokens is shorter than 32 bytes");
  }
  if (options.lifetime < std::chrono::seconds(1)) {
    return ConfigurationError("the lifetime of tokens is shorter than a second");
  }
  if (options.lifetime > longestLifetime) {
    return ConfigurationError("the lifetime of tokens is longer than 100 years");
  }
  options.reuse = std::min(options.reuse, options.lifetime * 9 / 10);
  return std::shared_ptr<SelfSignedTokenResolver>(new SelfSignedTokenResolver(std::move(options)));
}

SelfSignedTokenResolver::SelfSignedTokenResolver(SelfSignedTokenOptions options)
    : options_(std::move(options)) {}

SelfSignedTokenResolver::~SelfSignedTokenResolver() = default;

RequestHandle SelfSignedTokenResolver::resolve(const Identity& identity,
                                               std::optional<double> offset,
                                               Completion<std::string> resultHandler) {
  resultHandler(token(identity, offset));
  return std::make_shared<EmptyRequest>();
}

Result<std::string> SelfSignedTokenResolver::token(const Identity& identity,
                                                   std::optional<double> offset) {
  const Date now = DeviceClock::now() + Seconds(offset.value_or(0));
  const std::scoped_lock lock(mutex_);
  const auto kept = kept_.find(identity);
  if (kept != kept_.end() && kept->second.offset == offset) {
    const Seconds age = now - kept->second.issued;
    // A clock that was put back makes the token one from the future.
    if (age >= Seconds(0) && age < options_.reuse) return kept->second.token;
  }
  Result<std::string> token = signedToken(identity, now);
  if (token.value()) kept_.insert_or_assign(identity, Kept{*token.value(), offset, now});
  return token;
}

Result<std::string> SelfSignedTokenResolver::signedToken(const Identity& identity,
                                                         Date issued) const {
  const double seconds = std::floor(secondsSince1970(issued));
  if (!(std::abs(seconds) < 0x1p53)) return TokenError(TokenError::Kind::signing);
  const auto issuedAt = static_cast<std::int64_t>(seconds);

  json::Writer claims(json::Writer::Faults::areFailures);
  claims.beginObject();
  claims.key("sub");
  claims.value(std::string_view(identity.externalReferenceID.value_or(identity.apiKey)));
  claims.key("iat");
  claims.value(issuedAt);
  claims.key("exp");
  claims.value(issuedAt + std::int64_t{options_.lifetime.count()});
  claims.endObject();
  if (!claims.failure().empty()) return TokenError(TokenError::Kind::signing);

  std::string token = base64URL(header) + "." + base64URL(std::move(claims).take());
  const std::string signedBy = signature(options_.key, token);
  if (signedBy.empty()) return TokenError(TokenError::Kind::signing);
  return token + "." + base64URL(signedBy);
}

void SelfSignedTokenResolver::forget(const Identity& identity) {
  const std::scoped_lock lock(mutex_);
  kept_.erase(identity);
}

std::optional<std::string> bytesFromHexadecimal(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = digit(text[i]);
    const int low = digit(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

}  // namespace orvane
