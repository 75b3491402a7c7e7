// SPDX-License-Identifier: Apache-2.0
// What the doubles of the host's asynchronous interfaces have in common: they remember what they
// were asked, and answer what and when they were told to.
#pragma once

#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/UniqueFunction.h>
#include <Orvane/Testing/Export.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace orvane {

/// When, and on which thread, a double calls the handler it was given.
enum class AnswerTime : std::uint8_t {
  atOnce,           ///< Inside the call, on the calling thread.
  onMainQueue,      ///< On the main queue, once the test drains it.
  onAnotherThread,  ///< As soon as possible, on a thread that the doubles of a process share.
  whenTold,         ///< Inside `Script::answerWaiting` or `ScriptedCall::answer`, on their thread.
  never,            ///< Only inside `ScriptedCall::answer`.
};

/// Runs `job` on the thread that the doubles share, after those posted before. The thread starts
/// with the first job and lives as long as the process. Any thread.
ORVANE_TESTING_EXPORT void runOnAnotherThread(MainQueue::Job job);

/// Waits until every job and answer given to that thread so far is done. Not to be called on it.
ORVANE_TESTING_EXPORT void waitForAnotherThread();

/// One answer of a double. Made from whatever a `Result<T>` can be made from; `Result<T>{}` is a
/// failure without an error.
template <class T>
struct ScriptedAnswer {
  /// Gives `outcome` at that time.
  template <class Outcome>
    requires(std::constructible_from<Result<T>, Outcome>)
  ScriptedAnswer(Outcome outcome,  // NOLINT(google-explicit-constructor): reads like the answer
                 AnswerTime when = AnswerTime::atOnce)
      : result(std::move(outcome)), time(when) {}

  /// Leaves the question open.
  [[nodiscard]] static ScriptedAnswer never() { return {Result<T>{}, AnswerTime::never}; }

  Result<T> result;  ///< What is answered.
  AnswerTime time;   ///< When.
};

/// A question that a double was asked, and the handle it returned for it. Cancelling it keeps the
/// contract of `Request`: the handler is called once, or let go of and never called. Any thread.
template <class Question, class T>
class ScriptedCall final : public Request {
 public:
  /// A question that `then` waits for the answer to.
  ScriptedCall(Question asked, Completion<T> then)
      : question(std::move(asked)), then_(std::move(then)) {}

  /// What was asked.
  const Question question;

  /// Calls the handler, on this thread. False, and nothing happens, when it has been called before
  /// or the call is cancelled.
  bool answer(Result<T> result) {
    if (!box_.claim()) return false;
    std::exchange(then_, nullptr)(std::move(result));
    box_.finish();
    return true;
  }

  bool cancel() override {
    if (!box_.cancel()) return false;
    Completion<T> last;  // with it may go the last reference to this
    if (!letGo_.test_and_set()) last = std::exchange(then_, nullptr);
    return true;
  }
  [[nodiscard]] bool isFinished() const noexcept override { return box_.isFinished(); }
  /// True once it has been cancelled.
  [[nodiscard]] bool isCancelled() const noexcept { return box_.cancelled(); }

 private:
  Completion<T> then_;
  RequestBox box_;
  std::atomic_flag letGo_;
};

/// The memory and the prompt of a double. Any thread may use it; handlers run without a lock held.
template <class Question, class T>
class Script {
 public:
  using Answer = ScriptedAnswer<T>;        ///< What a question is answered, and when.
  using Call = ScriptedCall<Question, T>;  ///< A question, and the handle returned for it.
  /// Tells the questions that an answer is for.
  using Condition = std::function<bool(const Question&)>;

  /// What every question is answered until it is told otherwise.
  explicit Script(Answer answer) { rules_.push_back({nullptr, {std::move(answer)}, 0}); }

  /// What every question is answered from now on, unless one of `answerWhere`'s applies.
  void answer(Answer answer) { answerInTurn({std::move(answer)}); }

  /// The same with one answer for each question: the last one stays. None at all, here and below,
  /// is a programming fault.
  void answerInTurn(std::vector<Answer> answers) {
    precondition(!answers.empty(), "a double needs an answer");
    const std::scoped_lock lock(mutex_);
    rules_.front() = {nullptr, std::move(answers), 0};
  }

  /// What the questions that fulfil `condition` are answered, in turn. Later conditions go before
  /// earlier ones.
  void answerWhere(Condition condition, std::vector<Answer> answers) {
    precondition(!answers.empty(), "a double needs an answer");
    const std::scoped_lock lock(mutex_);
    rules_.push_back({std::move(condition), std::move(answers), 0});
  }

  /// Every call so far, in order, finished and cancelled ones included.
  [[nodiscard]] std::vector<std::shared_ptr<Call>> calls() const {
    const std::scoped_lock lock(mutex_);
    return calls_;
  }

  /// What was asked so far, in order.
  [[nodiscard]] std::vector<Question> questions() const {
    std::vector<Question> questions;
    for (const auto& call : calls()) questions.push_back(call->question);
    return questions;
  }

  /// Forgets the calls so far. Those that wait to be told stay answerable through `answerWaiting`.
  void forgetCalls() {
    std::vector<std::shared_ptr<Call>> forgotten;
    const std::scoped_lock lock(mutex_);
    forgotten.swap(calls_);
  }

  /// Gives the answers of `AnswerTime::whenTold` that are due, on this thread. Answers how many
  /// calls that were; cancelled ones do not count.
  std::size_t answerWaiting() {
    std::unique_lock lock(mutex_);
    auto waiting = std::exchange(waiting_, {});
    lock.unlock();
    std::size_t count = 0;
    for (auto& [call, result] : waiting) count += call->answer(std::move(result)) ? 1U : 0U;
    return count;
  }

 protected:
  ~Script() = default;

  /// Notes the question and sees to its answer.
  RequestHandle ask(Question question, Completion<T> then) {
    auto call = std::make_shared<Call>(std::move(question), std::move(then));
    std::unique_lock lock(mutex_);
    calls_.push_back(call);
    Answer answer = ruleFor(call->question).next();
    if (answer.time == AnswerTime::whenTold) waiting_.emplace_back(call, answer.result);
    lock.unlock();
    give(call, std::move(answer));
    return call;
  }

 private:
  struct Rule {
    Condition condition;
    std::vector<Answer> answers;
    std::size_t given;

    [[nodiscard]] Answer next() {
      const std::size_t turn = given;
      if (given + 1 < answers.size()) ++given;
      return answers[turn];
    }
  };

  [[nodiscard]] Rule& ruleFor(const Question& question) {
    for (auto rule = rules_.rbegin(); rule != rules_.rend(); ++rule) {
      if (rule->condition && rule->condition(question)) return *rule;
    }
    return rules_.front();
  }

  static void give(const std::shared_ptr<Call>& call, Answer answer) {
    auto job = [call, result = std::move(answer.result)]() mutable {
      call->answer(std::move(result));
    };
    switch (answer.time) {
      case AnswerTime::atOnce:
        return job();
      case AnswerTime::onMainQueue:
        return MainQueue::main().async(std::move(job));
      case AnswerTime::onAnotherThread:
        return runOnAnotherThread(std::move(job));
      case AnswerTime::whenTold:
      case AnswerTime::never:
        break;
    }
  }

  mutable std::mutex mutex_;
  std::vector<Rule> rules_;
  std::vector<std::shared_ptr<Call>> calls_;
  std::vector<std::pair<std::shared_ptr<Call>, Result<T>>> waiting_;
};

}  // namespace orvane
