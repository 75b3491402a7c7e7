// SPDX-License-Identifier: Apache-2.0
// orvane content: the texts that the backend keeps for applications to show.
#include "Commands.h"
#include <Orvane/Services/Content/ContentService.h>

namespace orvane::cli {

template <>
struct Argument<ContentService::Key> {
  static constexpr std::string_view label = "KEY";
  static constexpr std::string_view meaning = "a content key: orvane content keys lists them";

  [[nodiscard]] static std::vector<std::string> choices() {
    std::vector<std::string> keys;
    for (const auto& row : allCases<ContentService::Key>()) keys.emplace_back(row.wireText);
    return keys;
  }
  [[nodiscard]] static std::optional<ContentService::Key> parse(std::string_view text) {
    return fromWireText<ContentService::Key>(text);
  }
};

namespace {

struct GetContent {
  using Answer = Content;
  static constexpr std::string_view name = "get";
  static constexpr std::string_view summary = "Print a text";
  static constexpr Example examples[] = {
      {"content get privacyPolicy.page.title --lang de-CH,en", "in German, or else in English"},
      {"content get faq.message.faqContent --json | jq -r .body > faq.html",
       "unchanged, control characters and all"},
  };

  ContentService::Key key{};
  std::optional<std::string> languages;

  void declare(Options& options) {
    options.positional("KEY", key, "The text's key");
    options.option("--lang", languages,
                   "The languages wanted, the best first, with commas between them: de-CH,en");
  }

  Operation<Content> ask(const ContentService& service) const {
    return service.fetch(key, languages);
  }

  // Its lines stay lines; nothing else can steer a terminal.
  static void print(const Content& content, Output& output) {
    std::string_view text = content.body ? std::string_view(*content.body) : std::string_view();
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      output.line(visible(text.substr(0, end)));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }
};

struct ListKeys {
  static constexpr std::string_view name = "keys";
  static constexpr std::string_view summary = "List the keys of the texts";

  void run(Session& session) const {
    Output& output = session.output();
    std::vector<std::string> texts;
    for (const auto& row : allCases<ContentService::Key>()) {
      texts.push_back(output.style().isJSON() ? jsonText(row.wireText) : std::string(row.wireText));
    }
    if (output.style().isJSON()) return output.json("[" + joined(texts, ",") + "]");
    for (const std::string& text : texts) output.line(text);
  }
};

}  // namespace

Resource contentCommands() {
  return Resource("content", "The texts that applications show").add<GetContent>().add<ListKeys>();
}

}  // namespace orvane::cli
