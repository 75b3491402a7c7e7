// SPDX-License-Identifier: Apache-2.0
// How requests are put together: URLs, queries and forms.
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Parameter.h>
#include <Orvane/Core/URLComposer.h>
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {
namespace {

class Composer final : public URLComposer {
 public:
  Composer(std::string below, std::optional<std::string> text)
      : below_(std::move(below)), text_(std::move(text)) {}
  [[nodiscard]] std::string path(std::string_view userID) const override {
    return "users/" + std::string(userID) + below_;
  }
  [[nodiscard]] std::optional<std::string> query() const override { return text_; }

 private:
  std::string below_;
  std::optional<std::string> text_;
};

TEST(URLComposerTest, putsPathAndQueryBelowTheRoot) {
  struct Row {
    std::string_view root, userID, below;
    std::optional<std::string> query;
    std::string_view expected;
  };
  const Row rows[] = {
      {"https://h/sdk", "42", "/subscriptions", {}, "https://h/sdk/users/42/subscriptions"},
      {"https://h/sdk/", "42", "", {}, "https://h/sdk/users/42"},
      {"https://h/sdk?root=1", "42", "", {}, "https://h/sdk/users/42"},
      {"https://h/sdk", "42", "/devices/D1", "deviceToken=abc&appId=7",
       "https://h/sdk/users/42/devices/D1?deviceToken=abc&appId=7"},
      {"https://h/sdk", "a/b", "/c", {}, "https://h/sdk/users/a/b/c"},
      {"https://h/sdk", "", "", {}, "https://h/sdk/users/"},
      {"https://h/sdk", "a b?", "", "q=a b&c=d=e&f=100%",
       "https://h/sdk/users/a%20b%3F?q=a%20b&c=d=e&f=100%25"},
      {"https://h/sdk", "\xFF", "", {}, "absent"},
      {"https://h/sdk", "42", "", "q=\xFF", "absent"},
  };
  for (const Row& row : rows) {
    const auto url = Composer(std::string(row.below), row.query)
                         .url({*URL::parse(row.root), {}, std::string(row.userID)});
    EXPECT_EQ(url ? url->absoluteString() : "absent", row.expected);
  }
}

TEST(QueryItemsTest, joinsItemsAsTheyAre) {
  EXPECT_EQ(QueryItems().joined(), std::nullopt);
  QueryItems items;
  items.add("a", "1&=").add("b").add("c", "").add("d", -7);
  EXPECT_EQ(std::move(items).joined(), "a=1&=&b&c=&d=-7");
}

TEST(HeadersTest, ofAJSONWrite) {
  EXPECT_EQ(standardJSONHeaders(), (Headers{{"Content-Type", "application/json"},
                                            {"X-Requested-With", "XMLHttpRequest"}}));
}

using parameter::Bool, parameter::File, parameter::String, parameter::StringArray;

TEST(MultipartTest, writesOnePartPerParameterInOrder) {
  // Any byte may stand in a file, what looks like a boundary included.
  const std::string bytes("\xFF\xD8\0--boundary\r\n--\r\n\"", 20);
  const std::vector<Parameter> parameters = {String{"name", "Ann\r\n ü"},
                                             Bool{"yes", true},
                                             StringArray{"dropped", {"a", "\xFF"}},
                                             Bool{"no", false},
                                             File{"photo", "me.jpg", ContentType::jpeg, bytes},
                                             String{"", ""}};
  const auto form = multipartForm(parameters);
  ASSERT_TRUE(form.value());
  const std::string part =
      "--" + form.value()->boundary + "\r\nContent-Disposition: form-data; name=";
  EXPECT_EQ(form.value()->body,
            part + "\"name\"\r\n\r\nAnn\r\n ü\r\n" + part + "\"yes\"\r\n\r\ntrue\r\n" + part +
                "\"no\"\r\n\r\nfalse\r\n" + part +
                "\"photo\"; filename=\"me.jpg\"\r\nContent-Type: image/jpeg\r\n\r\n" + bytes +
                "\r\n" + part + "\"\"\r\n\r\n\r\n--" + form.value()->boundary + "--");
}

TEST(MultipartTest, drawsAFreshBoundaryAndNamesIt) {
  const auto first = multipartForm({});
  EXPECT_THAT(first.value()->boundary, testing::MatchesRegex("[0-9a-f]{32}"));
  EXPECT_EQ(first.value()->body, "--" + first.value()->boundary + "--");
  EXPECT_NE(first.value()->boundary, multipartForm({}).value()->boundary);

  const std::vector<Parameter> parameters = {String{"a", "b"}};
  const auto body = multipartBody(parameters);
  const std::string boundary = body.value()->bytes.substr(2, 32);
  EXPECT_EQ(body.value()->headers,
            (Headers{{"Content-Type", "multipart/form-data; boundary=" + boundary},
                     {"Content-Length", std::to_string(body.value()->bytes.size())}}));
}

TEST(MultipartTest, refusesTextsThatAreNotUTF8) {
  const std::vector<Parameter> refused = {
      String{"\xFF", "a"}, String{"a", "\xC3"}, Bool{"\xFF", true},
      File{"\xFF", "a", ContentType::jpeg, ""}, File{"a", "\xFF", ContentType::jpeg, ""}};
  for (const Parameter& parameter : refused) {
    const std::vector<Parameter> parameters = {String{"fine", ""}, parameter};
    EXPECT_EQ(multipartForm(parameters).error(), Error(DataError{}));
    EXPECT_EQ(multipartBody(parameters).error(), Error(DataError{}));
  }
}

}  // namespace
}  // namespace orvane
