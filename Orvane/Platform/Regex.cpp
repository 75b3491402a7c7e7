// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Regex.h>

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace orvane {
namespace {

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

// A pattern and a text to search, which the matcher refers to.
class Search {
 public:
  Search(std::string_view pattern, std::string_view text)
      : text_(unicode(text)), matcher_(unicode(pattern), text_, 0, status_) {
    check("a regular expression is malformed");
  }

  [[nodiscard]] bool find() { return matcher_.find() != 0; }

  [[nodiscard]] std::string group(std::string_view name) {
    const std::int32_t number = matcher_.pattern().groupNumberFromName(unicode(name), status_);
    check("a regular expression has no group of that name");
    std::string captured;
    matcher_.group(number, status_).toUTF8String(captured);
    return captured;
  }

 private:
  void check(std::string_view fault) const { precondition(U_SUCCESS(status_) != 0, fault); }

  UErrorCode status_ = U_ZERO_ERROR;
  const icu::UnicodeString text_;
  icu::RegexMatcher matcher_;
};

}  // namespace

bool isFound(std::string_view pattern, std::string_view text) {
  return Search(pattern, text).find();
}

std::optional<std::vector<std::string>> findGroups(std::string_view pattern, std::string_view text,
                                                   std::initializer_list<std::string_view> names) {
  Search search(pattern, text);
  if (!search.find()) return std::nullopt;
  std::vector<std::string> groups;
  groups.reserve(names.size());
  for (const std::string_view name : names) groups.push_back(search.group(name));
  return groups;
}

}  // namespace orvane
