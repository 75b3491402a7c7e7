// SPDX-License-Identifier: Apache-2.0
#include "Completion.h"

#include <set>

namespace orvane::cli {
namespace {

// The text as one word of any of the three shells.
std::string shellWord(std::string_view text) {
  std::string word = "'";
  for (const char character : text) {
    if (character == '\'') {
      word += "'\\''";
    } else {
      word += character;
    }
  }
  return word + "'";
}

// As `shellWord`, where the characters of `special` mean something to the completion system itself.
std::string escapedFor(std::string_view special, std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    if (special.find(character) != std::string_view::npos) escaped += '\\';
    escaped += character;
  }
  return escaped;
}

bool namesFile(const Option& option) { return option.label == "FILE"; }

std::vector<Option> optionsOf(Verb& verb) {
  Options options;
  verb.declare(options);
  return options.rows();
}

// What can stand next: the options, and what positional arguments may be.
std::string words(std::span<const Option> options) {
  std::vector<std::string> all;
  for (const Option& option : options) {
    if (option.isPositional()) {
      all.insert(all.end(), option.choices.begin(), option.choices.end());
    } else {
      all.push_back(option.name);
    }
  }
  return joined(all, " ");
}

// The options that take the next word as their value, as a pattern of `case`.
std::string valuedPattern(std::span<const Resource> resources, std::span<const Option> globals) {
  std::set<std::string> names;
  const auto note = [&](std::span<const Option> options) {
    for (const Option& option : options) {
      if (!option.isPositional() && !option.isFlag()) names.insert(option.name);
    }
  };
  note(globals);
  for (const Resource& resource : resources) {
    for (const auto& verb : resource.verbs()) note(optionsOf(*verb));
  }
  return joined({names.begin(), names.end()}, "|");
}

std::string resourceNames(std::span<const Resource> resources) {
  std::string text;
  for (const Resource& resource : resources) {
    text.append(text.empty() ? "" : " ").append(resource.name());
  }
  return text;
}

std::string verbNames(const Resource& resource) {
  std::string text;
  if (resource.onlyVerb() != nullptr) return text;
  for (const auto& verb : resource.verbs()) {
    text.append(text.empty() ? "" : " ").append(verb->name());
  }
  return text;
}

// A pattern of `case` for resource, blank and verb; where there is no verb, for what stands there.
std::string pathPattern(const Resource& resource, const Verb& verb) {
  const std::string beginning = resource.name() + " ";
  if (resource.onlyVerb() != nullptr) return shellWord(beginning) + "*";
  return shellWord(beginning + std::string(verb.name()));
}

// --- bash ---

void addBashValue(std::string& script, const std::string& pattern, const Option& option) {
  std::string action;
  if (namesFile(option)) {
    action = "local IFS=$'\\n'; COMPREPLY=($(compgen -f -- \"$current\"))";
  } else if (!option.choices.empty() && option.isList) {
    action = "_orvane_list " + shellWord(joined(option.choices, " "));
  } else if (!option.choices.empty()) {
    action =
        "COMPREPLY=($(compgen -W " + shellWord(joined(option.choices, " ")) + " -- \"$current\"))";
  }
  script += "    " + pattern + ") " + action + (action.empty() ? "" : "; ") + "return ;;\n";
}

// `before` is the pattern of what stands before the option.
void addBashValues(std::string& script, const std::string& before,
                   std::span<const Option> options) {
  for (const Option& option : options) {
    if (option.isPositional() || option.isFlag()) continue;
    addBashValue(script, before + shellWord((before.empty() ? "" : " ") + option.name), option);
  }
}

// --- zsh ---

std::string zshText(std::string_view text) { return escapedFor("[]:\\", text); }

std::string zshOption(const Option& option) {
  std::string spec = option.isPositional() ? "" : option.name + "[" + zshText(option.help) + "]";
  if (option.isFlag()) return shellWord(spec);
  if (option.isList) spec.insert(0, "*");
  std::string action;
  if (namesFile(option)) {
    action = "_files";
  } else if (!option.choices.empty() && option.isList) {
    action = "_sequence compadd - " + joined(option.choices, " ");
  } else if (!option.choices.empty()) {
    action = "(" + joined(option.choices, " ") + ")";
  }
  return shellWord(spec + ":" + zshText(option.label) + ":" + action);
}

void addZshVerb(std::string& script, const Resource& resource, Verb& verb) {
  script += "    " + pathPattern(resource, verb) + ")\n";
  script += "      specs+=(";
  int position = resource.onlyVerb() == nullptr ? 3 : 2;
  for (const Option& option : optionsOf(verb)) {
    script += "\n        ";
    if (!option.isPositional()) {
      script += zshOption(option);
    } else {
      std::string spec = option.isList ? "*" : std::to_string(position++);
      spec.append(":").append(zshText(option.name)).append(":");
      if (!option.choices.empty()) {
        spec.append("(").append(joined(option.choices, " ")).append(")");
      }
      script += shellWord(spec);
    }
  }
  script += ")\n      ;;\n";
}

// --- fish ---

void addFishOption(std::string& script, const std::string& condition, const Option& option) {
  if (option.isPositional() && option.choices.empty()) return;
  script += "complete -c orvane" + (condition.empty() ? "" : " -n " + shellWord(condition));
  if (!option.isPositional()) script += " -l " + option.name.substr(2);
  script += " -d " + shellWord(option.help);
  if (namesFile(option)) {
    script += " -r -F";
  } else if (option.isPositional()) {
    script += " -f";
  } else if (!option.isFlag()) {
    script += " -x";
  }
  if (!option.choices.empty()) script += " -a " + shellWord(joined(option.choices, " "));
  script += "\n";
}

void addFishResource(std::string& script, const Resource& resource) {
  const std::string isResource = "__fish_seen_subcommand_from " + resource.name();
  script += "complete -c orvane -n __fish_use_subcommand -a " + resource.name() + " -d " +
            shellWord(resource.summary()) + "\n";
  if (Verb* only = resource.onlyVerb()) {
    for (const Option& option : optionsOf(*only)) addFishOption(script, isResource, option);
    return;
  }
  const std::string isBare =
      isResource + "; and not __fish_seen_subcommand_from " + verbNames(resource);
  for (const auto& verb : resource.verbs()) {
    const std::string name(verb->name());
    script += "complete -c orvane -n " + shellWord(isBare) + " -a " + name + " -d " +
              shellWord(verb->summary()) + "\n";
    const std::string isVerb =
        std::string(isResource).append("; and __fish_seen_subcommand_from ").append(name);
    for (const Option& option : optionsOf(*verb)) addFishOption(script, isVerb, option);
  }
}

}  // namespace

std::string bashCompletion(std::span<const Resource> resources, std::span<const Option> globals) {
  std::string script =
      R"(# bash completion for orvane; load it with: source <(orvane completion bash)

# Completes the last of several values with commas between them.
_orvane_list() {
  local before=
  [[ $current != *,* ]] || before=${current%,*},
  COMPREPLY=($(compgen -P "$before" -W "$1" -- "${current##*,}"))
}

_orvane() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local resource='' verb='' index
  COMPREPLY=()
  for ((index = 1; index < COMP_CWORD; index++)); do
    case ${COMP_WORDS[index]} in
      )";
  script += valuedPattern(resources, globals);
  script += R"() ((++index)) ;;
      -*) ;;
      *)
        if [[ -z $resource ]]; then
          resource=${COMP_WORDS[index]}
        elif [[ -z $verb ]]; then
          verb=${COMP_WORDS[index]}
        fi
        ;;
    esac
  done

  case "$resource $verb $previous" in
)";
  for (const Resource& resource : resources) {
    for (const auto& verb : resource.verbs()) {
      addBashValues(script, pathPattern(resource, *verb), optionsOf(*verb));
    }
  }
  script += "  esac\n  case $previous in\n";
  addBashValues(script, "", globals);
  script += "  esac\n\n  local words='" + words(globals) + " --help --version'\n";
  script += "  case \"$resource $verb\" in\n";
  script += "    ' ') words+=' " + resourceNames(resources) + "' ;;\n";
  for (const Resource& resource : resources) {
    if (const std::string verbs = verbNames(resource); !verbs.empty()) {
      script += "    '" + resource.name() + " ') words+=' " + verbs + "' ;;\n";
    }
    for (const auto& verb : resource.verbs()) {
      script += "    " + pathPattern(resource, *verb) + ") words+=' " + words(optionsOf(*verb)) +
                "' ;;\n";
    }
  }
  script += R"(  esac
  COMPREPLY=($(compgen -W "$words" -- "$current"))
}

complete -F _orvane orvane
)";
  return script;
}

std::string zshCompletion(std::span<const Resource> resources, std::span<const Option> globals) {
  std::string script = R"(#compdef orvane
# zsh completion for orvane; load it with: source <(orvane completion zsh)

_orvane() {
  local resource='' verb='' index
  local -a specs
  for ((index = 2; index < CURRENT; index++)); do
    case ${words[index]} in
      ()";
  script += valuedPattern(resources, globals);
  script += R"() ((++index)) ;;
      (-*) ;;
      (*)
        if [[ -z $resource ]]; then
          resource=${words[index]}
        elif [[ -z $verb ]]; then
          verb=${words[index]}
        fi
        ;;
    esac
  done

  specs=(
    '(- *)--help[Print this help message and exit]'
    '(- *)--version[Print the version]')";
  for (const Option& option : globals) script += "\n    " + zshOption(option);
  std::string choices;
  for (const Resource& resource : resources) {
    choices += " " + resource.name() + "\\:" + shellWord(zshText(resource.summary()));
  }
  script += "\n    \"1:resource:((" + choices + "))\")\n  case $resource in\n";
  for (const Resource& resource : resources) {
    if (resource.onlyVerb() != nullptr) continue;
    choices.clear();
    for (const auto& verb : resource.verbs()) {
      choices += " " + std::string(verb->name()) + "\\:" + shellWord(zshText(verb->summary()));
    }
    script += "    " + resource.name() + ") specs+=(\"2:verb:((" + choices + "))\") ;;\n";
  }
  script += "  esac\n  case \"$resource $verb\" in\n";
  for (const Resource& resource : resources) {
    for (const auto& verb : resource.verbs()) addZshVerb(script, resource, *verb);
  }
  script += R"(  esac
  _arguments -S $specs
}

if [[ $funcstack[1] == _orvane ]]; then
  _orvane "$@"
else
  compdef _orvane orvane
fi
)";
  return script;
}

std::string fishCompletion(std::span<const Resource> resources, std::span<const Option> globals) {
  std::string script =
      "# fish completion for orvane; load it with: orvane completion fish | source\n"
      "complete -c orvane -f\n"
      "complete -c orvane -l help -d 'Print this help message and exit'\n"
      "complete -c orvane -l version -d 'Print the version'\n";
  for (const Option& option : globals) addFishOption(script, "", option);
  for (const Resource& resource : resources) addFishResource(script, resource);
  return script;
}

}  // namespace orvane::cli
