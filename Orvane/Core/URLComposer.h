// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// How an operation says what it requests: composers turn arguments and details into URL and body.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

/// What can be turned into the URL of a request.
class URLConvertible {
 public:
  virtual ~URLConvertible() = default;

  /// A header that the request carries besides the details' own.
  [[nodiscard]] virtual std::optional<std::pair<std::string, std::string>> additionalHeader()
      const {
    return std::nullopt;
  }

  /// The URL below the details' API root; absent where none can be formed.
  [[nodiscard]] virtual std::optional<URL> url(const OrvaneDetails& details) const = 0;
};

/// Bytes of a request and the headers that describe them.
struct RequestBody {
  std::string bytes;
  Headers headers;
};

/// One operation's path, query and body.
class URLComposer : public URLConvertible {
 public:
  /// The path below the API root, without a leading slash.
  [[nodiscard]] virtual std::string path(std::string_view userID) const = 0;
  /// The query without the leading question mark; absent for none.
  [[nodiscard]] virtual std::optional<std::string> query() const { return std::nullopt; }
  /// The body of a write, or why it can't be made; absent for reads, and for writes without one.
  [[nodiscard]] virtual std::optional<Result<RequestBody>> body() const { return std::nullopt; }

  [[nodiscard]] std::optional<URL> url(const OrvaneDetails& details) const override;
};

/// The items of a query, joined with "&" as they are; no items make no query.
class QueryItems {
 public:
  QueryItems& add(std::string_view item);
  QueryItems& add(std::string_view name, std::string_view value);
  QueryItems& add(std::string_view name, std::int64_t value);
  [[nodiscard]] std::optional<std::string> joined() && { return std::move(text_); }

 private:
  std::optional<std::string> text_;
};

/// The headers of every write of a JSON body.
[[nodiscard]] Headers standardJSONHeaders();

}  // namespace orvane
