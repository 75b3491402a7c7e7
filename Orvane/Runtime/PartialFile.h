// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The file of a download until it is complete.
#pragma once

#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>
#include <Orvane/Runtime/DownloadError.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A temporary file beside the target, "<target>.part". A note next to it, "<target>.part.from",
/// tells what its bytes are the beginning of: which URL, by its hash, and which state of the file
/// there, by its validator. No note, no continuation.
///
/// Whoever has it open has it alone, across processes; it is closed by destruction.
class PartialFile {
 public:
  /// Opens the temporary file of `target`, creating it where there is none.
  [[nodiscard]] static Result<std::shared_ptr<PartialFile>> open(std::string target,
                                                                 const URL& source);
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  ~PartialFile();

  /// Bytes that are there.
  [[nodiscard]] std::int64_t size() const noexcept { return size_; }
  /// The validator of the state that they are the beginning of; empty when they can't be continued.
  [[nodiscard]] const std::string& validator() const noexcept { return validator_; }

  /// Empties the file, and notes what it will be filled with; with an empty validator, that it
  /// can't be continued.
  [[nodiscard]] std::optional<DownloadError> restart(std::string validator);
  /// Cuts the file to its first bytes; what they are the beginning of stays.
  [[nodiscard]] std::optional<DownloadError> shorten(std::int64_t size);
  /// Adds bytes at the end.
  [[nodiscard]] std::optional<DownloadError> append(std::string_view bytes);
  /// Makes sure that the bytes have reached the disk, and puts the file in the target's place.
  [[nodiscard]] std::optional<DownloadError> complete();
  /// Removes the file and its note, unless they are gone.
  void discard();

 private:
  PartialFile(std::string target, const URL& source);

  [[nodiscard]] std::optional<DownloadError> lock();
  void readNote();
  [[nodiscard]] bool writeNote() const;
  [[nodiscard]] std::string path() const { return target_ + ".part"; }
  [[nodiscard]] std::string notePath() const { return target_ + ".part.from"; }

  const std::string target_;
  const std::string sourceHash_;
  int descriptor_ = -1;
  std::int64_t size_ = 0;
  std::string validator_;
  bool isThere_ = true;  // under its temporary name, which is somebody else's afterwards
};

}  // namespace orvane
