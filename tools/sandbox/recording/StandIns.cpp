// SPDX-License-Identifier: Apache-2.0
#include "recording/StandIns.h"

#include "http/Query.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace orvane::sandbox {

namespace {

constexpr std::string_view letters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
// "@" as texts, addresses and JSON have it.
constexpr std::array<std::string_view, 3> atSigns{"@", "%40", "\\u0040"};

bool isIn(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

/// What may stand before the "@" (RFC 5322, 3.2.3, without what separates values in texts), percent
/// escapes and letters beyond ASCII.
bool isNameByte(char c) {
  return isIn(letters, c) || isIn("._+-%!#$*'^`{|}~", c) || static_cast<unsigned char>(c) >= 0x80;
}

bool isDomainByte(char c) {
  return isIn(letters, c) || c == '.' || c == '-' || static_cast<unsigned char>(c) >= 0x80;
}

bool isTokenByte(char c) { return isIn(letters, c) || c == '_' || c == '-' || c == '.'; }

std::string lowerCase(std::string_view text) {
  std::string lower{text};
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

struct At {
  std::size_t position;
  std::size_t size;
};

std::optional<At> findAt(std::string_view text, std::size_t from) {
  std::optional<At> first;
  for (const std::string_view sign : atSigns) {
    const auto position = text.find(sign, from);
    if (position == std::string_view::npos) continue;
    if (!first || position < first->position) first = At{position, sign.size()};
  }
  return first;
}

/// Whether the byte is the first of an escape as in JSON, after its backslash.
bool isEscaped(std::string_view text, std::size_t at) {
  std::size_t first = at;
  while (first > 0 && text[first - 1] == '\\') --first;
  return (at - first) % 2 == 1;
}

/// Where the name begins that ends before the "@". An escape is taken whole or not at all: what
/// remains is to be JSON still.
std::size_t beginOfName(std::string_view text, std::size_t end, std::size_t least) {
  std::size_t begin = end;
  for (;;) {
    while (begin > least && isNameByte(text[begin - 1])) --begin;
    if (begin <= least || begin == end || !isEscaped(text, begin)) return begin;
    if (text[begin] != 'u') return begin + 1;
    --begin;
  }
}

/// Where a token ends that begins here; nothing where none does.
std::optional<std::size_t> endOfToken(std::string_view text) {
  constexpr std::string_view development = "sandbox-token-";
  constexpr std::string_view jsonWebToken = "eyJ";  // "{" and a quote in base 64
  if (!text.starts_with(development) && !text.starts_with(jsonWebToken)) return std::nullopt;
  const auto end =
      static_cast<std::size_t>(std::ranges::find_if_not(text, isTokenByte) - text.begin());
  if (text.starts_with(development)) return end;
  const auto dots = std::ranges::count(text.substr(0, end), '.');
  return dots == 2 ? std::optional{end} : std::nullopt;
}

bool isSecretParameter(std::string_view name) {
  return name == "deviceToken" || name == "activationCode" || name == "token" ||
         name == "access_token";
}

}  // namespace

StandIns StandIns::uniform() {
  StandIns standIns;
  standIns.isUniform_ = true;
  return standIns;
}

std::string StandIns::forToken(std::string_view token) {
  if (isUniform_) return "token";
  const auto [entry, isNew] = tokens_.try_emplace(std::string{token}, tokens_.size() + 1);
  return "token-" + std::to_string(entry->second);
}

std::string StandIns::forAddress(std::string_view name, std::string_view domain,
                                 std::string_view at) {
  constexpr std::string_view standInDomain = "example.invalid";
  if (isUniform_) return "user@" + std::string{standInDomain};
  const std::string address = lowerCase(name) + "@" + lowerCase(domain);
  const auto [entry, isNew] = addresses_.try_emplace(address, addresses_.size() + 1);
  return "user" + std::to_string(entry->second) + std::string{at} + std::string{standInDomain};
}

std::string StandIns::in(std::string_view text) {
  // Addresses first: a token has no "@".
  std::string plain;
  std::size_t done = 0;
  for (auto at = findAt(text, 0); at; at = findAt(text, at->position + at->size)) {
    const std::size_t begin = beginOfName(text, at->position, done);
    std::size_t end = at->position + at->size;
    while (end < text.size() && isDomainByte(text[end])) ++end;
    while (end > at->position + at->size && isIn(".-", text[end - 1])) --end;
    const std::string_view domain =
        text.substr(at->position + at->size, end - at->position - at->size);
    if (begin == at->position || domain.find('.') == std::string_view::npos) continue;
    plain.append(text.substr(done, begin - done));
    plain += forAddress(text.substr(begin, at->position - begin), domain,
                        text.substr(at->position, at->size));
    done = end;
  }
  plain.append(text.substr(done));

  std::string whole;
  for (std::size_t i = 0; i < plain.size();) {
    const auto end = endOfToken(std::string_view{plain}.substr(i));
    if (!end) {
      whole += plain[i++];
      continue;
    }
    whole += forToken(std::string_view{plain}.substr(i, *end));
    i += *end;
  }
  return whole;
}

std::string StandIns::inQuery(std::string_view query) {
  std::string whole;
  bool first = true;
  for (const std::string_view item : split(query, '&')) {
    if (!std::exchange(first, false)) whole += '&';
    const auto equals = item.find('=');
    if (equals != std::string_view::npos && equals + 1 < item.size() &&
        isSecretParameter(item.substr(0, equals))) {
      whole.append(item.substr(0, equals + 1)).append(forToken(item.substr(equals + 1)));
    } else {
      whole += in(item);
    }
  }
  return whole;
}

}  // namespace orvane::sandbox
