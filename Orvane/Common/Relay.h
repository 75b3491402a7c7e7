// SPDX-License-Identifier: Apache-2.0
// What stands between an operation and who asked for it, where something is done to its outcome.
#pragma once

#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Result.h>

#include <memory>
#include <utility>

namespace orvane::detail {

/// Hands on the outcome of one start of an operation, or another one before that is there. The
/// closure of the operation under way owns it; its box is apart, so that who keeps the handle does
/// not keep the handler. Any thread.
template <class T>
class Relay {
 public:
  explicit Relay(Completion<T> handler) : handler_(std::move(handler)) {}
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;
  // Where no outcome comes any more, nobody is to wait for one.
  ~Relay() { box_->cancel(); }

  /// Starts `operation` and hands on what it answers, through `handOn` where that is given: called
  /// with `self` and the outcome. Answers the handle of the whole.
  template <class Operation, class Self, class HandOn>
  RequestHandle pass(const Operation& operation, std::shared_ptr<Self> self, HandOn handOn) {
    const std::shared_ptr<RequestBox> box = box_;
    if (!box->isPending()) return box;
    box->step([&] {
      return operation.start([self = std::move(self), handOn](Result<T> result) mutable {
        handOn(std::move(self), std::move(result));
      });
    });
    return box;
  }
  template <class Operation, class Self>
  RequestHandle pass(const Operation& operation, std::shared_ptr<Self> self) {
    return pass(operation, std::move(self),
                [](auto relay, Result<T> result) { relay->answer(std::move(result)); });
  }

  /// The outcome.
  void answer(Result<T> result) { box_->complete(handler_, std::move(result)); }

  /// Another outcome than that of the operation, which is cancelled.
  void interrupt(Error error) { box_->interrupt(handler_, Result<T>(std::move(error))); }

  [[nodiscard]] const std::shared_ptr<RequestBox>& box() const noexcept { return box_; }

 private:
  Completion<T> handler_;
  const std::shared_ptr<RequestBox> box_ = std::make_shared<RequestBox>();
};

}  // namespace orvane::detail
