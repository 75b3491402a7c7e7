// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include "tests/support/RequestRows.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Content/ContentComposer.h>
#include <Orvane/Services/Content/ContentService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <algorithm>
#include <optional>
#include <string>

namespace orvane {
namespace {

using Key = ContentService::Key;

TEST(ContentServiceTest, sendsTheseRequests) {
  const std::string content = "GET system/i18nContent/";
  expectRequests<ContentService>({
      {content + "faq.page.title",
       [](auto& contents) { contents.fetch(Key::faqPageTitle, {}, nullptr); }},
      {content + "faq.page.title\nAccept-Language: en-GB,de-CH",
       [](auto& contents) { contents.fetch(Key::faqPageTitle, "en_GB,de_CH", nullptr); }},
      {content + "faq.message.faqContent.obd\nAccept-Language: zh-Hant-TW",
       [](auto& contents) { contents.fetch(Key::obdFAQ, "zh-Hant-TW", nullptr); }},
      {content + "unknownKeyForTestingPurposes",
       [](auto& contents) { contents.fetch(Key::doNotUse, {}, nullptr); }},
  });
}

TEST(ContentServiceTest, keepsTheDetailsHeadersBesideTheLanguage) {
  const ScopedFoundation foundation;
  ContentService({"key", {}}).fetch(Key::mobileFAQ, "fr", nullptr);
  EXPECT_EQ(foundation.requestManager->questions().at(0).headers,
            (Headers{{"Accept-Language", "fr"}, {"Authorization", "Bearer token"}}));
}

TEST(ContentComposerTest, sendsItsStoredQuery) {
  ContentComposer composer(std::nullopt, Key::mobileFAQ);
  EXPECT_EQ(composer.query(), std::nullopt);
  composer.queryText = "draft=true";
  EXPECT_EQ(composer.query(), "draft=true");
}

TEST(ContentKeyTest, standForThirtyTwoTexts) {
  const std::string texts = wireTexts<Key>();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), ' '), 31) << texts;
  // Neither has the text that its name suggests.
  EXPECT_EQ(wireText(Key::acceptTermsAndConditionsEmailTemplateSubjec),
            "accept.terms.and.conditions.email.template.subjec");
  EXPECT_EQ(wireText(Key::acceptTermsAndConditionsEmailTemplatePlainContent),
            "accept.terms.and.conditions.email.template.html.content");
}

}  // namespace
}  // namespace orvane
