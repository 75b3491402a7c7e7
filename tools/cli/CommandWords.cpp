// SPDX-License-Identifier: Apache-2.0
#include "CommandWords.h"

#include "GlobalOptions.h"

#include <algorithm>
#include <numeric>

namespace orvane::cli {
namespace {

// How many letters have to be changed, left out or put in, or swapped with their neighbour (the
// optimal string alignment distance).
std::size_t distance(std::string_view left, std::string_view right) {
  std::vector<std::vector<std::size_t>> rows(left.size() + 1,
                                             std::vector<std::size_t>(right.size() + 1));
  for (std::size_t i = 0; i <= left.size(); ++i) rows[i][0] = i;
  std::iota(rows[0].begin(), rows[0].end(), std::size_t{0});
  for (std::size_t i = 1; i <= left.size(); ++i) {
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t other = left[i - 1] == right[j - 1] ? 0 : 1;
      rows[i][j] = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + other});
      const bool isSwapped =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (isSwapped) rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
    }
  }
  return rows[left.size()][right.size()];
}

}  // namespace

CommandSet describedCommands() {
  Settings settings(nullptr);
  GlobalOptions globals;
  Options options;
  globals.declare(options, settings);
  CommandSet set{options.rows()};
  // What they are bound to is gone in a moment.
  for (Option& option : set.globals) option.accept = [](const std::string&) { return true; };
  return set;
}

CommandWords::CommandWords(const CommandSet& set, std::span<const std::string> words)
    : options(set.globals) {
  bool areOptionsOver = false;
  const auto enter = [this](Verb* found) {
    verb = found;
    const std::vector<Option> own = optionsOf(*found);
    options.insert(options.begin(), own.begin(), own.end());
  };
  for (const std::string& word : words) {
    if (awaiting) {
      given.emplace_back(*std::exchange(awaiting, std::nullopt), word);
    } else if (word == "--" && !areOptionsOver) {
      areOptionsOver = true;
    } else if (word.starts_with('-') && !areOptionsOver) {
      const std::size_t equals = std::min(word.find('='), word.size());
      const auto option = std::ranges::find(options, word.substr(0, equals), &Option::name);
      if (option == options.end()) {
        if (!unknown && !stray) stray = word;
        continue;
      }
      if (equals < word.size() || !option->takesWord()) {
        given.emplace_back(*option, word.substr(std::min(equals + 1, word.size())));
      } else {
        awaiting = *option;
      }
    } else if (resource == nullptr) {
      const auto found = std::ranges::find(set.resources, word, &Resource::name);
      if (found == set.resources.end()) {
        if (!unknown) unknown = word;
        continue;
      }
      resource = &*found;
      if (Verb* only = resource->onlyVerb()) enter(only);
    } else if (verb == nullptr) {
      const auto found = std::ranges::find_if(
          resource->verbs(), [&](const auto& candidate) { return candidate->name() == word; });
      if (found != resource->verbs().end()) {
        enter(found->get());
      } else if (!unknown) {
        unknown = word;
        unknownBelow = resource;
      }
    } else {
      ++positionals;
    }
  }
}

std::string thereIsNo(const std::string& what, const std::string& word,
                      const std::vector<std::string>& known) {
  const std::string bare = word.substr(0, word.find('='));
  const auto nearest = nearestOf(known, bare);
  return "There is no " + what + " '" + bare + "'" +
         (nearest ? "; did you mean " + *nearest + "?" : "");
}

std::string unknownCommand(const CommandSet& set, const CommandWords& words) {
  std::vector<std::string> names;
  if (words.unknownBelow != nullptr) {
    for (const auto& verb : words.unknownBelow->verbs()) names.emplace_back(verb->name());
    return thereIsNo("command", *words.unknown, names);
  }
  // "list trips"
  const bool isSwapped = words.resource != nullptr &&
                         std::ranges::any_of(words.resource->verbs(), [&](const auto& verb) {
                           return verb->name() == *words.unknown;
                         });
  if (isSwapped) {
    return "There is no command '" + *words.unknown + "'; did you mean orvane " +
           words.resource->name() + " " + *words.unknown + "?";
  }
  for (const Resource& resource : set.resources) names.push_back(resource.name());
  return thereIsNo("command", *words.unknown, names);
}

std::optional<std::string> nearestOf(const std::vector<std::string>& known,
                                     const std::string& word) {
  std::optional<std::string> nearest;
  // More than a third of the letters make another word.
  std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
  for (const std::string& candidate : known) {
    const std::size_t found = distance(candidate, word);
    const bool isBegun = word.size() > 2 && candidate.starts_with(word);
    if (found >= least && !(isBegun && !nearest)) continue;
    least = std::min(found, least);
    nearest = candidate;
  }
  return nearest;
}

}  // namespace orvane::cli
