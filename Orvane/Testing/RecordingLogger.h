// SPDX-License-Identifier: Apache-2.0
// Catches the library's log lines.
#pragma once

#include <Orvane/Common/Logger.h>
#include <Orvane/Testing/Export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvane {

/// Takes the place of the shared logger while it lives and keeps what is logged. Any thread may
/// log; loggers of one kind may be nested.
class ORVANE_TESTING_EXPORT RecordingLogger {
 public:
  /// What was logged, and where.
  struct Line {
    Logger::Level level;       ///< How serious it is.
    std::string message;       ///< The line.
    std::string file;          ///< The file, relative to the project.
    std::string function;      ///< The function's name without its signature.
    std::uint_least32_t line;  ///< Counted from 1.
  };

  RecordingLogger();
  ~RecordingLogger();
  RecordingLogger(const RecordingLogger&) = delete;
  RecordingLogger& operator=(const RecordingLogger&) = delete;

  /// What has been logged so far, in order.
  [[nodiscard]] std::vector<Line> lines() const;

 private:
  class Sink;
  const std::shared_ptr<Sink> sink_;
  std::shared_ptr<Logger> former_;
};

}  // namespace orvane
