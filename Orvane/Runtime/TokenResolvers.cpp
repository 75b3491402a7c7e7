// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/AnswerOnce.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/TokenResolvers.h>

#include <atomic>
#include <utility>

namespace orvane {
namespace {

// A question to the application's function.
class Question final : public Request {
 public:
  explicit Question(Completion<std::string> then) : then_(std::move(then)) {}

  void answer(Result<std::string> token) { box_.complete(then_, std::move(token)); }
  void unanswered() { answer(TokenError(TokenError::Kind::unanswered)); }

  bool cancel() override {
    if (!box_.cancel()) return false;
    // Whoever answers from now on leaves the handler alone; of those who cancel the first one
    // lets go of it, however long the function keeps what it was given. With it may go the last
    // reference to this.
    Completion<std::string> last;
    if (!hasLetGo_.test_and_set()) last = std::exchange(then_, nullptr);
    return true;
  }
  [[nodiscard]] bool isFinished() const noexcept override { return box_.isFinished(); }

 private:
  RequestBox box_;
  Completion<std::string> then_;
  std::atomic_flag hasLetGo_;
};

}  // namespace

std::string TokenError::message() const {
  switch (kind_) {
    case Kind::signedOut:
      return "the token has been forgotten: the person has signed out";
    case Kind::unanswered:
      return "the application's token function has not answered";
    case Kind::signing:
      break;
  }
  return "the token could not be signed";
}

KeepingTokenResolver::~KeepingTokenResolver() = default;

RequestHandle ReplaceableTokenResolver::resolve(const Identity&, std::optional<double>,
                                                Completion<std::string> resultHandler) {
  Result<std::string> token = TokenError(TokenError::Kind::signedOut);
  {
    const std::scoped_lock lock(mutex_);
    if (token_) token = *token_;
  }
  resultHandler(std::move(token));
  return std::make_shared<EmptyRequest>();
}

void ReplaceableTokenResolver::replace(std::string token) {
  const std::scoped_lock lock(mutex_);
  token_ = std::move(token);
}

void ReplaceableTokenResolver::forget(const Identity&) {
  const std::scoped_lock lock(mutex_);
  token_.reset();
}

FunctionTokenResolver::FunctionTokenResolver(Function function) : function_(std::move(function)) {
  precondition(static_cast<bool>(function_), "a token function is empty");
}

RequestHandle FunctionTokenResolver::resolve(const Identity& identity, std::optional<double> offset,
                                             Completion<std::string> resultHandler) {
  auto question = std::make_shared<Question>(std::move(resultHandler));
  function_(identity, offset, detail::answerOnce<std::string>(question));
  return question;
}

TokenSource TokenSource::fixed(std::string token) {
  if (token.empty()) return {};
  return std::make_shared<ReplaceableTokenResolver>(std::move(token));
}

Result<std::shared_ptr<TokenResolver>> TokenSource::resolver() const {
  if (resolver_.error() || resolver_.value().value_or(nullptr)) return resolver_;
  return ConfigurationError("tokens are missing");
}

}  // namespace orvane
