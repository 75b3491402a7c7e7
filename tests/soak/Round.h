// SPDX-License-Identifier: Apache-2.0
// Some hundred calls from an installation of the Runtime to its shutdown, and what must hold of
// each.
#pragma once

#include "tests/soak/Backend.h"
#include "tests/soak/Faults.h"
#include <Orvane/Common/Downloader.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/Runtime.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <semaphore>
#include <string>
#include <vector>

namespace orvane::soak {

/// What has become of calls.
struct Counts {
  std::atomic<std::uint64_t> succeeded = 0;
  std::atomic<std::uint64_t> failed = 0;
  std::atomic<std::uint64_t> cancelled = 0;
  /// Of those that failed: what the server answered well, and the connection or the lookup of the
  /// user's identifier before it lost.
  std::atomic<std::uint64_t> unlucky = 0;
  /// What must not be, each of them printed.
  std::atomic<std::uint64_t> faults = 0;
};

class Round {
 public:
  /// Makes `calls` calls, numbered from `first` on. Files stand in `folder` meanwhile.
  Round(Backend& backend, const Dice& dice, Counts& counts, std::filesystem::path folder,
        std::uint64_t first, std::uint64_t calls);

  /// Returns when everything has come to its end.
  void run();

 private:
  struct Call {
    Call(std::uint64_t callNumber, Kind callKind) : number(callNumber), kind(callKind) {}

    const std::uint64_t number;
    const Kind kind;
    std::atomic<int> answers = 0;
    std::atomic<bool> isCancelled = false;
  };
  using CallPointer = std::shared_ptr<Call>;
  struct UnderWay {
    CallPointer call;
    RequestHandle handle;
  };

  void makeCalls();
  RequestHandle start(const CallPointer& call);
  RequestHandle startDownload(const CallPointer& call);
  void keep(UnderWay underWay);
  void cancelOneBefore(std::uint64_t number, std::uint64_t distance);
  void cancel(const UnderWay& underWay);
  void end();
  void check();

  template <class T>
  Completion<T> handler(const CallPointer& call);
  template <class T>
  void answered(Call& call, const Result<T>& result);
  template <class Record>
  [[nodiscard]] std::string contentOf(const Call& call, const Record& record) const;
  [[nodiscard]] std::string expected(const Call& call) const;
  [[nodiscard]] std::filesystem::path fileOf(const Call& call) const;
  void checkFormerFile(const Call& call);
  void fault(const Call& call, const std::string& what);

  static constexpr std::ptrdiff_t mostAtOnce = 32;

  Backend& backend_;
  const Dice& dice_;
  Counts& counts_;
  const std::filesystem::path folder_;
  const std::uint64_t first_;
  const Runtime runtime_;
  const std::shared_ptr<RequestManager> requestManager_;
  const std::shared_ptr<Downloader> downloader_;
  std::counting_semaphore<mostAtOnce> free_{mostAtOnce};
  std::vector<CallPointer> calls_;
  std::mutex mutex_;
  std::array<UnderWay, 64> underWay_;
};

}  // namespace orvane::soak
