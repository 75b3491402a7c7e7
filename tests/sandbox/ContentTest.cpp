// SPDX-License-Identifier: Apache-2.0
//
// Texts in the preferred language, and the firmware package with its ranges.
#include "Fixture.h"
#include "data/ContentTexts.h"

#include <tuple>

namespace orvane::sandbox::test {
namespace {

class Content : public SandboxTest {};

TEST_F(Content, EveryKeyHasATextInEveryLanguage) {
  for (const ContentText& text : contentTexts()) {
    EXPECT_EQ(read("system/i18nContent/" + std::string{text.key})["body"], text.english);
    EXPECT_FALSE(text.english.empty() || text.german.empty() || text.french.empty()) << text.key;
  }
  EXPECT_EQ(contentTexts().size(), 31U);
}

TEST_F(Content, ThePreferredLanguageIsTaken) {
  constexpr std::pair<const char*, const char*> rows[] = {{"en-GB,de-CH", "en"},
                                                          {"de-CH,en-GB", "de"},
                                                          {"it,fr;q=0.4,de;q=0.8", "de"},
                                                          {"it", "en"},
                                                          {"DE", "de"},
                                                          {"de;q=0,fr;q=0.1", "fr"},
                                                          {"de;q=nonsense,fr;q=2", "en"},
                                                          {"de;q=0.1,fr;q=0.12", "fr"},
                                                          {"de;q=08,fr;q=0.001", "fr"},
                                                          {"de;q=1.001,fr;q=1.000", "fr"},
                                                          {"", "en"},
                                                          {"*,,;;", "en"}};
  for (const auto& [header, language] : rows) {
    const Answer answer = get("system/i18nContent/faq.page.title", {{"Accept-Language", header}});
    EXPECT_EQ(answer.parsed()["language"], language) << header;
  }
}

TEST_F(Content, NobodyNeedsToBeSignedInButABadTokenIsRefused) {
  useToken("");
  EXPECT_EQ(get("system/i18nContent/faq.page.title").status, 200);
  refuses(401, {"POST system/i18nContent/faq.page.title"});
  useToken("nonsense");
  refuses(401, {"GET system/i18nContent/faq.page.title"});
}

TEST_F(Content, TheFirmwarePackageIsAnArchiveThatCanBeReadInPieces) {
  auto stranger = client();
  stranger.enable_server_certificate_verification(false);
  const auto download = [&](const httplib::Headers& headers) {
    return stranger.Get("/downloads/DFU_4417_Release___2_2_2.zip", headers);
  };
  const std::string package = download({})->body;
  const std::size_t size = package.size();
  EXPECT_GT(size, 2'000'000U);
  EXPECT_EQ(package.substr(0, 4), "PK\x03\x04");
  EXPECT_EQ(package.substr(size - 22, 4), "PK\x05\x06");

  const std::tuple<const char*, int, std::size_t, std::size_t> rows[] = {
      {"bytes=0-9", 206, 0, 10},         {"bytes=1000-", 206, 1000, size - 1000},
      {"bytes=-22", 206, size - 22, 22}, {"bytes=5-99999999", 206, 5, size - 5},
      {"bytes=5-4", 416, 0, 0},          {"bytes=0-1,3-4", 200, 0, size},
      {"bytes=99999999-", 416, 0, 0},    {"bytes=-0", 416, 0, 0}};
  for (const auto& [range, status, first, count] : rows) {
    const auto part = download({{"Range", range}});
    EXPECT_EQ(part->status, status) << range;
    EXPECT_TRUE(status == 416 || part->body == package.substr(first, count)) << range;
  }
  EXPECT_EQ(download({{"Range", "bytes=0-9"}, {"If-Range", "\"another\""}})->status, 200)
      << "the package has changed";
}

}  // namespace
}  // namespace orvane::sandbox::test
