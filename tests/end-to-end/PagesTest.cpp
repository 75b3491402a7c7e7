// SPDX-License-Identifier: Apache-2.0
// The commands and programs that stand on the project's pages, run as they stand: beside a sandbox
// that has been started as the pages say, with the settings that it prints.
#include "CommandLine.h"
#include "SandboxProcess.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::test {
namespace {

struct Block {
  std::string place;
  std::string script;
};

// What other tests hold, and what stays until it is ended.
bool isRunElsewhere(std::string_view line) {
  for (const std::string_view start :
       {"./dev", "cmake ", "  -DORVANE", "apt ", "export PATH=", "source "}) {
    if (line.starts_with(start)) return true;
  }
  const std::string_view command = line.substr(0, line.find(" #"));
  const auto end = command.find_last_not_of(' ');
  return command.substr(0, end + 1) == "orvane-sandbox" ||
         line.find("| source") != std::string_view::npos;
}

// The shell's blocks of a page, without what is run elsewhere. Programs go by their names.
std::vector<Block> blocksOf(const std::string& page) {
  std::vector<Block> blocks;
  std::ifstream text(std::string(ORVANE_SOURCE_DIR) + "/" + page);
  bool isInside = false;
  std::size_t number = 0;
  for (std::string line; std::getline(text, line);) {
    ++number;
    if (line == "```sh") {
      isInside = true;
      blocks.push_back({page + ":" + std::to_string(number), "set -eu\n"});
      continue;
    }
    if (line == "```") isInside = false;
    if (!isInside) continue;
    for (const std::string folder : {"tools/cli/", "tools/sandbox/", "examples/"}) {
      const std::string path = "build/release/" + folder;
      for (auto at = line.find(path); at != std::string::npos; at = line.find(path)) {
        line.erase(at, path.size());
      }
    }
    if (!isRunElsewhere(line)) blocks.back().script += line + "\n";
  }
  return blocks;
}

std::vector<std::string> pages() {
  std::vector<std::string> pages;
  for (const std::string folder : {"", "docs/", "docs/guides/"}) {
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(ORVANE_SOURCE_DIR) + "/" + folder)) {
      if (entry.path().extension() != ".md") continue;
      pages.push_back(folder + entry.path().filename().string());
    }
  }
  std::ranges::sort(pages);
  return pages;
}

std::string folderOf(const char* program) {
  return std::filesystem::path(program).parent_path().string();
}

TEST(PagesTest, commandsWorkAsTheyStand) {
  // As many weeks as a sandbox has unless it is told: the pages speak of a month.
  const SandboxProcess sandbox({"--weeks", "8"});
  const TemporaryFolder folder;
  std::filesystem::create_directory_symlink(sandbox.folder() / "data",
                                            folder / "orvane-sandbox-data");
  std::filesystem::create_directory(folder / "build");
  std::filesystem::create_symlink(std::filesystem::path(ORVANE_PAGES_FOLDER) / "first-program",
                                  folder / "build/hello");
  const char* path = std::getenv("PATH");
  const Environment environment{
      {"PATH", folderOf(ORVANE_CLI_EXECUTABLE) + ":" + folderOf(ORVANE_SANDBOX_EXECUTABLE) + ":" +
                   ORVANE_EXAMPLES_FOLDER + ":" + (path == nullptr ? "" : path)},
      {"HOME", folder.path().string()},
      {"ORVANE_BASE_URL", sandbox.baseURL()},
      {"ORVANE_CA_FILE", sandbox.caFile()},
      {"ORVANE_API_KEY", sandbox.apiKey()},
      {"ORVANE_TOKEN", sandbox.developmentToken()}};
  int count = 0;
  for (const std::string& page : pages()) {
    for (const Block& block : blocksOf(page)) {
      const Ending ending = run(
          "/bin/sh", {"-c", "cd '" + folder.path().string() + "'\n" + block.script}, environment);
      EXPECT_EQ(ending.exitCode, 0) << block.place << '\n' << block.script << ending.errors;
      count += block.script.find('\n') + 1 < block.script.size() ? 1 : 0;
    }
  }
  EXPECT_GE(count, 5) << "the pages' commands are not found";
}

TEST(PagesTest, programsDoWhatTheySay) {
  const SandboxProcess sandbox({"--weeks", "2"});
  const Environment environment{{"ORVANE_BASE_URL", sandbox.baseURL()},
                                {"ORVANE_CA_FILE", sandbox.caFile()},
                                {"ORVANE_TOKEN", sandbox.developmentToken()}};
  for (const auto& [program, output] : {
           std::pair{"README", "([0-9]+\n){20}"},
           std::pair{"first-program", "Hello Anna\n"},
           std::pair{"coroutines", "The latest trips of Anna:\n([0-9]+: [0-9.]+\n)+"},
       }) {
    const std::string path = std::string(ORVANE_PAGES_FOLDER) + "/" + program;
    const Ending ending = run(path, {}, environment);
    EXPECT_EQ(ending.exitCode, 0) << program;
    EXPECT_THAT(ending.output, testing::MatchesRegex(output)) << program;
    EXPECT_EQ(ending.errors, "") << program;

    const Ending refused = run(path, {}, with(environment, {{"ORVANE_TOKEN", "nobody's"}}));
    EXPECT_EQ(refused.exitCode, 1) << program;
    EXPECT_THAT(refused.errors, testing::HasSubstr("401")) << program;
  }
}

}  // namespace
}  // namespace orvane::test
