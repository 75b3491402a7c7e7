// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Error.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/Text.h>

#include <utility>

namespace orvane {
namespace {

void fill(std::string& place, std::string&& text) {
  if (place.empty()) place = std::move(text);
}

}  // namespace

// Out of line, so that the class has one home and its type one identity across shared libraries.
Error::AnyBox::~AnyBox() = default;

// An error with what was going on. It stays the error that it is.
class Error::Explained final : public AnyBox {
 public:
  Explained(std::shared_ptr<const AnyBox> error, ErrorContext context)
      : error_(std::move(error)), context_(std::move(context)) {}

  [[nodiscard]] const AnyBox& bare() const noexcept override { return error_->bare(); }
  [[nodiscard]] const ErrorContext* context() const noexcept override { return &context_; }
  [[nodiscard]] const std::type_info& type() const noexcept override { return bare().type(); }
  [[nodiscard]] std::string message() const override { return bare().message(); }
  [[nodiscard]] bool equals(const AnyBox& other) const override { return bare().equals(other); }
  [[nodiscard]] bool isTransient() const override { return bare().isTransient(); }

 private:
  const std::shared_ptr<const AnyBox> error_;
  const ErrorContext context_;
};

Error Error::with(ErrorContext context) const {
  if (const ErrorContext* former = this->context()) {
    ErrorContext merged = *former;
    fill(merged.operation, std::move(context.operation));
    if (!merged.status) merged.status = context.status;
    fill(merged.reason, std::move(context.reason));
    fill(merged.finding, std::move(context.finding));
    context = std::move(merged);
  }
  return Error(std::make_shared<const Explained>(box_, std::move(context)));
}

std::string Error::description() const {
  std::string text = message();
  const ErrorContext* known = context();
  if (known == nullptr) return text;
  if (!known->operation.empty()) text = concatenated({known->operation, ": ", text});
  for (const std::string& detail : {known->reason, known->finding}) {
    if (!detail.empty()) text += concatenated({": ", detail});
  }
  return text;
}

void detail::stopWithoutValue(const Error* error) noexcept {
  fatal(concatenated({"the value of a failure was read: ",
                      error != nullptr ? error->message() : "it came without its error"}));
}

}  // namespace orvane
