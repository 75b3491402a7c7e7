// SPDX-License-Identifier: Apache-2.0
// orvane completion: scripts that make a shell complete this program's command lines.
#include "Completion.h"

#include "Commands.h"
#include "Program.h"

namespace orvane::cli {
namespace {

using Script = std::string (*)(std::span<const Resource>, std::span<const Option>);

void printScript(Session& session, Script script) {
  Settings settings(nullptr);
  Options globals;
  GlobalOptions().declare(globals, settings);
  session.output().raw(script(resources(), globals.rows()));
}

struct Bash {
  static constexpr std::string_view name = "bash";
  static constexpr std::string_view summary = "Print the script for bash";
  static constexpr Example examples[] = {
      {"completion bash > /etc/bash_completion.d/orvane", "for everybody on this machine"}};
  void run(Session& session) const { printScript(session, bashCompletion); }
};

struct Zsh {
  static constexpr std::string_view name = "zsh";
  static constexpr std::string_view summary = "Print the script for zsh";
  void run(Session& session) const { printScript(session, zshCompletion); }
};

struct Fish {
  static constexpr std::string_view name = "fish";
  static constexpr std::string_view summary = "Print the script for fish";
  void run(Session& session) const { printScript(session, fishCompletion); }
};

}  // namespace

Resource completionCommands() {
  return Resource("completion", "Scripts for your shell").add<Bash>().add<Zsh>().add<Fish>();
}

}  // namespace orvane::cli
