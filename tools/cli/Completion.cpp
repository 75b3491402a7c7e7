// SPDX-License-Identifier: Apache-2.0
#include "Completion.h"

#include <algorithm>

namespace orvane::cli {
namespace {

// The values of an option or argument.
void addValues(Candidates& candidates, const Option& option) {
  candidates.listed = option.listed;
  for (const std::string& choice : option.choices) candidates.words.push_back({choice});
  if (!option.isList || option.isWhole) return;
  const std::size_t comma = candidates.begun.rfind(',');
  if (comma == std::string::npos) return;
  std::string_view former = std::string_view(candidates.begun).substr(0, comma);
  for (bool isLast = false; !isLast;) {
    const std::size_t end = former.find(',');
    const std::string_view given = former.substr(0, end);
    std::erase_if(candidates.words,
                  [&](const Candidate& word) { return sameChoice(word.text, given); });
    isLast = end == std::string_view::npos;
    if (!isLast) former.remove_prefix(end + 1);
  }
  candidates.before += candidates.begun.substr(0, comma + 1);
  candidates.begun.erase(0, comma + 1);
}

void addOptions(Candidates& candidates, const CommandWords& read) {
  for (const Option& option : read.options) {
    if (!option.isPositional()) candidates.words.push_back({option.name, option.help});
  }
  candidates.words.push_back({"--help", "Say what a command does and takes"});
  candidates.words.push_back({"--version", "Print the version"});
}

void addCommands(Candidates& candidates, const CommandSet& set, const CommandWords& read) {
  if (read.resource == nullptr) {
    for (const Resource& resource : set.resources) {
      candidates.words.push_back({resource.name(), resource.summary()});
    }
  } else if (read.verb == nullptr) {
    for (const auto& verb : read.resource->verbs()) {
      if (verb->isInternal()) continue;
      candidates.words.push_back({std::string(verb->name()), std::string(verb->summary())});
    }
  }
}

// The argument that comes next; a list is never over.
void addArgument(Candidates& candidates, const CommandWords& read) {
  std::size_t left = read.positionals;
  for (const Option& option : read.options) {
    if (!option.isPositional()) continue;
    if (left == 0 || option.isList) return addValues(candidates, option);
    --left;
  }
}

}  // namespace

Candidates candidatesFor(const CommandSet& set, std::vector<std::string> words) {
  Candidates candidates;
  if (!words.empty()) {
    candidates.begun = std::move(words.back());
    words.pop_back();
  }
  const CommandWords read(set, words);
  const std::size_t equals = candidates.begun.find('=');
  if (read.awaiting) {
    addValues(candidates, *read.awaiting);
  } else if (candidates.begun.starts_with("--") && equals != std::string::npos) {
    const auto option =
        std::ranges::find(read.options, candidates.begun.substr(0, equals), &Option::name);
    candidates.before = candidates.begun.substr(0, equals + 1);
    candidates.begun.erase(0, equals + 1);
    if (option != read.options.end()) addValues(candidates, *option);
  } else if (candidates.begun.starts_with('-')) {
    addOptions(candidates, read);
  } else {
    addCommands(candidates, set, read);
    if (read.verb != nullptr) addArgument(candidates, read);
    const bool isNothing = candidates.words.empty() && candidates.listed == Listed::nothing;
    if (isNothing && candidates.begun.empty()) addOptions(candidates, read);
  }
  if (candidates.listed == Listed::commands) {
    // The words behind "help" are those of a command line of its own.
    const auto help = std::ranges::find(words, "help");
    words.erase(words.begin(), help == words.end() ? help : std::next(help));
    addCommands(candidates, set, CommandWords(set, words));
  }
  std::erase_if(candidates.words, [&](const Candidate& candidate) {
    return !candidate.text.starts_with(candidates.begun);
  });
  return candidates;
}

std::vector<std::string> shellWords(std::string_view line) {
  std::vector<std::string> words{""};
  char quote = 0;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char character = line[at];
    if (quote != 0) {
      if (character == quote) {
        quote = 0;
      } else {
        words.back() += character;
      }
    } else if (character == '\'' || character == '"') {
      quote = character;
    } else if (character == '\\' && at + 1 < line.size()) {
      words.back() += line[++at];
    } else if (character != ' ' && character != '\t') {
      words.back() += character;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  return words;
}

// The first line of what the program answers says what the machine's own lists add.
const std::string_view bashCompletion =
    R"script(# bash completion for orvane and orvane-sandbox; load it with: source <(orvane completion bash)

# A word that bash takes apart is completed from its last part on.
_orvane_words() {
  local current=${COMP_LINE:0:COMP_POINT} kind='' line broken=''
  current=${current##*[[:space:]]}
  [[ $current == *=* && $COMP_WORDBREAKS == *=* ]] && broken=${current%"${current##*=}"}
  COMPREPLY=()
  { read -r kind; while read -r line; do COMPREPLY+=("${line#"$broken"}"); done; } < <("$@" 2>/dev/null)
  local value=${current#"$broken"}
  case $kind in
    files) compopt -o filenames; while read -r line; do COMPREPLY+=("$line"); done < <(compgen -f -- "$value") ;;
    folders) compopt -o filenames; while read -r line; do COMPREPLY+=("$line"); done < <(compgen -d -- "$value") ;;
  esac
}

_orvane() { _orvane_words "${COMP_WORDS[0]}" completion words --line "${COMP_LINE:0:COMP_POINT}"; }

_orvane_sandbox_options() {
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --data) echo folders; return ;;
    --ready-file) echo files; return ;;
  esac
  echo options
  compgen -W "$("${COMP_WORDS[0]}" --help | grep -oE -- '--[a-z][a-z-]*' | sort -u)" -- "${COMP_WORDS[COMP_CWORD]}"
}

_orvane_sandbox() { _orvane_words _orvane_sandbox_options; }

complete -F _orvane orvane
complete -F _orvane_sandbox orvane-sandbox
)script";

const std::string_view zshCompletion = R"script(#compdef orvane orvane-sandbox
# zsh completion for orvane and orvane-sandbox; load it with: source <(orvane completion zsh)

_orvane() {
  local line kind='' before=''
  local -a words_found described
  { read -r kind; while IFS= read -r line; do words_found+=("${line//:/\\:}"); done } \
    < <("${words[1]}" completion words --meanings -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)
  described=("${(@)words_found/$'\t'/:}")
  [[ $PREFIX == --*=* ]] && before=1
  if (( $#described )); then
    _describe -V 'orvane' described
  fi
  [[ -n $before ]] && compset -P '*='
  case $kind in
    files) _files ;;
    folders) _files -/ ;;
  esac
}

if [[ $funcstack[1] == _orvane ]]; then
  if [[ $service == orvane-sandbox ]]; then
    _gnu_generic "$@"
  else
    _orvane "$@"
  fi
else
  compdef _orvane orvane
  compdef _gnu_generic orvane-sandbox
fi
)script";

const std::string_view fishCompletion =
    R"script(# fish completion for orvane; load it with: orvane completion fish | source
function __orvane_words
    set -l tokens (commandline -opc) (commandline -ct)
    set -l lines ($tokens[1] completion words --meanings -- $tokens[2..-1] 2>/dev/null)
    switch "$lines[1]"
        case files
            __fish_complete_path (commandline -ct)
        case folders
            __fish_complete_directories (commandline -ct)
    end
    printf '%s\n' $lines[2..-1]
end
complete -c orvane -f -k -a '(__orvane_words)'
)script";

}  // namespace orvane::cli
