// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// A transfer whose answer becomes a file.
#pragma once

#include <Orvane/Common/Downloader.h>
#include <Orvane/Runtime/PartialFile.h>
#include <Orvane/Runtime/Transfer.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

/// Asks for what is missing of the file, and puts it in its place when it is complete. A successful
/// outcome is an empty text.
class FileTransfer final : public Transfer {
 public:
  FileTransfer(std::shared_ptr<TransferLoop> loop, OutgoingRequest request, std::string path,
               DownloadProgressHandler progress, Completion<Unit> then);

  [[nodiscard]] std::optional<Error> prepare(std::unique_ptr<CurlEasy> easy) override;
  [[nodiscard]] std::unique_ptr<CurlEasy> release() override;

 protected:
  [[nodiscard]] bool decompresses() const noexcept override { return false; }
  [[nodiscard]] bool take(const char* bytes, std::size_t count) override;
  [[nodiscard]] std::optional<Error> problem() const override { return problem_; }
  [[nodiscard]] Result<std::string> taken() override;

 private:
  [[nodiscard]] std::optional<Error> begin();
  [[nodiscard]] std::optional<Error> beginWhole();
  [[nodiscard]] std::optional<Error> beginRest();
  [[nodiscard]] std::optional<Error> finish();

  const std::string path_;
  DownloadProgressHandler progress_;
  std::shared_ptr<PartialFile> file_;
  std::optional<std::int64_t> total_;
  std::optional<Error> problem_;
  bool hasBegun_ = false;
};

}  // namespace orvane
