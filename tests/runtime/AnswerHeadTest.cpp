// SPDX-License-Identifier: Apache-2.0
// Lines of an answer's head that no server should send.
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/AnswerHead.h>

#include <optional>
#include <string>
#include <vector>

namespace orvane {
namespace {

struct Row {
  std::vector<std::string> lines;
  int status;
  std::optional<std::int64_t> length;
  bool isComplete;
};

TEST(AnswerHeadTest, TakesWhatIsNoNumberForNone) {
  const Row rows[] = {
      {{"HTTP/1.1 404 Not Found", "Content-Length: 5", ""}, 404, 5, true},
      {{"HTTP/1.1 -04 not Found", ""}, 0, std::nullopt, false},
      {{"HTTP/1.1 +20 OK", ""}, 0, std::nullopt, false},
      {{"HTTP/", ""}, 0, std::nullopt, false},
      {{"HTTP/1.1 500 Oops", "Content-Length: -5", ""}, 500, std::nullopt, true},
      {{"HTTP/1.1 500 Oops", "Content-Length: 5 and more", ""}, 500, std::nullopt, true},
      {{"HTTP/1.1 500 Oops", "Content-Length:", ""}, 500, std::nullopt, true},
  };
  for (const auto& [lines, status, length, isComplete] : rows) {
    SCOPED_TRACE(lines.at(0));
    AnswerHead head;
    for (const std::string& line : lines) EXPECT_TRUE(head.take(line + "\r\n"));
    EXPECT_EQ(head.status(), status);
    EXPECT_EQ(head.length(), length);
    EXPECT_EQ(head.isComplete(), isComplete);
  }
}

}  // namespace
}  // namespace orvane
