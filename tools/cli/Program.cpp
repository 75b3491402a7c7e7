// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include <CLI/CLI.hpp>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace orvane::cli {
namespace {

constexpr const char* description =
    "Talks to a telematics backend: a resource, and what to do with it.";

std::string exitCodeTable() {
  std::string text = "Exit codes:\n";
  for (const ExitCodeRow& row : exitCodes()) {
    const std::string number = std::to_string(static_cast<int>(row.code));
    text.append("  ").append(3 - number.size(), ' ').append(number).append("  ");
    text.append(row.meaning).append("\n");
  }
  return text;
}

std::string exampleText(const Verb& verb) {
  std::string text;
  for (const Example& example : verb.examples()) {
    text.append(text.empty() ? "Examples:\n" : "").append("  orvane ").append(example.arguments);
    text.append("\n      ").append(example.meaning).append("\n");
  }
  return text.append(text.empty() ? "" : "\n")
      .append("orvane --help tells what every command takes.");
}

void checkChoice(const Option& option, const std::string& text) {
  // More than that are no help in a line.
  constexpr std::size_t mostListed = 16;
  if (option.accept(text)) return;
  std::string message = "'" + text + "' is not " + option.meaning;
  const bool isListed = !option.choices.empty() && option.choices.size() <= mostListed;
  if (isListed) message += ": " + joined(option.choices, ", ");
  throw CLI::ValidationError(option.name, message);
}

void addOption(CLI::App& app, const Option& option, const std::string& group) {
  if (option.isFlag()) {
    app.add_flag_callback(
           option.name, [option] { option.accept({}); }, option.help)
        ->group(group);
    return;
  }
  const auto take = [option](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) checkChoice(option, text);
  };
  CLI::Option* added =
      app.add_option_function<std::vector<std::string>>(option.name, take, option.help);
  added->type_name(option.label)->required(option.isRequired)->allow_extra_args(false);
  if (option.isList) {
    added->delimiter(',');
  } else {
    added->expected(1);
  }
  if (!option.isPositional()) added->group(group);
}

void checkGiven(const CLI::App& app) {
  const auto given = app.get_options([](const CLI::Option* option) { return option->count() > 0; });
  if (given.empty()) throw CLI::RequiredError("At least one option");
}

// Gives a command the verb's options.
void equip(CLI::App& command, Verb& verb) {
  Options options;
  verb.declare(options);
  if (options.needsOne()) command.callback([&command] { checkGiven(command); });
  for (const Option& option : options.rows()) addOption(command, option, "Options");
  command.footer(exampleText(verb));
}

// The command line as CLI11 knows it. `verbs` keeps what its options are bound to.
class CommandLine {
 public:
  CommandLine(GlobalOptions& globals, Settings& settings) : app_(description, "orvane") {
    app_.set_version_flag("--version", "orvane " ORVANE_CLI_VERSION, "Print the version");
    app_.fallthrough();
    app_.require_subcommand(1);
    app_.get_formatter()->column_width(36);
    app_.get_formatter()->label("Positionals", "Arguments");
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    Options options;
    globals.declare(options, settings);
    for (const Option& option : options.rows()) addOption(app_, option, "Options");
    for (const Resource& resource : resources_) addResource(resource);
    app_.footer(exitCodeTable());
  }

  void parse(int count, const char* const* arguments) { app_.parse(count, arguments); }

  /// The verb that was asked for.
  [[nodiscard]] const Verb& verb() const {
    for (const Resource& resource : resources_) {
      if (!app_.got_subcommand(resource.name())) continue;
      if (const Verb* only = resource.onlyVerb()) return *only;
      const CLI::App* chosen = app_.get_subcommand(resource.name());
      for (const auto& verb : resource.verbs()) {
        if (chosen->got_subcommand(std::string(verb->name()))) return *verb;
      }
    }
    throw Failure(ExitCode::usage, "no verb is given");
  }

  /// "orvane user show", as far as the command line got.
  [[nodiscard]] std::string path() const {
    std::string text = "orvane";
    for (const CLI::App* app = deeper(app_); app != nullptr; app = deeper(*app)) {
      text += " " + app->get_name();
    }
    return text;
  }

  /// Why it was refused, in clearer words than CLI11's where it misses a value, and where it misses
  /// a command instead of saying that it does not know one.
  [[nodiscard]] std::string complaint(const CLI::ParseError& error) const {
    std::string said = error.what();
    if (error.get_name() == "ArgumentMismatch" && said.find(" missing") != std::string::npos) {
      return said.substr(0, said.find(':')) + " needs a value";
    }
    if (said != "A subcommand is required") return said;
    const auto unknown = app_.remaining(true);
    if (unknown.empty()) return "A command is missing";
    const bool isOption = unknown.front().starts_with('-');
    return std::string("There is no ") + (isOption ? "option" : "command") + " '" +
           unknown.front() + "'";
  }

  [[nodiscard]] std::string help() const { return app_.help(); }

 private:
  static const CLI::App* deeper(const CLI::App& app) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? nullptr : chosen.front();
  }

  static CLI::App* addCommand(CLI::App& parent, std::string_view name, std::string_view summary) {
    return parent.add_subcommand(std::string(name), std::string(summary))->group("Commands");
  }

  void addResource(const Resource& resource) {
    CLI::App* command = addCommand(app_, resource.name(), resource.summary());
    if (Verb* only = resource.onlyVerb()) return equip(*command, *only);
    command->require_subcommand(1);
    for (const auto& verb : resource.verbs()) {
      equip(*addCommand(*command, verb->name(), verb->summary()), *verb);
    }
  }

  const std::vector<Resource> resources_ = resources();
  CLI::App app_;
};

std::size_t columnsOfOutput() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 100;
}

// As POSIX has it: the first of these that says something counts. The locale need not be installed:
// what matters is what the terminal shows.
bool showsUnicode() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* locale = std::getenv(name);
    if (locale == nullptr || *locale == '\0') continue;
    std::string_view text = locale;
    text = text.substr(0, text.find('@'));
    const std::size_t dot = text.find('.');
    return dot != std::string_view::npos && sameChoice(text.substr(dot + 1), "utf-8");
  }
  return false;
}

bool wantsNoColour() {
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return (noColour != nullptr && *noColour != '\0') ||
         (terminal != nullptr && std::string_view(terminal) == "dumb");
}

ExitCode complain(ExitCode code, const std::string& message) {
  if (message.empty()) return code;
  // Arguments and settings come back in messages: they are no more to be trusted than an answer.
  std::fprintf(stderr, "orvane: %s\n", visible(message).c_str());
  return code;
}

ExitCode runVerb(const Verb& verb, Settings settings, const GlobalOptions& globals) {
  settings.load(globals.configurationFile());
  Session session(std::move(settings), globals.style(), globals.isVerbose());
  verb.run(session);
  session.output().flush();
  return ExitCode::success;
}

ExitCode print(const std::string& text) {
  const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  if (isWritten) return ExitCode::success;
  return complain(ExitCode::output, errno == EPIPE ? "" : "the output can't be written");
}

}  // namespace

void GlobalOptions::declare(Options& options, Settings& settings) {
  for (const SettingRow& row : settingRows()) {
    Option option;
    option.name = "--" + std::string(row.name);
    option.label = row.label;
    option.help = std::string(row.help) + " [" + std::string(row.variable) + "]";
    option.accept = [&settings, setting = row.setting](const std::string& text) {
      settings.setFlag(setting, text);
      return true;
    };
    options.add(std::move(option));
  }
  options.option("--config", configurationFile_, "The file to read settings from [ORVANE_CONFIG]");
  options.option(
      "--format", format_,
      "How to print: table (as to a terminal), tabs (as to a pipe), or JSON, indented or "
      "on one line");
  options.flag("--json", isJSON_, "Short for --format json");
  options.flag("--verbose", isVerbose_,
               "Show the exchanges with the backend on standard error, secrets blanked");
  options.flag("--no-color", isColourless_, "Print without colours [NO_COLOR]");
}

OutputStyle GlobalOptions::style() const {
  OutputStyle style;
  const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  if (isTerminal) style.format = OutputStyle::Format::table;
  if (isJSON_) style.format = OutputStyle::Format::json;
  if (format_) style.format = *format_;
  style.isColoured = isTerminal && !isColourless_ && !wantsNoColour();
  style.isUnicode = showsUnicode();
  style.columns = columnsOfOutput();
  return style;
}

ExitCode runProgram(int argumentCount, const char* const* arguments) {
  Settings settings([](const char* name) { return std::getenv(name); });
  GlobalOptions globals;
  CommandLine line(globals, settings);
  try {
    line.parse(argumentCount, arguments);
    return runVerb(line.verb(), std::move(settings), globals);
  } catch (const CLI::CallForHelp&) {
    return print(line.help());
  } catch (const CLI::CallForVersion& version) {
    return print(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    return complain(ExitCode::usage, line.complaint(error) + " (see " + line.path() + " --help)");
  } catch (const Failure& failure) {
    return complain(failure.code(), failure.what());
  } catch (const std::exception& exception) {
    return complain(ExitCode::internal, exception.what());
  }
}

}  // namespace orvane::cli
