// SPDX-License-Identifier: Apache-2.0
// What a command is made of: resources with verbs. A verb is a small struct; everything around it
// stands here once.
//
//   struct ShowTrip {
//     using Answer = Trip;
//     static constexpr std::string_view name = "show";
//     static constexpr std::string_view summary = "Show a trip";
//     static constexpr Example examples[] = {{"trips show 42 --expand events", "…"}};
//
//     std::string id;
//     void declare(Options& options) { options.positional("ID", id, "The trip"); }
//     RequestHandle start(const Identity& identity, Completion<Trip> then) const {
//       return TripService(identity).fetch(id, {}, std::move(then));
//     }
//     static void print(const Trip& trip, Output& output) { … }
//   };
//
// `examples` and `declare` may be missing. An operation that answers nothing has `Unit` as its
// `Answer`, and `done`, the line that is then printed, instead of `print`. A verb that needs more
// than one call, or none, has `void run(Session&) const` instead of `Answer`, `start` and `print`.
#pragma once

#include "Options.h"
#include "Output.h"
#include "Session.h"
#include <Orvane/Coding/Coding.h>

#include <concepts>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::cli {

/// A command line without the program's name, and what it does.
struct Example {
  std::string_view arguments;
  std::string_view meaning;
};

/// A verb without its type. One object serves one command line.
class Verb {
 public:
  Verb() = default;
  Verb(const Verb&) = delete;
  Verb& operator=(const Verb&) = delete;
  virtual ~Verb();

  [[nodiscard]] virtual std::string_view name() const = 0;
  [[nodiscard]] virtual std::string_view summary() const = 0;
  [[nodiscard]] virtual std::span<const Example> examples() const = 0;
  /// Binds the options to the verb's own variables.
  virtual void declare(Options& options) = 0;
  /// Does it. Throws a `Failure`.
  virtual void run(Session& session) const = 0;
};

/// The verbs of one resource of the backend, or of the program itself.
class Resource {
 public:
  Resource(std::string name, std::string summary)
      : name_(std::move(name)), summary_(std::move(summary)) {}

  /// A command that needs no verb: `V` stands for the whole resource, under its own name.
  template <class V>
  [[nodiscard]] static Resource only();

  template <class V>
  Resource& add() &;
  template <class V>
  Resource&& add() && {
    return std::move(add<V>());
  }

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  [[nodiscard]] const std::string& summary() const noexcept { return summary_; }
  [[nodiscard]] const std::vector<std::shared_ptr<Verb>>& verbs() const noexcept { return verbs_; }
  /// The verb of a resource that is its own only one; else null.
  [[nodiscard]] Verb* onlyVerb() const noexcept {
    return isItsVerb_ ? verbs_.front().get() : nullptr;
  }

 private:
  bool isItsVerb_ = false;
  std::string name_;
  std::string summary_;
  std::vector<std::shared_ptr<Verb>> verbs_;
};

/// Every resource, in the order of the help.
[[nodiscard]] std::vector<Resource> resources();

/// A verb that runs by itself.
template <class V>
concept RunsItself = requires(const V& verb, Session& session) {
  verb.run(session);
};

/// Prints an answer as the user wants it: as the verb prints it, or as JSON.
template <class V, class Answer>
void printAnswer(const V& verb, const Answer& answer, Output& output) {
  if constexpr (std::same_as<Answer, Unit>) {
    if (!output.style().isJSON()) output.line(V::done);
  } else if (!output.style().isJSON()) {
    verb.print(answer, output);
  } else {
    const Result<std::string> text = encodeChecked(answer);
    if (!text.value()) {
      throw Failure(ExitCode::invalidData, text.errorOr(NetworkError::unknown).message());
    }
    output.json(*text.value());
  }
}

namespace detail {

template <class V>
class VerbOf final : public Verb {
 public:
  [[nodiscard]] std::string_view name() const override { return V::name; }
  [[nodiscard]] std::string_view summary() const override { return V::summary; }

  [[nodiscard]] std::span<const Example> examples() const override {
    if constexpr (requires { V::examples; }) {
      return V::examples;
    } else {
      return {};
    }
  }

  void declare(Options& options) override {
    if constexpr (requires { verb_.declare(options); }) verb_.declare(options);
  }

  void run(Session& session) const override {
    if constexpr (RunsItself<V>) {
      verb_.run(session);
    } else {
      using Answer = typename V::Answer;
      session.connect();
      const auto answer = session.call<Answer>([&](Completion<Answer> then) {
        return verb_.start(session.identity(), std::move(then));
      });
      printAnswer(verb_, answer, session.output());
    }
  }

 private:
  V verb_;
};

}  // namespace detail

template <class V>
Resource& Resource::add() & {
  verbs_.push_back(std::make_shared<detail::VerbOf<V>>());
  return *this;
}

template <class V>
Resource Resource::only() {
  Resource resource{std::string(V::name), std::string(V::summary)};
  resource.add<V>();
  resource.isItsVerb_ = true;
  return resource;
}

}  // namespace orvane::cli
