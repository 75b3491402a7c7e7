// SPDX-License-Identifier: Apache-2.0
// Content texts and firmware, as they are reached from a shell.
#include "CommandLine.h"

#include <sys/inotify.h>

#include <csignal>
#include <filesystem>

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

TEST(ContentCommandsTest, PrintsTextsInTheLanguageAskedFor) {
  SandboxProcess sandbox;
  const std::string title = "content get privacyPolicy.page.title";
  check(
      {
          prints(title, "Privacy policy\n"),
          prints(title + " --lang de_CH,en", "Datenschutzerklärung\n"),
          prints(title + " --lang rm,fr-CH", "Politique de confidentialité\n"),
          prints(title + " --lang de --json",
                 HasSubstr("\n  \"body\": \"Datenschutzerklärung\"\n}\n")),
          // A text's lines stay lines.
          prints("content get reject.terms.and.conditions.email.template.plain.content",
                 "Dear driver,\n\nyou have declined the terms. Should you change your mind, just "
                 "open the "
                 "app again.\n"),
          fails("content get unknownKeyForTestingPurposes", 44, "does not know"),
          fails("content get privacyPolicy.page", 64, "orvane content keys"),
          fails("content get", 64, "KEY is required"),
          fails(title + " --lang 'de\r\nX-Injected: yes'", 20, "formed"),
          fails(title + " --lang \xC3(", 20, "formed"),
      },
      settingsOf(sandbox));
  sandbox.misbehave({{"body", "emptyObject"}, {"path", "i18nContent"}});
  check({prints(title, IsEmpty()), prints(title + " --format compact", "{}\n")},
        settingsOf(sandbox));
}

TEST(ContentCommandsTest, ListsTheKeysWithoutABackend) {
  check({prints("content keys",
                AllOf(StartsWith("mobileApp.activation.agreement.terms\n"),
                      has("\naccept.terms.and.conditions.email.template.subjec\n",
                          "\naccept.terms.and.conditions.email.template.html.content\n")))},
        {});
  const nlohmann::json keys = jsonOf("content keys", {});
  EXPECT_EQ(keys.size(), 32U);
  EXPECT_EQ(keys.at(14), "faq.page.title");
}

class FirmwareCommandsTest : public testing::Test {
 protected:
  // A signed-in person is not needed, nor a backend.
  [[nodiscard]] Environment settings() const {
    return {{"ORVANE_FIRMWARE_HOST", sandbox_.baseURL()},
            {"ORVANE_CA_FILE", sandbox_.caFile()},
            {"ORVANE_DOCUMENTS_DIR", documents_.path()}};
  }

  [[nodiscard]] std::string folder() const { return documents_ / "firmware"; }
  [[nodiscard]] std::string target() const { return folder() + "/" + packageName; }
  [[nodiscard]] std::string partial() const { return target() + ".part"; }
  [[nodiscard]] std::string published() const {
    return contentsOf(sandbox_.folder() / "data" + "/" + packageName);
  }
  [[nodiscard]] std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }
  void putFormer() const {
    std::filesystem::create_directory(folder());
    writeFile(target(), "former");
  }
  // What a download prints.
  [[nodiscard]] CommandRow downloading() const {
    return prints("firmware download", "version\t2.2.2\nfile\t" + target() + "\n");
  }

  SandboxProcess sandbox_;
  const TemporaryFolder documents_;
};

TEST_F(FirmwareCommandsTest, TellsNewerVersions) {
  sandbox_.behave();
  check(
      {
          prints("firmware check 2.2.1", "published version\t2.2.2\nupdate\tyes\n"),
          prints("firmware check 2.2.2", HasSubstr("update\tno\n")),
          prints("firmware check 2.10 --format compact",
                 "{\"publishedVersion\":\"2.2.2\",\"updateIsAvailable\":false}\n"),
          fails("firmware check", 64, "VERSION is required"),
          fails("firmware check ''", 64, "'' is not a version"),
          fails("firmware check v2.2.1", 64, "'v2.2.1' is not a version"),
          fails("firmware check 2..1", 64, "is not a version"),
          fails("firmware check 2.1 --firmware-host 'no host'", 78, "--firmware-host"),
      },
      settings());
  EXPECT_THAT(sandbox_.arrivals(), IsEmpty()) << "nothing is asked";
  // A folder that can't be made is of no matter here, and is not told among the answers.
  const std::string file = documents_ / "file";
  writeFile(file, "");
  check({prints("firmware check 2.2.1 --json --documents-dir " + file,
                "{\n  \"publishedVersion\": \"2.2.2\",\n  \"updateIsAvailable\": true\n}\n")},
        settings());
}

TEST_F(FirmwareCommandsTest, ReplacesAFormerPackage) {
  check({downloading()}, settings());
  EXPECT_EQ(contentsOf(target()), published());
  writeFile(target(), "former");
  // From the file of settings, too.
  const std::string file = documents_ / "config";
  writeFile(file, "firmware-host = " + sandbox_.baseURL() + "\nca-file = " + sandbox_.caFile() +
                      "\ndocuments-dir = " + documents_.path().string() + "\n");
  check({prints("firmware download --config " + file + " --format compact",
                "{\"version\":\"2.2.2\",\"file\":\"" + target() + "\"}\n")},
        {});
  EXPECT_EQ(contentsOf(target()), published());
  EXPECT_THAT(files(), ElementsAre(packageName));
}

TEST_F(FirmwareCommandsTest, TellsFailuresAndKeepsTheFormerPackage) {
  putFormer();
  writeFile(documents_ / "file", "");
  check({fails("firmware download", 78, "--documents-dir")},
        without(settings(), "ORVANE_DOCUMENTS_DIR"));
  check(
      {
          fails("firmware download --firmware-host https://orvane.invalid", 10, "looked up"),
          fails("firmware download --firmware-host https://127.0.0.1:1", 11, "reached"),
          fails("firmware download --ca-file /etc/ssl/certs/ca-certificates.crt", 12),
          fails("firmware download --firmware-host mailto:nobody", 78, "no URL with a host"),
          fails("firmware download --firmware-host " + sandbox_.baseURL() + "/store", 44, "(404)"),
          fails("firmware download --documents-dir " + documents_ / "file", 74, "Not a directory"),
          fails("firmware download --firmware-host http://firmware.example", 78, "http"),
      },
      settings());
  sandbox_.misbehave({{"status", 503}, {"path", "downloads"}});
  check({fails("firmware download", 50, "(503)")}, settings());
  sandbox_.behave();
  sandbox_.misbehave({{"delayMs", 60000}, {"path", "downloads"}});
  check({fails("firmware download --timeout 0.9", 13)}, settings());
  EXPECT_EQ(contentsOf(target()), "former");
  EXPECT_THAT(files(), ElementsAre(packageName));
}

TEST_F(FirmwareCommandsTest, GoesOnFromWhereItWasCutOffOrCancelled) {
  putFormer();
  sandbox_.misbehave({{"cutAfterBytes", 700000}, {"path", "downloads"}});
  check({fails("firmware download", 14)}, settings());
  EXPECT_EQ(contentsOf(target()), "former");
  EXPECT_EQ(contentsOf(partial()), published().substr(0, 700000));

  sandbox_.behave();
  sandbox_.misbehave({{"delayMs", 60000}, {"path", "downloads"}});
  for (const int signal : {SIGINT, SIGTERM}) {
    const FileWatch opening(partial(), IN_OPEN);
    Process process(ORVANE_CLI_EXECUTABLE, {"firmware", "download"}, settings(),
                    Process::Streams::captured);
    ASSERT_TRUE(opening.wait(process));
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
    return run("/usr/bin/script", {"-qec", line + " > " + documents_ / "output", "/dev/null"},
               with(settings(), {{"TERM", terminal}, {"SHELL", "/bin/sh"}}));
  };
  const Ending shown = onTerminal(command, "xterm");
  EXPECT_EQ(shown.exitCode, 0) << shown.output;
  EXPECT_THAT(shown.output,
              AllOf(ContainsRegex("\rr?\x1b\\[Kfirmware \\[#*\\.+\\] +[0-9]+ %"),
                    HasSubstr("firmware [########################################] 100 %  2.0 of "
                              "2.0 MB\r\x1b[K")));
  EXPECT_TRUE(shown.output.ends_with("\r\x1b[K")) << "the bar goes";
  EXPECT_THAT(contentsOf(documents_ / "output"), Not(HasSubstr("\x1b")));
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
