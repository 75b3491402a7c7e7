// SPDX-License-Identifier: Apache-2.0
// Drawings: texts that can't break out of them, numbers every viewer reads, and files that are
// whole.
#include "ExitCode.h"
#include "OutputFile.h"
#include "SVG.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <clocale>
#include <filesystem>
#include <iterator>
#include <limits>
#include <utility>

namespace orvane::cli {
namespace {

using testing::HasSubstr;

TEST(SVGTest, EscapesTexts) {
  constexpr std::pair<const char*, const char*> rows[] = {
      {"Zürich – 测试 😀", "Zürich – 测试 😀"},
      {"</title><script>alert('1')&\"2\"",
       "&lt;/title&gt;&lt;script&gt;alert(&apos;1&apos;)&amp;"
       "&quot;2&quot;"},
      {"a\nb\x1b", "a\\nb\\x1b"},
      {"\xef\xbf\xbe\xef\xbf\xbf\xef\xbf\xbd", "\uFFFD\uFFFD\uFFFD"},  // U+FFFE, U+FFFF
      {"\xff\xef\xbf", "\uFFFD\uFFFD\uFFFD"},                          // no UTF-8
      {"]]>", "]]&gt;"},
  };
  for (const auto& [text, written] : rows) EXPECT_EQ(SVG::escaped(text), written) << text;
}

TEST(SVGTest, WritesNumbersWhateverTheLocale) {
  std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_EQ(SVG::number(1234.5), "1234.5");
  EXPECT_EQ(SVG::number(-0.001), "0");
  EXPECT_EQ(SVG::number(1.0 / 3), "0.33");
  EXPECT_EQ(SVG::number(1e7), "10000000");
  EXPECT_EQ(SVG::number(std::numeric_limits<double>::infinity()), "0");
  EXPECT_EQ(SVGPath().moveTo(0, -1.5).lineTo(2.25, 3).close().text(), "M0,-1.5L2.25,3Z");
  std::setlocale(LC_ALL, "C");
}

TEST(SVGTest, IsOneDocument) {
  constexpr Paint paints[] = {{"high", "#d1242f", "#f85149"}};
  SVG drawing({200, 100}, "A & B", "What is <seen>", paints);
  drawing.group({{"class", "high"}}, [&] {
    drawing.element("circle", {{"cx", 1.5}, {"r", 4}}, "\"hover\"");
    drawing.element("path", {{"d", "M0,0"}});
  });
  drawing.text(10, 20, "x < y", {{"text-anchor", "end"}});
  const std::string text = std::move(drawing).take();
  EXPECT_THAT(text, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns="));
  EXPECT_THAT(text, testing::EndsWith("</svg>\n"));
  constexpr const char* group =
      "<g class=\"high\">\n<circle cx=\"1.5\" r=\"4\"><title>&quot;hover&quot;</title></circle>\n"
      "<path d=\"M0,0\"/>\n</g>";
  for (const char* part : {"viewBox=\"0 0 200 100\"", "<title id=\"title\">A &amp; B</title>",
                           "<desc id=\"description\">What is &lt;seen&gt;</desc>", group,
                           "<text x=\"10\" y=\"20\" text-anchor=\"end\">x &lt; y</text>"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
  const std::size_t dark = text.find("prefers-color-scheme:dark");
  EXPECT_LT(text.find(".high{color:#d1242f}"), dark);
  EXPECT_GT(text.find(".high{color:#f85149}"), dark);
}

// What is in the folder.
std::size_t countOf(const TemporaryFolder& folder) {
  const std::filesystem::directory_iterator files(folder.path());
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(OutputFileTest, ReplacesTheWholeFileAndNothingElse) {
  const TemporaryFolder folder;
  const std::string file = folder / "route.svg";
  const std::string link = folder / "link.svg";
  Output output(stdout, {});
  writeDocument(file, "one", output);
  EXPECT_EQ(contentsOf(file), "one");
  std::filesystem::permissions(file, std::filesystem::perms(0640));
  std::filesystem::create_symlink("route.svg", link);
  writeDocument(link, "a second one", output);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(contentsOf(file), "a second one");
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(countOf(folder), 2U);

  // What is no file can't be replaced.
  writeDocument("/dev/null", "text", output);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(OutputFileTest, FailsWithoutALeftover) {
  const TemporaryFolder folder;
  Output output(stdout, {});
  for (const std::string& file : {folder.path().string(), folder / "missing/route.svg",
                                  std::string("/dev/full"), std::string("/proc/route.svg")}) {
    try {
      writeDocument(file, "text", output);
      ADD_FAILURE() << file << " was written";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.code(), ExitCode::output);
      EXPECT_THAT(failure.what(), HasSubstr(file));
    }
  }
  EXPECT_EQ(countOf(folder), 0U);
}

}  // namespace
}  // namespace orvane::cli
