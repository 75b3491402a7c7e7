// SPDX-License-Identifier: Apache-2.0
// Content texts and firmware, as they are reached from a shell.
#include "CommandLine.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* packageName = "DFU_4417_Release___2_2_2.zip";

CommandRow failing(Words arguments, int code, const std::string& said) {
  return {std::move(arguments), code, IsEmpty(), AllOf(IsOneLine(), HasSubstr(said))};
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ContentCommandsTest, PrintsTextsInTheLanguageAskedFor) {
  SandboxProcess sandbox;
  const auto title = [](Words more) {
    more.insert(more.begin(), {"content", "get", "privacyPolicy.page.title"});
    return more;
  };
  check(
      {
          {title({}), 0, "Privacy policy\n"},
          {title({"--lang", "de_CH,en"}), 0, "Datenschutzerklärung\n"},
          {title({"--lang", "rm,fr-CH"}), 0, "Politique de confidentialité\n"},
          {title({"--lang", "de", "--json"}), 0, "{\n  \"body\": \"Datenschutzerklärung\"\n}\n"},
          // A text's lines stay lines.
          {{"content", "get", "reject.terms.and.conditions.email.template.plain.content"},
           0,
           "Dear driver,\n\nyou have declined the terms. Should you change your mind, just open "
           "the "
           "app again.\n"},
          failing({"content", "get", "unknownKeyForTestingPurposes"}, 44, "does not know"),
          failing({"content", "get", "privacyPolicy.page"}, 64, "orvane content keys"),
          failing({"content", "get"}, 64, "KEY is required"),
          failing(title({"--lang", "de\r\nX-Injected: yes"}), 20, "formed"),
          failing(title({"--lang", "\xC3("}), 20, "formed"),
      },
      settingsOf(sandbox));
  sandbox.misbehave({{"body", "emptyObject"}, {"path", "i18nContent"}});
  check({{title({}), 0, IsEmpty()}, {title({"--format", "compact"}), 0, "{}\n"}},
        settingsOf(sandbox));
}

TEST(ContentCommandsTest, ListsTheKeysWithoutABackend) {
  const Ending list = orvane({"content", "keys"});
  EXPECT_EQ(list.exitCode, 0) << list.errors;
  EXPECT_EQ(std::count(list.output.begin(), list.output.end(), '\n'), 32);
  EXPECT_THAT(list.output,
              AllOf(StartsWith("mobileApp.activation.agreement.terms\n"),
                    HasSubstr("\naccept.terms.and.conditions.email.template.subjec\n"),
                    HasSubstr("\naccept.terms.and.conditions.email.template.html.content\n")));
  const nlohmann::json json = nlohmann::json::parse(orvane({"content", "keys", "--json"}).output);
  EXPECT_EQ(json.size(), 32U);
  EXPECT_EQ(json.at(14), "faq.page.title");
}

class FirmwareCommandsTest : public testing::Test {
 protected:
  // A signed-in person is not needed, nor a backend.
  [[nodiscard]] Environment settings() const {
    return {{"ORVANE_FIRMWARE_HOST", sandbox_.baseURL()},
            {"ORVANE_CA_FILE", sandbox_.caFile()},
            {"ORVANE_DOCUMENTS_DIR", documents_.path()}};
  }

  [[nodiscard]] std::string folder() const { return documents_.path() + "/firmware"; }
  [[nodiscard]] std::string target() const { return folder() + "/" + packageName; }
  [[nodiscard]] std::string partial() const { return target() + ".part"; }
  [[nodiscard]] std::string published() const {
    return contentsOf(sandbox_.folder().path() + "/data/" + packageName);
  }
  [[nodiscard]] std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }
  // What a download prints.
  [[nodiscard]] CommandRow downloading() const {
    return {{"firmware", "download"}, 0, "version\t2.2.2\nfile\t" + target() + "\n"};
  }

  SandboxProcess sandbox_;
  const TemporaryFolder documents_;
};

TEST_F(FirmwareCommandsTest, TellsNewerVersions) {
  sandbox_.behave();
  check(
      {
          {{"firmware", "check", "2.2.1"}, 0, "published version\t2.2.2\nupdate\tyes\n"},
          {{"firmware", "check", "2.2.2"}, 0, HasSubstr("update\tno\n")},
          {{"firmware", "check", "2.10", "--format", "compact"},
           0,
           "{\"publishedVersion\":\"2.2.2\",\"updateIsAvailable\":false}\n"},
          failing({"firmware", "check"}, 64, "VERSION is required"),
          failing({"firmware", "check", ""}, 64, "'' is not a version"),
          failing({"firmware", "check", "v2.2.1"}, 64, "'v2.2.1' is not a version"),
          failing({"firmware", "check", "2..1"}, 64, "is not a version"),
          failing({"firmware", "check", "2.1", "--firmware-host", "no host"}, 78, "firmwareHost"),
      },
      settings());
  EXPECT_THAT(sandbox_.arrivals(), IsEmpty()) << "nothing is asked";
  // A folder that can't be made is of no matter here, and is not told among the answers.
  const std::string file = documents_.write("file", "");
  check({{{"firmware", "check", "2.2.1", "--json", "--documents-dir", file},
          0,
          "{\n  \"publishedVersion\": \"2.2.2\",\n  \"updateIsAvailable\": true\n}\n"}},
        settings());
}

TEST_F(FirmwareCommandsTest, ReplacesAFormerPackage) {
  check({downloading()}, settings());
  EXPECT_EQ(contentsOf(target()), published());
  std::ofstream(target()) << "former";
  // From the file of settings, too.
  const std::string file = documents_.write(
      "config", "firmware-host = " + sandbox_.baseURL() + "\nca-file = " + sandbox_.caFile() +
                    "\ndocuments-dir = " + documents_.path() + "\n");
  check({{{"firmware", "download", "--config", file, "--format", "compact"},
          0,
          "{\"version\":\"2.2.2\",\"file\":\"" + target() + "\"}\n"}},
        {});
  EXPECT_EQ(contentsOf(target()), published());
  EXPECT_THAT(files(), ElementsAre(packageName));
}

TEST_F(FirmwareCommandsTest, TellsFailuresAndKeepsTheFormerPackage) {
  ASSERT_TRUE(std::filesystem::create_directory(folder()));
  std::ofstream(target()) << "former";
  const std::string file = documents_.write("file", "");
  const auto downloadingWith = [](Words more) {
    more.insert(more.begin(), {"firmware", "download"});
    return more;
  };
  Environment homeless = settings();
  homeless.erase("ORVANE_DOCUMENTS_DIR");
  check({failing(downloadingWith({}), 78, "--documents-dir")}, homeless);
  check(
      {
          failing(downloadingWith({"--firmware-host", "https://orvane.invalid"}), 10, "looked up"),
          failing(downloadingWith({"--firmware-host", "https://127.0.0.1:1"}), 11, "reached"),
          failing(downloadingWith({"--ca-file", "/etc/ssl/certs/ca-certificates.crt"}), 12, ""),
          failing(downloadingWith({"--firmware-host", "mailto:nobody"}), 20, "formed"),
          failing(downloadingWith({"--firmware-host", sandbox_.baseURL() + "/store"}), 44, "(404)"),
          failing(downloadingWith({"--documents-dir", file}), 74, "Not a directory"),
          failing(downloadingWith({"--firmware-host", "http://firmware.example"}), 78, "http"),
      },
      settings());
  sandbox_.misbehave({{"status", 503}, {"path", "downloads"}});
  check({failing(downloadingWith({}), 50, "(503)")}, settings());
  sandbox_.behave();
  sandbox_.misbehave({{"delayMs", 60000}, {"path", "downloads"}});
  check({failing(downloadingWith({"--timeout", "0.9"}), 13, "")}, settings());
  EXPECT_EQ(contentsOf(target()), "former");
  EXPECT_THAT(files(), ElementsAre(packageName));
}

// Waits until `path` is opened, or made in its folder.
class Opening {
 public:
  explicit Opening(const std::string& path) : descriptor_(::inotify_init1(IN_CLOEXEC)) {
    EXPECT_GE(::inotify_add_watch(descriptor_, path.c_str(), IN_OPEN), 0) << path;
  }
  ~Opening() { ::close(descriptor_); }
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;

  [[nodiscard]] bool wait() const {
    pollfd polled{descriptor_, POLLIN, 0};
    const auto limit = std::chrono::milliseconds(patience).count();
    return ::poll(&polled, 1, static_cast<int>(limit)) == 1;
  }

 private:
  int descriptor_;
};

TEST_F(FirmwareCommandsTest, GoesOnFromWhereItWasCutOffOrCancelled) {
  ASSERT_TRUE(std::filesystem::create_directory(folder()));
  std::ofstream(target()) << "former";
  sandbox_.misbehave({{"cutAfterBytes", 700000}, {"path", "downloads"}});
  check({failing({"firmware", "download"}, 14, "")}, settings());
  EXPECT_EQ(contentsOf(target()), "former");
  EXPECT_EQ(contentsOf(partial()), published().substr(0, 700000));

  sandbox_.behave();
  sandbox_.misbehave({{"delayMs", 60000}, {"path", "downloads"}});
  for (const int signal : {SIGINT, SIGTERM}) {
    const Opening opening(partial());
    Process process(ORVANE_CLI_EXECUTABLE, {"firmware", "download"}, settings(),
                    Process::Streams::captured);
    ASSERT_TRUE(opening.wait());
    process.send(signal);
    const Ending ending = process.wait();
    EXPECT_EQ(ending.exitCode, 130);
    EXPECT_THAT(ending.output, IsEmpty());
    EXPECT_EQ(ending.errors, "orvane: cancelled\n");
    EXPECT_EQ(contentsOf(target()), "former");
    EXPECT_EQ(contentsOf(partial()).size(), 700000U);
  }

  sandbox_.behave();
  check({downloading()}, settings());
  EXPECT_THAT(sandbox_.arrivals(), ElementsAre(SandboxProcess::Arrival{
                                       std::string("GET /downloads/") + packageName, 206}));
  EXPECT_EQ(contentsOf(target()), published());
  EXPECT_THAT(files(), ElementsAre(packageName));
}

TEST_F(FirmwareCommandsTest, ShowsProgressOnATerminalOnly) {
  const std::string command = std::string(ORVANE_CLI_EXECUTABLE) + " firmware download";
  const auto onTerminal = [&](const std::string& line, const char* terminal) {
    // Standard output goes to a file: the terminal shows standard error.
    return run("/usr/bin/script",
               {"-qec", line + " > " + documents_.path() + "/output", "/dev/null"},
               with(settings(), {{"TERM", terminal}, {"SHELL", "/bin/sh"}}));
  };
  const Ending shown = onTerminal(command, "xterm");
  EXPECT_EQ(shown.exitCode, 0) << shown.output;
  EXPECT_THAT(shown.output,
              AllOf(ContainsRegex("\rr?\x1b\\[Kfirmware \\[#*\\.+\\] +[0-9]+ %"),
                    HasSubstr("firmware [########################################] 100 %  2.0 of "
                              "2.0 MB\r\x1b[K")));
  EXPECT_TRUE(shown.output.ends_with("\r\x1b[K")) << "the bar goes";
  EXPECT_THAT(contentsOf(documents_.path() + "/output"), Not(HasSubstr("\x1b")));
  EXPECT_THAT(onTerminal(command, "dumb").output, IsEmpty());
  EXPECT_THAT(onTerminal(command + " --json 2>/dev/null", "xterm").output, IsEmpty());

  sandbox_.misbehave({{"cutAfterBytes", 700000}, {"path", "downloads"}});
  std::filesystem::remove(target());
  const Ending cut = onTerminal(command, "xterm");
  EXPECT_EQ(cut.exitCode, 14);
  EXPECT_THAT(cut.output, ContainsRegex("\x1b\\[Korvane: [^\r\n]*\r\n$"));
}

}  // namespace
}  // namespace orvane::test
