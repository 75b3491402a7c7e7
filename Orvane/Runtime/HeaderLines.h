// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The headers of a request as libcurl takes them.
#pragma once

#include <Orvane/Common/RequestManager.h>

#include <curl/curl.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A list of lines that libcurl reads where they are: two pieces of memory, however many there are.
/// `curl_slist_append` would take two for each.
class HeaderLines {
 public:
  /// Those of `headers`; what the request accepts; and what keeps libcurl from adding its own.
  explicit HeaderLines(const Headers& headers);
  HeaderLines(const HeaderLines&) = delete;
  HeaderLines& operator=(const HeaderLines&) = delete;
  ~HeaderLines() = default;

  /// Valid as long as this.
  [[nodiscard]] curl_slist* list() noexcept { return lines_.data(); }

 private:
  void add(std::string_view name, std::string_view between, std::string_view value);

  std::string text_;  // the lines, each with a zero behind it
  std::vector<curl_slist> lines_;
};

}  // namespace orvane
