// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace orvane::test {

Words wordsOf(const std::string& line) {
  Words words;
  for (std::size_t at = 0; at < line.size();) {
    const bool isQuoted = line[at] == '\'';
    if (isQuoted) ++at;
    const std::size_t end = std::min(line.find(isQuoted ? '\'' : ' ', at), line.size());
    if (isQuoted || end > at) words.push_back(line.substr(at, end - at));
    at = end + (isQuoted ? 2 : 1);
  }
  return words;
}

Ending orvane(const std::string& line, const Environment& environment) {
  return run(ORVANE_CLI_EXECUTABLE, wordsOf(line), environment);
}

nlohmann::json jsonOf(const std::string& line, const Environment& environment) {
  const Ending ending = orvane(line + " --json", environment);
  EXPECT_EQ(ending.exitCode, 0) << line << ": " << ending.errors;
  return nlohmann::json::parse(ending.output, nullptr, false);
}

std::vector<Words> cellsOf(const std::string& output) {
  std::vector<Words> rows;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream cells(line);
    Words& row = rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, '\t');) row.push_back(cell);
  }
  return rows;
}

Environment settingsOf(const SandboxProcess& sandbox, const std::string& user) {
  return {{"ORVANE_BASE_URL", sandbox.baseURL()},
          {"ORVANE_CA_FILE", sandbox.caFile()},
          {"ORVANE_API_KEY", sandbox.apiKey()},
          {"ORVANE_USER", user},
          {"ORVANE_SIGNING_KEY_FILE", sandbox.signingKeyFile()},
          {"HOME", sandbox.folder().path()},
          {"TZ", "UTC"}};
}

std::string readyFileOf(const SandboxProcess& sandbox, pid_t process) {
  auto description = nlohmann::json::parse(std::ifstream(sandbox.folder() / "data/ready.json"));
  description["pid"] = process;
  return description.dump();
}

Environment with(Environment environment, const Environment& changes) {
  for (const auto& [name, value] : changes) environment[name] = value;
  return environment;
}

Environment without(Environment environment, const std::string& name) {
  environment.erase(name);
  return environment;
}

CommandRow prints(std::string line, testing::Matcher<std::string> output) {
  return {std::move(line), 0, std::move(output), testing::IsEmpty()};
}

CommandRow fails(std::string line, int exitCode, const std::string& said) {
  return {std::move(line), exitCode, testing::IsEmpty(),
          testing::AllOf(IsOneLine(), testing::HasSubstr(said))};
}

void check(const std::vector<CommandRow>& rows, const Environment& environment) {
  for (const CommandRow& row : rows) {
    SCOPED_TRACE(row.line);
    const Ending ending = orvane(row.line, environment);
    EXPECT_EQ(ending.exitCode, row.exitCode) << ending.errors;
    EXPECT_THAT(ending.output, row.output);
    EXPECT_THAT(ending.errors, row.errors);
  }
}

}  // namespace orvane::test
