// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TemporaryFolder.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Files.h>
#include <Orvane/Platform/URL.h>
#include <Orvane/Testing/Device.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace orvane {
namespace {

TEST(FilesTest, namesFoldersAmongTheDocuments) {
  const std::string here = std::filesystem::current_path().string();
  const std::pair<std::string, std::string> rows[] = {
      {"/home/ann/Documents", "/home/ann/Documents/firmware"},
      {"/home/ann/Documents/", "/home/ann/Documents/firmware"},
      {"documents", here + "/documents/firmware"},
  };
  for (const auto& [documents, folder] : rows) {
    const ScopedDeviceSettings settings({.documentsDirectory = documents});
    EXPECT_EQ(documentsFolder("firmware"), folder);
  }
}

TEST(FilesTest, createsFoldersAboveToo) {
  const TemporaryFolder temporary;
  const std::string folder = temporary / "a/b/c";
  EXPECT_FALSE(createFolder(folder));
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_FALSE(createFolder(folder));

  writeFile(temporary / "file", "");
  EXPECT_EQ(createFolder(temporary / "file/below"), std::errc::not_a_directory);
}

TEST(FilesTest, turnsPathsIntoURLsAndBack) {
  const std::pair<std::string, std::string> rows[] = {
      {"/home/ann/firmware", "file:///home/ann/firmware"},
      {"/a b/100%/x?y#z", "file:///a%20b/100%25/x%3Fy%23z"},
      {"/Grüezi/", "file:///Gr%C3%BCezi/"},
      {"/", "file:///"},
  };
  for (const auto& [path, text] : rows) {
    const std::optional<URL> url = URL::fromFilePath(path);
    ASSERT_TRUE(url) << path;
    EXPECT_EQ(url->absoluteString(), text);
    EXPECT_EQ(url->filePath(), path);
  }
  for (const std::string_view path : {"", "relative", "./x", "/\xC3("}) {
    EXPECT_EQ(URL::fromFilePath(path), std::nullopt) << path;
  }
}

TEST(FilesTest, tellsFilesOfThisMachineOnly) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"file://localhost/a", "/a"},      {"file:/a", "/a"},          {"FILE:///a", "/a"},
      {"file://server/a", std::nullopt}, {"https:/a", std::nullopt}, {"/a", std::nullopt},
  };
  for (const auto& [text, path] : rows) EXPECT_EQ(URL::parse(text)->filePath(), path) << text;
}

}  // namespace
}  // namespace orvane
