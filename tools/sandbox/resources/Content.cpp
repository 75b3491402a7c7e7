// SPDX-License-Identifier: Apache-2.0
//
// "system/i18nContent/{key}": texts in the language that the client prefers. They are shown before
// anybody has signed in, so they need no token.
#include "JsonWriter.h"
#include "data/ContentTexts.h"
#include "resources/Resources.h"

#include <algorithm>
#include <array>
#include <string>

namespace orvane::sandbox {

namespace {

struct Language {
  std::string_view tag;
  std::string_view ContentText::*text;
};

constexpr std::array<Language, 3> languages{
    {{"en", &ContentText::english}, {"de", &ContentText::german}, {"fr", &ContentText::french}}};

std::string_view trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// The weight of an item such as "de-CH;q=0.8" in thousandths (RFC 9110, section 12.4.2); all of
/// them without one, 0 for nonsense.
int weightOf(std::string_view item) {
  constexpr int most = 1000;
  const auto semicolon = item.find(';');
  if (semicolon == std::string_view::npos) return most;
  const std::string_view parameter = trim(item.substr(semicolon + 1));
  if (!parameter.starts_with("q=")) return 0;
  std::string digits(parameter.substr(2));
  if (digits.size() > 1 && digits[1] == '.') {
    digits.erase(1, 1);
  } else if (digits.size() != 1) {
    return 0;
  }
  digits.resize(std::max<std::size_t>(digits.size(), 4), '0');
  const bool isNumber = digits.find_first_not_of("0123456789") == std::string::npos;
  const int weight = isNumber && digits.size() == 4 ? std::stoi(digits) : 0;
  return weight <= most ? weight : 0;
}

/// The best known language of an Accept-Language header (RFC 9110, section 12.5.4); English as a
/// last resort. Of equal weights the first counts, and only the primary subtag is looked at.
const Language& preferredLanguage(std::string_view header) {
  const Language* best = &languages.front();
  int bestWeight = 0;
  for (const std::string_view item : split(header, ',')) {
    const std::string_view tag = trim(item.substr(0, item.find(';')));
    const auto known = std::ranges::find_if(languages, [&](const Language& language) {
      return equalIgnoringCase(tag.substr(0, tag.find('-')), language.tag);
    });
    if (known == languages.end() || weightOf(item) <= bestWeight) continue;
    best = &*known;
    bestWeight = weightOf(item);
  }
  return *best;
}

Reply readContent(Call& call) {
  const auto text = std::ranges::find(contentTexts(), call.capture(0), &ContentText::key);
  if (text == contentTexts().end()) throw notFound("there is no text under this key");
  const Language& language = preferredLanguage(call.request.header("Accept-Language").value_or(""));
  JsonWriter json;
  json.beginObject()
      .member("key", text->key)
      .member("language", language.tag)
      .member("body", (*text).*language.text)
      .endObject();
  Reply reply = jsonReply(json.take());
  reply.headers = {{"Content-Language", std::string{language.tag}}, {"Vary", "Accept-Language"}};
  return reply;
}

}  // namespace

void addContent(Router& router) {
  router.add({.method = "GET",
              .path = "system/i18nContent/{key}",
              .handle = readContent,
              .access = Access::anyone});
}

}  // namespace orvane::sandbox
