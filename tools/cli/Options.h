// SPDX-License-Identifier: Apache-2.0
// What a verb takes from the command line, declared without the parser that reads it.
#pragma once

#include "Arguments.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvane::cli {

/// One option or positional argument: what help, man page, completion and messages say of it, and
/// what takes its value.
struct Option {
  std::string name;   ///< "--expand", or "ID" for a positional argument.
  std::string label;  ///< What stands for its value in the usage; empty for a flag.
  std::string help;
  std::string meaning{};               ///< What a value is, for the message about a wrong one.
  std::vector<std::string> choices{};  ///< What a value may be, or what most are.
  Listed listed = Listed::nothing;     ///< What a value names.
  bool isRequired = false;
  bool isList = false;   ///< May be repeated, or hold several values with commas between them.
  bool isWhole = false;  ///< A comma is part of its values.
  bool isBareAllowed = false;  ///< Needs no value; one follows an equals sign: "--sandbox=DIR".
  std::function<bool(const std::string&)> accept{};  ///< Takes a value; false refuses it.

  [[nodiscard]] bool isPositional() const { return !name.starts_with('-'); }
  [[nodiscard]] bool isFlag() const { return label.empty(); }
  /// True where the next word is its value.
  [[nodiscard]] bool takesWord() const { return !isPositional() && !isFlag() && !isBareAllowed; }
};

/// Collects a verb's options. Each is bound to a variable that has to outlive the parsing.
class Options {
 public:
  /// An argument without a name. Required, unless `target` is an optional or a list.
  template <class T>
  void positional(std::string name, T& target, std::string help) {
    add(std::move(name), target, std::move(help), isPlain<T>);
  }

  /// An option with a value; left out, `target` stays as it is. `name` begins with two hyphens. A
  /// set or vector collects several values.
  template <class T>
  void option(std::string name, T& target, std::string help) {
    add(std::move(name), target, std::move(help), false);
  }

  /// An option that has to be given.
  template <class T>
  void required(std::string name, T& target, std::string help) {
    add(std::move(name), target, std::move(help), true);
  }

  /// An option without a value.
  void flag(std::string name, bool& target, std::string help) {
    Option option{.name = std::move(name), .label = {}, .help = std::move(help)};
    option.accept = [&target](const std::string&) { return target = true; };
    rows_.push_back(std::move(option));
  }

  /// Any other one.
  void add(Option option) { rows_.push_back(std::move(option)); }

  /// Refuses a command line that gives none of the options.
  void atLeastOne() noexcept { needsOne_ = true; }

  [[nodiscard]] const std::vector<Option>& rows() const noexcept { return rows_; }
  [[nodiscard]] bool needsOne() const noexcept { return needsOne_; }

 private:
  // What a variable holds of a value type, and how it takes one.
  template <class T>
  struct Holder {
    using Value = T;
    static void take(T& target, T value) { target = std::move(value); }
  };
  template <class T>
  struct Holder<std::optional<T>> {
    using Value = T;
    static void take(std::optional<T>& target, T value) { target = std::move(value); }
  };
  template <class T>
  struct Holder<std::set<T>> {
    using Value = T;
    static void take(std::set<T>& target, T value) { target.insert(std::move(value)); }
  };
  template <class T>
  struct Holder<std::vector<T>> {
    using Value = T;
    static void take(std::vector<T>& target, T value) { target.push_back(std::move(value)); }
  };

  template <class T>
  static constexpr bool isPlain = std::is_same_v<typename Holder<T>::Value, T>;
  template <class T>
  static constexpr bool isListOf = std::is_same_v<std::set<typename Holder<T>::Value>, T> ||
                                   std::is_same_v<std::vector<typename Holder<T>::Value>, T>;

  template <class T>
  void add(std::string name, T& target, std::string help, bool isRequired) {
    using Value = typename Holder<T>::Value;
    Option option;
    option.name = std::move(name);
    option.help = std::move(help);
    option.meaning = Argument<Value>::meaning;
    if constexpr (requires { Argument<Value>::choices(); }) {
      option.choices = Argument<Value>::choices();
    }
    option.isWhole = requires { Argument<Value>::isWhole; };
    if constexpr (requires { Argument<Value>::listed; }) option.listed = Argument<Value>::listed;
    option.label = std::string(Argument<Value>::label);
    if (option.label.empty()) option.label = labelOf(option.choices);
    option.isRequired = isRequired;
    option.isList = isListOf<T>;
    option.accept = [&target](const std::string& text) {
      auto value = Argument<Value>::parse(text);
      if (!value) return false;
      Holder<T>::take(target, *std::move(value));
      return true;
    };
    rows_.push_back(std::move(option));
  }

  // The choices, as long as they are no sentence.
  static std::string labelOf(const std::vector<std::string>& choices) {
    constexpr std::size_t longest = 24;
    const std::string all = joined(choices, "|");
    return all.size() <= longest ? all : "CHOICE";
  }

  std::vector<Option> rows_;
  bool needsOne_ = false;
};

}  // namespace orvane::cli
