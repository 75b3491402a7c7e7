// SPDX-License-Identifier: Apache-2.0
#include "CommandLine.h"

namespace orvane::test {

Ending orvane(const Words& arguments, const Environment& environment) {
  return run(ORVANE_CLI_EXECUTABLE, arguments, environment);
}

Environment settingsOf(const SandboxProcess& sandbox) {
  return {{"ORVANE_BASE_URL", sandbox.baseURL()},
          {"ORVANE_CA_FILE", sandbox.caFile()},
          {"ORVANE_API_KEY", sandbox.identity().apiKey},
          {"ORVANE_USER", *sandbox.identity().externalReferenceID},
          {"ORVANE_SIGNING_KEY_FILE", sandbox.signingKeyFile()},
          {"HOME", sandbox.folder().path()},
          {"TZ", "UTC"}};
}

Environment with(Environment environment, const Environment& changes) {
  for (const auto& [name, value] : changes) environment[name] = value;
  return environment;
}

Environment without(Environment environment, const std::string& name) {
  environment.erase(name);
  return environment;
}

void check(const std::vector<CommandRow>& rows, const Environment& environment) {
  for (const CommandRow& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.arguments));
    const Ending ending = orvane(row.arguments, environment);
    EXPECT_EQ(ending.exitCode, row.exitCode) << ending.errors;
    EXPECT_THAT(ending.output, row.output);
    EXPECT_THAT(ending.errors, row.errors);
  }
}

}  // namespace orvane::test
