// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>

#include <cstdio>
#include <mutex>
#include <utility>

namespace orvane {
namespace {

using Level = Logger::Level;

// What writes until the application says where to.
class InitialLogger final : public Logger {
 public:
  void write(const Entry& entry) override {
    if (entry.level == Level::information) return;
    std::fprintf(stderr, "%s: %.*s\n", entry.level == Level::error ? "error" : "warning",
                 static_cast<int>(entry.message.size()), entry.message.data());
  }
};

struct State {
  std::mutex mutex;
  std::shared_ptr<Logger> logger = std::make_shared<InitialLogger>();
};

// Never destroyed: lines may still come while the process ends.
State& state() {
  static State& state = *new State;
  return state;
}

void write(const Logger::Entry& entry) {
  State& shared = state();
  std::unique_lock lock(shared.mutex);
  const std::shared_ptr<Logger> logger = shared.logger;
  lock.unlock();
  logger->write(entry);
}

void write(Level level, std::string_view message, const SourceLocation& place) {
  write({level, message, place.fileName(), place.functionName(), place.line()});
}

}  // namespace

Logger::~Logger() = default;

std::shared_ptr<Logger> Logger::setShared(std::shared_ptr<Logger> logger) {
  if (!logger) logger = std::make_shared<InitialLogger>();
  State& shared = state();
  const std::scoped_lock lock(shared.mutex);
  shared.logger.swap(logger);
  return logger;
}

void SharedLog::e(std::string_view message, const SourceLocation& place) const {
  write(Level::error, message, place);
}
void SharedLog::i(std::string_view message, const SourceLocation& place) const {
  write(Level::information, message, place);
}
void SharedLog::w(std::string_view message, const SourceLocation& place) const {
  write(Level::warning, message, place);
}

void SharedLog::e(std::string_view message, std::string_view file, std::string_view function,
                  std::uint_least32_t line) const {
  write({Level::error, message, file, function, line});
}
void SharedLog::i(std::string_view message, std::string_view file, std::string_view function,
                  std::uint_least32_t line) const {
  write({Level::information, message, file, function, line});
}
void SharedLog::w(std::string_view message, std::string_view file, std::string_view function,
                  std::uint_least32_t line) const {
  write({Level::warning, message, file, function, line});
}

}  // namespace orvane
