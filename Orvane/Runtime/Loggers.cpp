// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/Loggers.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

namespace orvane {
namespace {

using Level = Logger::Level;

int severity(Level level) {
  switch (level) {
    case Level::error:
      return 2;
    case Level::warning:
      return 1;
    case Level::information:
      break;
  }
  return 0;
}

const char* name(Level level) {
  switch (level) {
    case Level::error:
      return "error";
    case Level::warning:
      return "warning";
    case Level::information:
      break;
  }
  return "information";
}

// RFC 3339, in UTC, to the millisecond.
std::string now() {
  const auto time = std::chrono::system_clock::now();
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char text[40];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03dZ", static_cast<int>(milliseconds % 1000));
  return std::string(text, length) + fraction;
}

}  // namespace

void StandardErrorLogger::write(const Entry& entry) {
  if (severity(entry.level) < severity(least_)) return;
  std::string line = now();
  line.append(" ").append(name(entry.level)).append(": ").append(entry.message);
  line.append(" (").append(entry.file).append(":").append(std::to_string(entry.line));
  line.append(", ").append(entry.function).append(")\n");
  // One call, so that lines of several threads do not mix.
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace orvane
