// SPDX-License-Identifier: Apache-2.0
//
// Texts in the preferred language, and the firmware package with its ranges.
#include "Fixture.h"
#include "data/ContentTexts.h"
#include "resources/Firmware.h"

#include <gmock/gmock.h>

namespace orvane::sandbox::test {
namespace {

class Content : public SandboxTest {
 protected:
  std::string languageFor(const std::string& header) {
    return get("system/i18nContent/faq.page.title", {{"Accept-Language", header}})
        .parsed()["language"];
  }
};

TEST_F(Content, EveryKeyHasATextInEveryLanguage) {
  for (const ContentText& text : contentTexts()) {
    const std::string path = "system/i18nContent/" + std::string{text.key};
    EXPECT_EQ(read(path)["body"], text.english);
    EXPECT_EQ(get(path, {{"Accept-Language", "de-CH"}}).parsed()["body"], text.german);
    EXPECT_EQ(get(path, {{"Accept-Language", "fr"}}).parsed()["body"], text.french);
    EXPECT_FALSE(text.english.empty() || text.german.empty() || text.french.empty()) << text.key;
  }
  EXPECT_EQ(contentTexts().size(), 31U);
  EXPECT_EQ(get("system/i18nContent/unknownKeyForTestingPurposes").status, 404);
}

TEST_F(Content, ThePreferredLanguageIsTaken) {
  const std::pair<const char*, const char*> rows[] = {{"en-GB,de-CH", "en"},
                                                      {"de-CH,en-GB", "de"},
                                                      {"it,fr;q=0.4,de;q=0.8", "de"},
                                                      {"it", "en"},
                                                      {"DE", "de"},
                                                      {"de;q=0,fr;q=0.1", "fr"},
                                                      {"", "en"},
                                                      {"de;q=nonsense,fr;q=2", "en"},
                                                      {"*,,;;", "en"}};
  for (const auto& [header, language] : rows) EXPECT_EQ(languageFor(header), language) << header;
}

TEST_F(Content, NobodyNeedsToBeSignedInButABadTokenIsRefused) {
  useToken("");
  EXPECT_EQ(get("system/i18nContent/faq.page.title").status, 200);
  EXPECT_EQ(post("system/i18nContent/faq.page.title").status, 401);
  useToken("nonsense");
  EXPECT_EQ(get("system/i18nContent/faq.page.title").status, 401);
}

class Firmware : public SandboxTest {
 protected:
  httplib::Result download(const std::string& range, const std::string& ifRange = "") {
    auto browser = client();
    browser.enable_server_certificate_verification(false);
    httplib::Headers headers;
    if (!range.empty()) headers.emplace("Range", range);
    if (!ifRange.empty()) headers.emplace("If-Range", ifRange);
    return browser.Get("/downloads/DFU_4417_Release___2_2_2.zip", headers);
  }
};

TEST_F(Firmware, ThePackageIsAnArchiveThatCanBeReadInPieces) {
  const auto whole = download("");
  ASSERT_EQ(whole->status, 200);
  const std::string& package = whole->body;
  EXPECT_GT(package.size(), 2'000'000U);
  EXPECT_EQ(package.substr(0, 4), "PK\x03\x04");
  EXPECT_EQ(package.substr(package.size() - 22, 4), "PK\x05\x06");

  struct Row {
    const char* range;
    int status;
    std::size_t first;
    std::size_t size;
  };
  const std::size_t size = package.size();
  const Row rows[] = {{"bytes=0-9", 206, 0, 10},         {"bytes=1000-", 206, 1000, size - 1000},
                      {"bytes=-22", 206, size - 22, 22}, {"bytes=5-99999999", 206, 5, size - 5},
                      {"bytes=5-4", 416, 0, 0},          {"bytes=0-1,3-4", 200, 0, size},
                      {"bytes=99999999-", 416, 0, 0},    {"bytes=-0", 416, 0, 0}};
  for (const Row& row : rows) {
    const auto part = download(row.range);
    EXPECT_EQ(part->status, row.status) << row.range;
    if (row.status == 416) continue;
    EXPECT_TRUE(part->body == package.substr(row.first, row.size)) << row.range;
  }
  EXPECT_EQ(download("bytes=0-9", "\"another\"")->status, 200) << "the package has changed";
}

}  // namespace
}  // namespace orvane::sandbox::test
