// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/TokenResolvers.h>

#include <utility>

namespace orvane {
namespace {

// A question to the application's function that waits for its answer.
class Question {
 public:
  Question(std::shared_ptr<RequestBox> box, Completion<std::string> then)
      : box_(std::move(box)), then_(std::move(then)) {}
  Question(Question&&) noexcept = default;
  Question& operator=(Question&&) = delete;
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;
  ~Question() {
    if (box_) answer(TokenError(TokenError::Kind::unanswered));
  }

  void operator()(Result<std::string> token) { answer(std::move(token)); }

 private:
  void answer(Result<std::string> token) { box_->complete(then_, std::move(token)); }

  std::shared_ptr<RequestBox> box_;
  Completion<std::string> then_;
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
  auto box = std::make_shared<RequestBox>();
  function_(identity, offset, Question(box, std::move(resultHandler)));
  return box;
}

Result<std::shared_ptr<TokenResolver>> TokenSource::resolver() const {
  if (!resolver_.value() && !resolver_.error()) return ConfigurationError("tokens are missing");
  return resolver_;
}

}  // namespace orvane
