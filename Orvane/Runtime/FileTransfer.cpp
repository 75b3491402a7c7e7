// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/ContentRange.h>
#include <Orvane/Runtime/CurlErrors.h>
#include <Orvane/Runtime/CurlTLS.h>
#include <Orvane/Runtime/FileTransfer.h>
#include <Orvane/Runtime/HTTPDate.h>
#include <Orvane/Runtime/TransportError.h>

#include <utility>

namespace orvane {
namespace {

constexpr int ok = 200;
constexpr int partialContent = 206;
constexpr int rangeNotSatisfiable = 416;

// Where to go on: at the last byte that is there, once more. So there is always something to ask
// for, even when the whole file is there already.
std::int64_t continuation(const PartialFile& file) { return file.size() - 1; }

TransportError protocolError(const char* details) {
  return TransportError(TransportError::Kind::protocol, details);
}

// RFC 9110, section 8.8.2.2: a time is a strong validator once nothing can have changed within it.
bool isStrong(const std::string& lastModified, const std::string& date) {
  constexpr Seconds safety{60};
  const Date now = DeviceClock::now();
  const auto modified = dateFromHTTP(lastModified, now);
  const auto sent = dateFromHTTP(date, now);
  return modified && sent && *sent - *modified >= safety;
}

// What tells this state of the file from others, for "If-Range" (RFC 9110, section 13.1.5); empty
// where the server tells nothing that will do.
std::string validatorIn(const CurlEasy& easy) {
  if (std::string tag = easy.header("ETag"); !tag.empty()) {
    return tag.starts_with('"') ? tag : std::string();
  }
  std::string modified = easy.header("Last-Modified");
  return isStrong(modified, easy.header("Date")) ? modified : std::string();
}

Completion<std::string> withoutText(Completion<Unit> then) {
  return [then = std::move(then)](Result<std::string> outcome) mutable {
    if (outcome.value()) return then(Unit{});
    then(*std::move(outcome).error());
  };
}

}  // namespace

FileTransfer::FileTransfer(std::shared_ptr<TransferLoop> loop, OutgoingRequest request,
                           std::string path, DownloadProgressHandler progress,
                           Completion<Unit> then)
    : Transfer(std::move(loop), std::move(request), withoutText(std::move(then))),
      path_(std::move(path)),
      progress_(std::move(progress)) {}

std::optional<Error> FileTransfer::prepare(std::unique_ptr<CurlEasy> easy) {
  auto file = PartialFile::open(path_, request().url);
  if (!file.value()) return file.error();
  file_ = *std::move(file).value();
  // Ranges count the bytes of the file; compressed ones would be others.
  request().headers = {{"Accept-Encoding", "identity"}};
  if (file_->size() > 0 && !file_->validator().empty()) {
    request().headers.emplace("Range", "bytes=" + std::to_string(continuation(*file_)) + "-");
    request().headers.emplace("If-Range", file_->validator());
  }
  return Transfer::prepare(std::move(easy));
}

std::optional<Error> FileTransfer::begin() {
  hasBegun_ = true;
  if (!head().coding().empty()) return protocolError("the file comes compressed, unasked");
  // Over TLS the end of the connection tells as much, where it is looked at.
  const bool seesFarewell = request().isEncrypted && usesOpenSSL();
  if (!head().tellsItsEnd() && !seesFarewell) {
    return protocolError("the answer does not tell where the file ends");
  }
  switch (head().status()) {
    case ok:
      return beginWhole();
    case partialContent:
      return beginRest();
    default:
      return protocolError("the answer is no file");
  }
}

std::optional<Error> FileTransfer::beginWhole() {
  total_ = head().length();
  return file_->restart(validatorIn(*easy()));
}

std::optional<Error> FileTransfer::beginRest() {
  const auto range = contentRange(easy()->header("Content-Range"));
  if (!range || range->first != continuation(*file_) || !request().headers.contains("Range")) {
    file_->discard();
    return protocolError("the answer is not the part that was asked for");
  }
  total_ = range->total;
  return file_->shorten(range->first);
}

bool FileTransfer::take(const char* bytes, std::size_t count) {
  if (!hasBegun_) problem_ = begin();
  if (!problem_) problem_ = file_->append({bytes, count});
  if (problem_) return false;
  if (isPending()) progress_({.received = file_->size(), .total = total_});
  return true;
}

Result<std::string> FileTransfer::taken() {
  if (!hasBegun_) problem_ = begin();
  if (!problem_) problem_ = finish();
  if (problem_) return *problem_;
  return std::string();
}

std::optional<Error> FileTransfer::finish() {
  if (total_ && *total_ != file_->size()) {
    return TransportError(TransportError::Kind::cutOff, "a part of the file is missing");
  }
  return file_->complete();
}

std::unique_ptr<CurlEasy> FileTransfer::release() {
  if (file_) {
    if (file_->validator().empty() || head().status() == rangeNotSatisfiable) file_->discard();
    file_.reset();
  }
  progress_ = nullptr;
  return Transfer::release();
}

}  // namespace orvane
