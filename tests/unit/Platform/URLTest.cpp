// SPDX-License-Identifier: Apache-2.0
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/URL.h>

#include <optional>
#include <string>
#include <string_view>

namespace orvane {
namespace {

std::string text(const std::optional<URL>& url) { return url ? url->absoluteString() : "absent"; }

TEST(URLTest, refusesWhatRFC3986DoesNotAllow) {
  for (const std::string_view refused : {"",
                                         " ",
                                         "a b",
                                         "https://h/ä",
                                         "https://h/%",
                                         "https://h/%2",
                                         "https://h/%zz",
                                         "https://[::1",
                                         "https://h:port/",
                                         "https://h:8x/",
                                         "https://[::1]x",
                                         "http://a b/",
                                         "https://h/a\nb",
                                         "https://h/<>",
                                         "https://h/\\",
                                         "1http://h",
                                         "https://h/\x7f",
                                         "https://h_ /",
                                         "https://h/|",
                                         "https://h\x80/"}) {
    EXPECT_EQ(text(URL::parse(refused)), "absent") << refused;
  }
  for (const std::string_view taken :
       {"https://h", "HTTPS://H/%41?q#f", "a", "/a", "?q", "#f", "//h", "https://u:p@h:8/",
        "https://[2001:db8::1]:8443/a", "https://h?", "mailto:ann@example.org",
        "https://h/a//b/./.."}) {
    EXPECT_EQ(text(URL::parse(taken)), taken);
  }
}

TEST(URLTest, tellsItsParts) {
  struct Row {
    std::string_view url, scheme, host, path;
    std::optional<std::string> query;
  };
  const Row rows[] = {
      {"HTTPS://Host.example:8/a%20b?q=%41#f", "https", "Host.example", "/a%20b", "q=%41"},
      {"https://[2001:db8::1]:8443/a", "https", "2001:db8::1", "/a", std::nullopt},
      {"http://h%C3%A4?", "http", "h\xC3\xA4", "", ""},
      {"a/b", "", "", "a/b", std::nullopt},
      {"//host/a", "", "host", "/a", std::nullopt},
      {"https:///a", "https", "", "/a", std::nullopt},
      {"https://:80/a", "https", "", "/a", std::nullopt},
      {"mailto:ann@example.org", "mailto", "", "ann@example.org", std::nullopt},
      // Taken by its characters alone, and taken apart all the same.
      {"https://images.example/a-1/~b.jpg", "https", "images.example", "/a-1/~b.jpg", std::nullopt},
      {"https://1.2.3.256//!$&'()*+,;=:@_", "https", "1.2.3.256", "//!$&'()*+,;=:@_", std::nullopt},
      {"https://-..-", "https", "-..-", "", std::nullopt},
      {"https://7/", "https", "7", "/", std::nullopt},
  };
  for (const Row& row : rows) {
    const URL url = *URL::parse(row.url);
    EXPECT_EQ(url.scheme(), row.scheme) << row.url;
    EXPECT_EQ(url.host(), row.host) << row.url;
    EXPECT_EQ(url.hasHost(), !row.scheme.empty() && !row.host.empty()) << row.url;
    EXPECT_EQ(url.path(), row.path) << row.url;
    EXPECT_EQ(url.query(), row.query) << row.url;
  }
}

TEST(URLTest, appendsAPathComponentWithExactlyOneSlash) {
  struct Row {
    std::string_view url, component, expected;
  };
  const Row rows[] = {
      {"https://h", "users/42", "https://h/users/42"},
      {"https://h/", "users/42", "https://h/users/42"},
      {"https://h/root", "/users/42", "https://h/root/users/42"},
      {"https://h/root//", "//users", "https://h/root/users"},
      {"https://h/root", "users/", "https://h/root/users/"},
      {"https://h/root", "a/b//c", "https://h/root/a/b//c"},
      {"https://h/root", "../a/./b", "https://h/root/../a/./b"},
      {"https://h/root", "", "https://h/root/"},
      {"https://h/root?q=1", "a", "https://h/root/a?q=1"},
      {"https://h/root/#f/g", "a", "https://h/root/a#f/g"},
      {"https://h?q=/", "a", "https://h/a?q=/"},
      {"https://[::1]:8443", "a", "https://[::1]:8443/a"},
      {"https://h/%2F", "b", "https://h/%2F/b"},
      {"https://h", "a b%20?#[]\"<>\\^`{|}",
       "https://h/a%20b%2520%3F%23%5B%5D%22%3C%3E%5C%5E%60%7B%7C%7D"},
      {"https://h", "-._~!$&'()*+,;=:@", "https://h/-._~!$&'()*+,;=:@"},
      {"https://h", "Z\xC3\xBCrich\xE2\x82\xAC", "https://h/Z%C3%BCrich%E2%82%AC"},
      {"https://h", std::string_view("a\0b\n", 4), "https://h/a%00b%0A"},
      {"https://h", "a\xFF", "absent"},
      {"https://h", "\xC0\xAF", "absent"},
      {"https://h", "\xED\xA0\x80", "absent"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(text(URL::parse(row.url)->appendingPathComponent(row.component)), row.expected)
        << row.url << " + " << row.component;
  }
}

TEST(URLTest, setsAQueryEncodingWhatItMayNotContain) {
  struct Row {
    std::string_view url;
    std::optional<std::string_view> query;
    std::string_view expected;
  };
  const Row rows[] = {
      {"https://h/a", "b=c&d=e", "https://h/a?b=c&d=e"},
      {"https://h/a?old#f", "new", "https://h/a?new#f"},
      {"https://h/a?old#f?g", std::nullopt, "https://h/a#f?g"},
      {"https://h/a?", std::nullopt, "https://h/a"},
      {"https://h", "", "https://h?"},
      {"https://h", "a=b=c+/?&@:", "https://h?a=b=c+/?&@:"},
      {"https://h", "a b%41#\"[]\xC3\xBC", "https://h?a%20b%2541%23%22%5B%5D%C3%BC"},
      {"https://h", "a=\xFF", "absent"},
      {"?old", std::nullopt, "absent"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(text(URL::parse(row.url)->settingQuery(row.query)), row.expected)
        << row.url << " ? " << row.query.value_or("none");
  }
}

}  // namespace
}  // namespace orvane
