// SPDX-License-Identifier: Apache-2.0
// Command lines as far as they go, what was meant by them, and what must not be shown of URLs.
#include "CommandWords.h"
#include "Completion.h"
#include "ExchangeLog.h"
#include "Help.h"
#include "ServerProbe.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace orvane::cli {
namespace {

using Words = std::vector<std::string>;

TEST(CommandWordsTest, KnowsWhatWasMeant) {
  const Words known{"user", "trips", "--expand", "--from", "--format", "show"};
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"usr", "user"},           {"shwo", "show"},     {"trip", "trips"},
      {"--expnad", "--expand"},  {"--form", "--from"}, {"--forma", "--format"},
      {"nothing", std::nullopt}, {"", std::nullopt},
  };
  for (const auto& [word, meant] : rows) EXPECT_EQ(nearestOf(known, word), meant) << word;
}

TEST(CommandWordsTest, ReadsUnfinishedLines) {
  const CommandSet set = describedCommands();
  const auto pathOf = [&](const Words& words) {
    const CommandWords read(set, words);
    std::string path = read.resource != nullptr ? read.resource->name() : "-";
    if (read.verb != nullptr) path += " " + std::string(read.verb->name());
    path += " " + std::to_string(read.positionals);
    return path + (read.awaiting ? " " + read.awaiting->name : "");
  };
  const std::pair<Words, const char*> rows[] = {
      {{}, "- 0"},
      {{"--timeout", "trips", "user"}, "user 0"},
      {{"--timeout=5", "--sandbox", "user", "show", "--json", "7"}, "user show 1"},
      {{"user", "show", "--expand"}, "user show 0 --expand"},
      {{"completion", "words", "--", "trips", "--from"}, "completion words 2"},
      {{"location", "x"}, "location location 1"},
      {{"nonsense", "user"}, "user 0"},
  };
  for (const auto& [words, path] : rows) EXPECT_EQ(pathOf(words), path);
}

TEST(CompletionTest, TakesLinesApartAsShellsDo) {
  const std::pair<const char*, Words> rows[] = {
      {"", {""}},
      {"orvane user ", {"orvane", "user", ""}},
      {"a  'b c' \"d e\"f g\\ h", {"a", "b c", "d ef", "g h"}},
      {"a 'b ", {"a", "b "}},
  };
  for (const auto& [line, words] : rows) EXPECT_EQ(shellWords(line), words) << line;
}

TEST(HelpTest, FitsEveryWidth) {
  const CommandSet set = describedCommands();
  std::vector<Words> commands{{}};
  for (const Resource& resource : set.resources) {
    commands.push_back({resource.name()});
    for (const auto& verb : resource.verbs()) {
      commands.push_back({resource.name(), std::string(verb->name())});
    }
  }
  for (const std::size_t columns : {40U, 80U, 200U}) {
    for (const Words& command : commands) {
      std::istringstream lines(helpText(set, CommandWords(set, command), columns));
      for (std::string line; std::getline(lines, line);) {
        // What has no blank to break at stays whole: an address, a quoted text.
        const std::size_t text = line.find_first_not_of(' ');
        const bool isWord = text != std::string::npos &&
                            (line.find(' ', text) == std::string::npos ||
                             line.find('\'') != std::string::npos || line.ends_with(" \\"));
        EXPECT_TRUE(columnsOf(line) <= columns || isWord) << columns << ": " << line;
      }
    }
  }
}

TEST(ExchangeLogTest, BlanksTheValuesOfQueries) {
  const std::pair<const char*, const char*> rows[] = {
      {"https://h/p", "https://h/p"},
      {"https://h/p?a=1&b=&secret&c=x=y#z", "https://h/p?a=…&b=…&…&c=…"},
      {"https://h/p?", "https://h/p?…"},
      {"https://h/p?a=…", "https://h/p?a=…"},
  };
  for (const auto& [url, shown] : rows) EXPECT_EQ(withoutValues(url), shown);
}

TEST(ServerProbeTest, FindsTheAddressInAURL) {
  struct Row {
    const char* url;
    const char* host;
    std::uint16_t port;
    bool isLoopback;
  };
  for (const Row& row : {Row{"https://telematics.example", "telematics.example", 443, false},
                         Row{"https://h:8443/path", "h", 8443, false},
                         Row{"http://127.0.0.1:80", "127.0.0.1", 80, true},
                         Row{"https://127.example/", "127.example", 443, false},
                         Row{"https://[::1]:8443", "::1", 8443, true}}) {
    const auto address = addressIn(row.url);
    ASSERT_TRUE(address) << row.url;
    EXPECT_EQ(address->host, row.host);
    EXPECT_EQ(address->port, row.port);
    EXPECT_EQ(address->isLoopback(), row.isLoopback);
  }
  for (const char* url : {"", "telematics.example", "ftp://h", "https://", "https://:8443",
                          "https://h:0", "https://h:65536", "https://h:x", "https://[::1"}) {
    EXPECT_FALSE(addressIn(url)) << url;
  }
  EXPECT_EQ(secondsOfDate("Sun, 06 Nov 1994 08:49:37 GMT"), 784111777);
  EXPECT_EQ(secondsOfDate("yesterday"), std::nullopt);
}

}  // namespace
}  // namespace orvane::cli
