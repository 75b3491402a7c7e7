// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// A list of trips that is read page by page.
#pragma once

#include <Orvane/Services/Trip/TripService.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// A place in a list of trips: which page comes next.
class TripCursor {
 public:
  /// At the first page.
  TripCursor(const TripService& service, TripPages pages);

  /// The page that comes next.
  [[nodiscard]] Operation<std::vector<Trip>> page() const;

  /// Goes on behind `page`, which has been fetched. Answers whether more may follow; fails with
  /// `NetworkError::invalidResponseData` for the same full page again: a backend that does not heed
  /// the offset would be asked for ever.
  [[nodiscard]] Result<bool> advance(const std::vector<Trip>& page);

 private:
  TripService service_;
  TripPages pages_;
  std::int64_t pageSize_;
  std::int64_t offset_ = 0;
  std::vector<std::optional<std::string>> formerIDs_;
};

/// Asks for one page after the other. The closure of the request under way owns it; its box is
/// apart, so that who keeps the handle does not keep the handlers.
class TripWalk : public std::enable_shared_from_this<TripWalk> {
 public:
  /// Starts a walk and answers its handle.
  static RequestHandle start(TripCursor from, std::shared_ptr<TripPageHandler> onPage,
                             Completion<Unit> then);

  TripWalk(TripCursor from, std::shared_ptr<TripPageHandler> onPage, Completion<Unit> then);
  TripWalk(const TripWalk&) = delete;
  TripWalk& operator=(const TripWalk&) = delete;
  // Where no page comes any more, nobody is to wait for one.
  ~TripWalk() { box_->cancel(); }

 private:
  // How the thread that asks for a page and the one that receives it agree on who goes on: it is
  // the latter, unless the answer came inside the call. So a walk does not nest, however many pages
  // are answered at once.
  enum class Progress : std::uint8_t { asking, waiting, answered };

  void askForPages();
  void pageArrived(Result<std::vector<Trip>> answer);
  void finish(Result<Unit> outcome);

  TripCursor cursor_;
  std::shared_ptr<TripPageHandler> onPage_;
  Completion<Unit> then_;
  const std::shared_ptr<RequestBox> box_ = std::make_shared<RequestBox>();
  std::atomic<Progress> progress_{Progress::asking};
};

}  // namespace orvane
