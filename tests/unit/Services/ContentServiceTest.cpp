// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Content/ContentComposer.h>
#include <Orvane/Services/Content/ContentService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <set>

namespace orvane {
namespace {

using Key = ContentService::Key;

RequestRow fetching(Key key, std::optional<std::string> tags, std::string request) {
  return {
      request,
      [key, tags](const Identity& identity) { ContentService(identity).fetch(key, tags, nullptr); },
      request};
}

TEST(ContentServiceTest, sendsTheseRequests) {
  expectRequests({
      fetching(Key::faqPageTitle, std::nullopt, "GET system/i18nContent/faq.page.title"),
      fetching(Key::faqPageTitle, "en_GB,de_CH",
               "GET system/i18nContent/faq.page.title\nAccept-Language: en-GB,de-CH"),
      fetching(Key::obdFAQ, "zh-Hant-TW",
               "GET system/i18nContent/faq.message.faqContent.obd\nAccept-Language: zh-Hant-TW"),
      fetching(Key::doNotUse, std::nullopt, "GET system/i18nContent/unknownKeyForTestingPurposes"),
      fetching(Key::acceptTermsAndConditionsEmailTemplateSubjec, std::nullopt,
               "GET system/i18nContent/accept.terms.and.conditions.email.template.subjec"),
      fetching(Key::acceptTermsAndConditionsEmailTemplatePlainContent, std::nullopt,
               "GET system/i18nContent/accept.terms.and.conditions.email.template.html.content"),
  });
}

TEST(ContentServiceTest, keepsTheDetailsHeadersBesideTheLanguage) {
  const ScopedFoundation foundation;
  ContentService(freshIdentity()).fetch(Key::mobileFAQ, "fr", nullptr);
  EXPECT_EQ(foundation.requestManager->questions().at(0).headers,
            (Headers{{"Accept-Language", "fr"}, {"Authorization", "Bearer token"}}));
}

TEST(ContentServiceTest, handsOnWhatComesBack) {
  struct Row {
    ScriptedRequestManager::Answer answer;
    Result<Content> expected;
  };
  const Row rows[] = {
      {std::string(R"({"body":"<p>Grüezi</p>"})"), Content{"<p>Grüezi</p>"}},
      {std::string("{}"), Content{}},
      {NetworkError::invalidStatusCode(404), NetworkError::invalidStatusCode(404)},
  };
  for (const Row& row : rows) {
    const ScopedFoundation foundation;
    foundation.requestManager->answer(row.answer);
    const Outcome<Content> outcome;
    ContentService(freshIdentity()).fetch(Key::doNotUse, std::nullopt, outcome.handler());
    EXPECT_EQ(outcome.result(), row.expected);
  }
}

TEST(ContentComposerTest, sendsItsStoredQuery) {
  ContentComposer composer(std::nullopt, Key::mobileFAQ);
  EXPECT_EQ(composer.query(), std::nullopt);
  composer.queryText = "draft=true";
  EXPECT_EQ(composer.query(), "draft=true");
}

TEST(ContentKeyTest, listsThirtyTwoTextsInTheirOrder) {
  std::set<std::string_view> texts;
  std::size_t place = 0;
  for (const auto& row : allCases<Key>()) {
    EXPECT_EQ(static_cast<std::size_t>(row.value), place++) << row.wireText;
    EXPECT_TRUE(texts.insert(row.wireText).second) << row.wireText;
  }
  EXPECT_EQ(texts.size(), 32U);
  // The texts that the corrected spellings would have are none of them.
  for (const char* text :
       {"accept.terms.and.conditions.email.template.subject",
        "accept.terms.and.conditions.email.template.plain.content", "FAQ.page.title", ""}) {
    EXPECT_EQ(fromWireText<Key>(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace orvane
