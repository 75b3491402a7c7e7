// SPDX-License-Identifier: Apache-2.0
// What went to the backend and came back: kept for answers as they were sent, and for messages, and
// shown by --verbose.
#pragma once

#include <Orvane/Runtime/Exchange.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

/// Keeps the exchanges of one command line. Any thread.
class ExchangeLog {
 public:
  /// What is written to standard error as it comes.
  enum class Shown : std::uint8_t {
    nothing,
    exchanges,  ///< URLs without the values of queries, headers without tokens and cookies, sizes.
    bodies,     ///< The same with the bodies, in which people's data travels.
  };

  explicit ExchangeLog(Shown shown) : shown_(shown) {}

  void note(const Exchange& exchange);

  [[nodiscard]] std::vector<Exchange> exchanges() const;
  /// The bodies of what was answered well, the lookup of the user's identifier left out.
  [[nodiscard]] std::vector<std::string> answers() const;
  /// The body of the last answer, whatever became of it; empty where there is none.
  [[nodiscard]] std::string lastAnswer() const;
  /// The last one's verb and URL, the values of the query blanked; empty where nothing was sent.
  [[nodiscard]] std::string lastRequest() const;

 private:
  const Shown shown_;
  mutable std::mutex mutex_;
  std::vector<Exchange> exchanges_;
};

/// `url` with every value of its query as "…".
[[nodiscard]] std::string withoutValues(std::string_view url);

}  // namespace orvane::cli
