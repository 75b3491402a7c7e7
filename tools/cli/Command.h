// SPDX-License-Identifier: Apache-2.0
// What a command is made of: resources with verbs. A verb is a small struct; everything around it
// stands here once.
//
//   struct ShowTrip {
//     static constexpr std::string_view name = "show";
//     static constexpr std::string_view summary = "Show a trip";
//     static constexpr Example examples[] = {{"trips show 42 --expand events", "…"}};
//
//     TripID id;
//     void declare(Options& options) { options.positional("ID", id, "The trip"); }
//     Operation<Trip> ask(const TripService& service) const { return service.fetch(id.text); }
//     static void print(const Trip& trip, Output& output) { … }
//   };
//
// `ask` takes the service that it asks, or the session where it needs more than that. Help, man
// page, completion and messages come of these declarations. `examples` and `declare` may
// be missing. `isInternal` hides it from completion. An operation that answers nothing has `done`,
// the line that is then printed, instead of `print`. A verb whose answer holds its records further
// down has `unwrapped`, which finds them in the backend's text. A verb that needs no call, or does
// more with its answer, has `void run(Session&) const` instead of `ask` and `print`.
#pragma once

#include "JSONText.h"
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
  /// Is there for other programs: completion does not offer it.
  [[nodiscard]] virtual bool isInternal() const = 0;
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

/// A verb's options and arguments.
[[nodiscard]] std::vector<Option> optionsOf(Verb& verb);

/// A verb that runs by itself.
template <class V>
concept RunsItself = requires(const V& verb, Session& session) {
  verb.run(session);
};

/// The backend's text for `answer`: as it was sent, or, where nothing was, as the library writes
/// it. Several answers are the pages of one list.
template <class V, class Answer>
[[nodiscard]] std::string textOf(const Answer& answer, const std::vector<std::string>& sent) {
  std::vector<std::string_view> elements;
  for (const std::string& text : sent) {
    std::vector<std::string_view> page;
    if constexpr (requires { V::unwrapped(text); }) {
      page = V::unwrapped(text);
    } else if (sent.size() == 1 && !text.empty()) {
      return text;
    } else {
      page = elementsOf(text);
    }
    elements.insert(elements.end(), page.begin(), page.end());
  }
  if (!elements.empty()) return arrayOf(elements);
  const Result<std::string> text = encodeChecked(answer);
  if (!text) throw failureOf(text.errorOr(NetworkError::unknown));
  return *text;
}

/// Prints an answer as the user wants it: as the verb prints it, or as the backend sent it.
template <class V, class Answer>
void printAnswer(const V& verb, const Answer& answer, Session& session) {
  Output& output = session.output();
  const OutputStyle& style = output.style();
  if (style.isRaw()) {
    for (const std::string& text : session.log().answers()) output.raw(text);
  } else if constexpr (std::same_as<Answer, Unit>) {
    if (!style.isJSON()) output.line(V::done);
  } else if (style.isJSON()) {
    output.json(textOf<V>(answer, session.log().answers()));
  } else {
    verb.print(answer, output);
  }
}

namespace detail {

/// Becomes what a verb takes: the session, or a service of who is signed in.
struct Asked {
  Session& session;

  operator Session&() const { return session; }  // NOLINT(google-explicit-constructor)
  template <std::constructible_from<Identity> Service>
  operator Service() const {  // NOLINT(google-explicit-constructor)
    return Service(session.identity());
  }
};

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

  [[nodiscard]] bool isInternal() const override {
    return requires { V::isInternal; };
  }

  void declare(Options& options) override {
    if constexpr (requires { verb_.declare(options); }) verb_.declare(options);
  }

  void run(Session& session) const override {
    if constexpr (RunsItself<V>) {
      verb_.run(session);
    } else {
      session.connect();
      printAnswer(verb_, session.call(verb_.ask(Asked{session})), session);
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
