// SPDX-License-Identifier: Apache-2.0
// How far a download has come, for people who watch.
#pragma once

#include <Orvane/Common/Downloader.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::cli {

/// A line that fits into `columns`: "firmware [#####.....]  50 %  1.0 of 2.0 MB", without the bar
/// where the whole is not known or there is no room.
[[nodiscard]] std::string progressLine(std::string_view title, const DownloadProgress& progress,
                                       std::size_t columns);

/// A bar on standard error, where that is a terminal that can take a line back; else nothing.
class ProgressBar {
 public:
  explicit ProgressBar(std::string title);
  /// As `end()`.
  ~ProgressBar() { end(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// What shows the progress. It may be called on any thread, and after the bar has gone.
  [[nodiscard]] DownloadProgressHandler handler() const;

  /// Takes the line back. Nothing is shown any more.
  void end();

 private:
  struct State;
  std::shared_ptr<State> state_;  // null where nothing is shown
};

}  // namespace orvane::cli
