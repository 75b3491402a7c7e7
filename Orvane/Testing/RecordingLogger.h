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
  struct Line {
    Logger::Level level;
    std::string message;
    std::string file;
    std::string function;
    std::uint_least32_t line;
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
