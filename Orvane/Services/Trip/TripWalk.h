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

/// Asks for one page after the other. The closure of the request under way owns it; its box is
/// apart, so that who keeps the handle does not keep the handlers.
class TripWalk : public std::enable_shared_from_this<TripWalk> {
 public:
  /// Starts a walk and answers its handle.
  static RequestHandle start(const TripService& service, TripPages pages, TripPageHandler onPage,
                             Completion<Unit> then);

  TripWalk(const TripService& service, TripPages pages, TripPageHandler onPage,
           Completion<Unit> then);

 private:
  // How the thread that asks for a page and the one that receives it agree on who goes on: it is
  // the latter, unless the answer came inside the call. So a walk does not nest, however many pages
  // are answered at once.
  enum class Progress : std::uint8_t { asking, waiting, answered };
  using TripIDs = std::vector<std::optional<std::string>>;

  void askForPages();
  RequestHandle askForPage();
  void pageArrived(Result<std::vector<Trip>> answer);
  void finish(Result<Unit> outcome);

  const TripService service_;
  const TripPages pages_;
  const std::int64_t pageSize_;
  TripPageHandler onPage_;
  Completion<Unit> then_;
  const std::shared_ptr<RequestBox> box_ = std::make_shared<RequestBox>();
  std::atomic<Progress> progress_{Progress::asking};
  std::int64_t offset_ = 0;
  TripIDs formerIDs_;
};

}  // namespace orvane
