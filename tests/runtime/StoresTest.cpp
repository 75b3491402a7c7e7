// SPDX-License-Identifier: Apache-2.0
// The device's identifier in its file, the expiry of user identifiers, and the loggers.
#include "tests/support/ScopedVariable.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/DefaultDeviceIdentifier.h>
#include <Orvane/Runtime/FileDeviceIdentifier.h>
#include <Orvane/Runtime/IntervalTimeMonitor.h>
#include <Orvane/Runtime/Loggers.h>
#include <Orvane/Testing/RecordingLogger.h>

#include <gmock/gmock.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <optional>
#include <set>
#include <thread>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr auto uuid = "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";

unsigned modeOf(const std::filesystem::path& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 0777U;
}

std::size_t fileCount(const TemporaryFolder& folder) {
  const std::filesystem::directory_iterator files(folder.path());
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

// What is warned of, once, while the identifier stays the same.
std::string warningOf(const DeviceIdentifier& device) {
  const RecordingLogger logger;
  const std::string identifier = device.current();
  EXPECT_THAT(identifier, MatchesRegex(uuid));
  EXPECT_EQ(device.current(), identifier);
  EXPECT_THAT(logger.lines(), SizeIs(1));
  if (logger.lines().empty()) return {};
  EXPECT_EQ(logger.lines()[0].level, Logger::Level::warning);
  return logger.lines()[0].message;
}

TEST(FileDeviceIdentifierTest, OutlivesTheProcess) {
  const TemporaryFolder folder;
  const std::string path = folder / "new/folders/device-id";
  const FileDeviceIdentifier first(path);
  EXPECT_FALSE(std::filesystem::exists(path)) << "nobody has asked yet";
  const std::string identifier = first.current();
  EXPECT_THAT(identifier, MatchesRegex(uuid));
  EXPECT_EQ(first.current(), identifier);
  EXPECT_EQ(FileDeviceIdentifier(path).current(), identifier);
  EXPECT_EQ(contentsOf(path), identifier + "\n");

  EXPECT_EQ(modeOf(path), 0600U);
  EXPECT_EQ(modeOf(folder / "new"), 0700U);
  EXPECT_EQ(modeOf(folder / "new/folders"), 0700U);
  const std::filesystem::directory_iterator files(std::filesystem::path(path).parent_path());
  EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "nothing else is to be left behind";
}

TEST(FileDeviceIdentifierTest, IsTheSameForAllWhoAskAtOnce) {
  const TemporaryFolder folder;
  std::vector<std::string> identifiers(8);
  std::vector<std::thread> threads;
  for (std::string& identifier : identifiers) {
    threads.emplace_back(
        [&] { identifier = FileDeviceIdentifier(folder / "device-id").current(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(std::set<std::string>(identifiers.begin(), identifiers.end()), SizeIs(1));
  EXPECT_EQ(fileCount(folder), 1U);
}

TEST(FileDeviceIdentifierTest, TakesAnIdentifierAsItWasWritten) {
  const TemporaryFolder folder;
  for (const std::string written :
       {"01234567-89ab-4cde-8f01-23456789abcd", "01234567-89AB-4CDE-8F01-23456789ABCD"}) {
    for (const std::string end : {"", "\n"}) {
      writeFile(folder / "device-id", written + end);
      EXPECT_EQ(FileDeviceIdentifier(folder / "device-id").current(), written);
    }
  }
}

TEST(FileDeviceIdentifierTest, ReplacesWhatIsDamaged) {
  const TemporaryFolder folder;
  const std::string path = folder / "device-id";
  for (const std::string& damaged :
       {std::string(), std::string("01234567-89ab-4cde-8f01"),
        std::string("01234567-89AB-4CDE-8F01-23456789ABCDx"), std::string(100'000, 'x')}) {
    writeFile(path, damaged);
    const FileDeviceIdentifier device(path);
    EXPECT_EQ(warningOf(device), "The device identifier was damaged and is replaced: " + path);
    EXPECT_EQ(contentsOf(path), device.current() + "\n");
    EXPECT_EQ(fileCount(folder), 1U);
  }
}

TEST(FileDeviceIdentifierTest, DoesWithoutAFileItCannotUse) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "a-folder");
  writeFile(folder / "a-file", "");
  for (const std::string& path : {folder / "a-folder", folder / "a-file/device-id"}) {
    EXPECT_THAT(warningOf(FileDeviceIdentifier(path)), HasSubstr(path));
  }
  const RecordingLogger logger;
  EXPECT_THAT(FileDeviceIdentifier("").current(), MatchesRegex(uuid));
  EXPECT_THAT(logger.lines(), IsEmpty());
}

TEST(DefaultDeviceIdentifierTest, IsWhereThePlatformKeepsState) {
  const TemporaryFolder folder;
  for (const char* name : {"home", "documents", "former"}) {
    std::filesystem::create_directory(folder / name);
  }
  writeFile(folder / "former/orvane-device-id", "");
  writeFile(folder / "file", "");
  const std::string home = folder / "home";
  const std::string named = folder / "state/orvane/device-id";
  const std::string usual = home + "/.local/state/orvane/device-id";
  const std::pair<DeviceFolders, std::string> rows[] = {
      {{.state = folder / "state", .home = home}, named},
      {{.state = folder / "state", .home = "/"}, named},
      {{.state = "relative", .home = home}, usual},
      {{.home = home}, usual},
      {{.home = home, .documents = folder / "documents"}, usual},
      {{.state = folder / "state", .home = home, .documents = folder / "former"},
       folder / "former/orvane-device-id"},
      {{}, ""},
      {{.home = "/"}, ""},
      {{.home = "//"}, ""},
      {{.home = "."}, ""},
      {{.home = folder / "nonexistent"}, ""},
      {{.home = folder / "file"}, ""},
      {{.home = "/", .documents = folder / "documents"}, folder / "documents/orvane-device-id"},
      {{.home = "/", .documents = folder / "nonexistent"}, ""},
  };
  for (const auto& [folders, file] : rows) {
    EXPECT_EQ(defaultDeviceIdentifierFile(folders), file)
        << folders.state << ' ' << folders.home << ' ' << folders.documents;
  }
}

TEST(DefaultDeviceIdentifierTest, IsFoundThroughTheEnvironment) {
  const TemporaryFolder folder;
  const RecordingLogger logger;
  const ScopedVariable home("HOME", folder.path().string());
  const ScopedVariable state("XDG_STATE_HOME", "relative");
  const std::string identifier = DefaultDeviceIdentifier("").current();
  EXPECT_THAT(identifier, MatchesRegex(uuid));
  EXPECT_EQ(DefaultDeviceIdentifier("").current(), identifier);
  EXPECT_EQ(contentsOf(folder / ".local/state/orvane/device-id"), identifier + "\n");
  for (const char* made : {".local", ".local/state", ".local/state/orvane"}) {
    EXPECT_EQ(modeOf(folder / made), 0700U) << made;
  }
  EXPECT_THAT(logger.lines(), IsEmpty());

  const passwd* user = ::getpwuid(::geteuid());
  ASSERT_NE(user, nullptr);
  for (const std::optional<std::string>& none :
       {std::optional<std::string>(), {""}, {"relative"}}) {
    const ScopedVariable homeless("HOME", none);
    EXPECT_EQ(DeviceFolders::ofTheSystem("").home, user->pw_dir);
  }
}

TEST(DefaultDeviceIdentifierTest, SaysOnceThatItEndsWithTheProcess) {
  const TemporaryFolder folder;
  writeFile(folder / "file", "");
  const ScopedVariable home("HOME", folder / "nonexistent");
  const std::pair<std::optional<std::string>, std::string> rows[] = {
      {std::nullopt, folder / "nonexistent"}, {folder / "file", folder / "file/orvane/device-id"}};
  for (const auto& [state, place] : rows) {
    const ScopedVariable stateHome("XDG_STATE_HOME", state);
    EXPECT_THAT(warningOf(DefaultDeviceIdentifier("")),
                AllOf(HasSubstr("ends with the process"), HasSubstr(place)));
  }
  EXPECT_EQ(fileCount(folder), 1U) << "no home is made";
}

TEST(IntervalTimeMonitorTest, ExpiresAfterItsInterval) {
  TimeMonitor::TimePoint now{};
  const IntervalTimeMonitor monitor(std::chrono::hours(1), [&] { return now; });
  const TimeMonitor::TimePoint stored = monitor.now();
  EXPECT_FALSE(monitor.hasExpired(stored));
  now += std::chrono::minutes(60) - std::chrono::nanoseconds(1);
  EXPECT_FALSE(monitor.hasExpired(stored));
  now += std::chrono::nanoseconds(1);
  EXPECT_TRUE(monitor.hasExpired(stored));
  EXPECT_FALSE(monitor.hasExpired(monitor.now()));
  const auto never = std::chrono::milliseconds::max();
  EXPECT_FALSE(IntervalTimeMonitor(never, [&] { return now; }).hasExpired(stored));
}

TEST(LoggersTest, WriteFromTheLeastLevelUp) {
  using enum Logger::Level;
  const Logger::Level levels[] = {information, warning, error};  // the least first
  for (std::size_t least = 0; least < std::size(levels); ++least) {
    for (std::size_t level = 0; level < std::size(levels); ++level) {
      testing::internal::CaptureStderr();
      StandardErrorLogger(levels[least]).write({levels[level], "what happened", "f.cpp", "f", 7});
      EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), level < least)
          << least << ' ' << level;
    }
  }
}

TEST(LoggersTest, SayWhenWhatAndWhere) {
  testing::internal::CaptureStderr();
  StandardErrorLogger().write({Logger::Level::warning, "what happened", "File.cpp", "f()", 7});
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              MatchesRegex("20[0-9]{2}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\\.[0-9]{3}Z warning: "
                           "what happened \\(File\\.cpp:7, f\\(\\)\\)\n"));

  std::vector<std::string> messages;
  FunctionLogger([&](const Logger::Entry& entry) {
    messages.emplace_back(entry.message);
  }).write({Logger::Level::error, "message", "", "", 0});
  EXPECT_THAT(messages, testing::ElementsAre("message"));
}

}  // namespace
}  // namespace orvane
