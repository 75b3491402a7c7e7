// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include "CommandWords.h"
#include "GlobalOptions.h"
#include "Help.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace orvane::cli {
namespace {

// What is wrong with a value; empty for one that is taken.
std::string refusalOf(const Option& option, const std::string& text) {
  // More than that are no help in a line.
  constexpr std::size_t mostListed = 16;
  if (option.accept(text)) return {};
  std::string message = "'" + text + "' is not " + option.meaning;
  // The meaning of one that may stand alone has the words in it.
  const bool isListed =
      !option.isBareAllowed && !option.choices.empty() && option.choices.size() <= mostListed;
  if (isListed) message += ": " + joined(option.choices, ", ");
  if (const auto nearest = nearestOf(option.choices, text)) {
    message += "; did you mean " + *nearest + "?";
  }
  return message;
}

void addOption(CLI::App& app, const Option& option) {
  if (option.isFlag() || option.isBareAllowed) {
    // What CLI11 makes of a flag without a value.
    constexpr const char* bare = "true";
    const auto check = [option](const std::string& text) {
      return refusalOf(option, text == bare ? std::string() : text);
    };
    app.add_flag(option.name)->check(check);
    return;
  }
  const auto take = [option](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
      const std::string refusal = refusalOf(option, text);
      if (!refusal.empty()) throw CLI::ValidationError(option.name, refusal);
    }
  };
  CLI::Option* added = app.add_option_function<std::vector<std::string>>(option.name, take);
  added->required(option.isRequired)->allow_extra_args(option.isPositional() && option.isList);
  const bool isSplit = option.isList && !option.isPositional() && !option.isWhole;
  if (isSplit) added->delimiter(',');
  if (!option.isList) added->expected(1);
}

void checkGiven(const CLI::App& app) {
  const auto given = app.get_options([](const CLI::Option* option) { return option->count() > 0; });
  if (given.empty()) throw CLI::RequiredError("At least one option");
}

// The command line as CLI11 knows it, which reads it and no more.
class CommandLine {
 public:
  explicit CommandLine(const CommandSet& set) : set_(set), app_("", "orvane") {
    app_.set_help_flag();
    app_.fallthrough();
    app_.require_subcommand(1);
    for (const Option& option : set.globals) addOption(app_, option);
    for (const Resource& resource : set.resources) addResource(resource);
  }

  void parse(std::vector<std::string> words) {
    std::ranges::reverse(words);
    app_.parse(std::move(words));
  }

  /// Why it was refused, in clearer words than CLI11's where it misses a value, and where it misses
  /// a command instead of saying that it does not know one.
  [[nodiscard]] std::string complaint(const CLI::ParseError& error,
                                      const CommandWords& words) const {
    std::string said = error.what();
    if (words.unknown && words.stray) return thereIsNo("option", *words.stray, optionNames(words));
    if (error.get_name() == "ArgumentMismatch") {
      const std::string option = said.substr(0, said.find(':'));
      if (said.find(" missing") != std::string::npos) return option + " needs a value";
      if (said.find("At Most 1 ") != std::string::npos) return option + " is given more than once";
    }
    const bool lacksCommand = said == "A subcommand is required";
    const bool hasExtras = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
    if (!lacksCommand && !hasExtras) return said;
    const std::vector<std::string> left = app_.remaining(true);
    if (words.unknown) return unknownCommand(set_, words);
    for (const std::string& word : left) {
      if (word.starts_with('-')) return thereIsNo("option", word, optionNames(words));
    }
    if (lacksCommand || left.empty()) return "A command is missing";
    return "'" + left.front() + "' is one argument too many";
  }

 private:
  static std::vector<std::string> optionNames(const CommandWords& words) {
    std::vector<std::string> names{"--help", "--version"};
    for (const Option& option : words.options) names.push_back(option.name);
    return names;
  }

  static void equip(CLI::App& command, Verb& verb) {
    Options options;
    verb.declare(options);
    if (options.needsOne()) command.callback([&command] { checkGiven(command); });
    for (const Option& option : options.rows()) addOption(command, option);
  }

  void addResource(const Resource& resource) {
    CLI::App* command = app_.add_subcommand(resource.name());
    command->set_help_flag();
    if (Verb* only = resource.onlyVerb()) return equip(*command, *only);
    command->require_subcommand(1);
    for (const auto& verb : resource.verbs()) {
      CLI::App* below = command->add_subcommand(std::string(verb->name()));
      below->set_help_flag();
      equip(*below, *verb);
    }
  }

  const CommandSet& set_;
  CLI::App app_;
};

ExitCode complain(ExitCode code, const std::string& message) {
  if (message.empty()) return code;
  // Arguments and settings come back in messages: they are no more to be trusted than an answer.
  std::fprintf(stderr, "orvane: %s\n", visible(message).c_str());
  return code;
}

ExitCode print(const std::string& text) {
  const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  if (isWritten) return ExitCode::success;
  return complain(ExitCode::output, errno == EPIPE ? "" : "the output can't be written");
}

// "orvane user show", as far as the command line got.
std::string pathOf(const CommandWords& words) {
  std::string path = "orvane";
  if (words.resource == nullptr) return path;
  path += " " + words.resource->name();
  const bool isOnly = words.resource->onlyVerb() != nullptr;
  if (words.verb != nullptr && !isOnly) path.append(" ").append(words.verb->name());
  return path;
}

// Whether one of the options that every command line may have is there, wherever it stands.
bool asksFor(std::string_view option, const std::vector<std::string>& words) {
  const auto end = std::ranges::find(words, "--");
  return std::find(words.begin(), end, option) != end;
}

// Whoever can't get through to the backend is told who finds out why.
bool isForDoctor(const Failure& failure, const Settings& settings) {
  constexpr ExitCode codes[] = {ExitCode::nameLookup, ExitCode::connection, ExitCode::tls,
                                ExitCode::protocol};
  if (failure.code() != ExitCode::notFound) {
    return std::ranges::find(codes, failure.code()) != std::end(codes);
  }
  // Below the API root twice over nothing is found.
  return settings.text(Setting::baseURL).value_or("").find(apiRoot) != std::string::npos;
}

ExitCode runVerb(const Verb& verb, Settings settings, const GlobalOptions& globals) {
  settings.load(globals.place());
  Session session(std::move(settings), globals.style(), globals.shown());
  try {
    verb.run(session);
    session.finish();
  } catch (const Failure& failure) {
    if (verb.name() == "doctor" || !isForDoctor(failure, session.settings())) throw;
    throw Failure(failure.code(), std::string(failure.what()) + " (orvane doctor looks into it)");
  }
  return ExitCode::success;
}

}  // namespace

ExitCode runProgram(int argumentCount, const char* const* arguments) {
  const std::vector<std::string> given(arguments + std::min(1, argumentCount),
                                       arguments + argumentCount);
  Settings settings([](const char* name) { return std::getenv(name); });
  GlobalOptions globals;
  Options options;
  globals.declare(options, settings);
  const CommandSet set{options.rows()};
  const CommandWords words(set, given);
  if (asksFor("--help", given) || asksFor("-h", given)) {
    return print(helpText(set, words, columnsOfOutput()));
  }
  if (asksFor("--version", given)) return print("orvane " ORVANE_CLI_VERSION "\n");
  CommandLine line(set);
  try {
    line.parse(given);
    if (words.verb == nullptr) throw Failure(ExitCode::usage, "no command is given");
    return runVerb(*words.verb, std::move(settings), globals);
  } catch (const CLI::ParseError& error) {
    return complain(ExitCode::usage,
                    line.complaint(error, words) + " (see " + pathOf(words) + " --help)");
  } catch (const Failure& failure) {
    return complain(failure.code(), failure.what());
  } catch (const std::exception& exception) {
    return complain(ExitCode::internal, exception.what());
  }
}

}  // namespace orvane::cli
