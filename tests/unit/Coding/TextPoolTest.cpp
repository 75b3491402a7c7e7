// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/TextPool.h>
#include <Orvane/GoogleTest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane {
namespace {

// Short and long in turn, so that blocks fill up in the middle of a row of texts; all differ.
std::vector<std::string> texts() {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < 600; ++i) {
    texts.push_back(std::to_string(i) + std::string(i * 37 % 700, static_cast<char>('a' + i % 26)));
  }
  for (const std::size_t size : {0U, 255U, 256U, 257U, 511U, 512U, 513U, 4096U, 5000U}) {
    texts.emplace_back(size, 'z');
  }
  return texts;
}

TEST(TextPoolTest, keepsTextsLongerThanItself) {
  std::vector<SharedText> kept;
  {
    TextPool pool;
    for (const std::string& text : texts()) kept.push_back(pool.keep(text));
  }
  std::optional<SharedText> last = kept.back();
  for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_EQ(kept[i].view(), texts()[i]);
  kept.clear();
  EXPECT_EQ(last->view(), texts().back());
}

TEST(TextPoolTest, givesShortTextsOneAllocation) {
  TextPool pool;
  const SharedText first = pool.keep("one");
  const SharedText second = pool.keep("two");
  EXPECT_EQ(first.view().data() + first.view().size(), second.view().data());
}

TEST(SharedTextTest, isComparedByWhatItSays) {
  TextPool pool;
  EXPECT_EQ(SharedText(), SharedText(""));
  EXPECT_EQ(SharedText("text"), pool.keep("text"));
  EXPECT_FALSE(SharedText("text") == SharedText("texts"));
}

TEST(SharedTextTest, hasOnePlaceWithItsCopiesAndLeavesNothingBehind) {
  std::vector<SharedText> texts{SharedText("text"), SharedText("other")};
  const SharedText copy = texts[0];
  EXPECT_EQ(copy.view().data(), texts[0].view().data());
  texts[1] = std::move(texts[0]);
  EXPECT_EQ(texts[0], SharedText());
  const SharedText moved = std::move(texts[1]);
  EXPECT_EQ(texts[1], SharedText());
  EXPECT_EQ(moved, copy);
}

}  // namespace
}  // namespace orvane
