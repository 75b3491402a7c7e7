// SPDX-License-Identifier: Apache-2.0
// Drawings: texts that can't break out of them, numbers every viewer reads, and files that are
// whole.
#include "ExitCode.h"
#include "OutputFile.h"
#include "SVG.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

namespace orvane::cli {
namespace {

using testing::HasSubstr;

TEST(SVGTest, EscapesTexts) {
  struct Row {
    std::string text;
    std::string written;
  };
  const Row rows[] = {
      {"Zürich – 测试 😀", "Zürich – 测试 😀"},
      {"</title><script>alert('1')&\"2\"",
       "&lt;/title&gt;&lt;script&gt;alert(&apos;1&apos;)&amp;"
       "&quot;2&quot;"},
      {"a\nb\x1b", "a\\nb\\x1b"},
      {"\xef\xbf\xbe\xef\xbf\xbf\xef\xbf\xbd", "\uFFFD\uFFFD\uFFFD"},  // U+FFFE, U+FFFF
      {"\xff\xef\xbf", "\uFFFD\uFFFD\uFFFD"},                          // no UTF-8
      {"]]>", "]]&gt;"},
  };
  for (const Row& row : rows) EXPECT_EQ(SVG::escaped(row.text), row.written) << row.text;
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
  EXPECT_THAT(text, HasSubstr("viewBox=\"0 0 200 100\""));
  EXPECT_THAT(text, HasSubstr("<title id=\"title\">A &amp; B</title>"));
  EXPECT_THAT(text, HasSubstr("<desc id=\"description\">What is &lt;seen&gt;</desc>"));
  EXPECT_THAT(text, HasSubstr("<g class=\"high\">\n<circle cx=\"1.5\" r=\"4\"><title>&quot;hover"
                              "&quot;</title></circle>\n<path d=\"M0,0\"/>\n</g>"));
  EXPECT_THAT(text, HasSubstr("<text x=\"10\" y=\"20\" text-anchor=\"end\">x &lt; y</text>"));
  const std::size_t dark = text.find("prefers-color-scheme:dark");
  EXPECT_LT(text.find(".high{color:#d1242f}"), dark);
  EXPECT_GT(text.find(".high{color:#f85149}"), dark);
}

class OutputFileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "orvane-output-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  static std::string contents(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
  [[nodiscard]] std::size_t files() const {
    const std::filesystem::directory_iterator all(folder_);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
  }
  static int failing(const std::filesystem::path& file) {
    Output output(stdout, {});
    try {
      writeDocument(file, "text", output);
    } catch (const Failure& failure) {
      EXPECT_THAT(failure.what(), HasSubstr(file.string()));
      return static_cast<int>(failure.code());
    }
    return 0;
  }

  std::filesystem::path folder_;
};

TEST_F(OutputFileTest, ReplacesTheWholeFileAndNothingElse) {
  const auto file = folder_ / "route.svg";
  Output output(stdout, {});
  writeDocument(file, "one", output);
  EXPECT_EQ(contents(file), "one");
  ::chmod(file.c_str(), 0640);
  const auto link = folder_ / "link.svg";
  std::filesystem::create_symlink("route.svg", link);
  writeDocument(link, "a second one", output);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(contents(file), "a second one");
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(files(), 2U);

  // What is no file can't be replaced.
  writeDocument("/dev/null", "text", output);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST_F(OutputFileTest, FailsWithoutALeftover) {
  EXPECT_EQ(failing(folder_), 74);
  EXPECT_EQ(failing(folder_ / "missing" / "route.svg"), 74);
  EXPECT_EQ(failing("/dev/full"), 74);
  EXPECT_EQ(failing("/proc/route.svg"), 74);
  EXPECT_EQ(files(), 0U);
}

}  // namespace
}  // namespace orvane::cli
