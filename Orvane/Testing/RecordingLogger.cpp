// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/RecordingLogger.h>

#include <mutex>
#include <utility>

namespace orvane {

class RecordingLogger::Sink final : public Logger {
 public:
  void write(const Entry& entry) override {
    const std::scoped_lock lock(mutex_);
    lines_.push_back({entry.level, std::string(entry.message), std::string(entry.file),
                      std::string(entry.function), entry.line});
  }

  [[nodiscard]] std::vector<Line> lines() const {
    const std::scoped_lock lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Line> lines_;
};

RecordingLogger::RecordingLogger()
    : sink_(std::make_shared<Sink>()), former_(Logger::setShared(sink_)) {}

RecordingLogger::~RecordingLogger() { Logger::setShared(std::move(former_)); }

std::vector<RecordingLogger::Line> RecordingLogger::lines() const { return sink_->lines(); }

}  // namespace orvane
