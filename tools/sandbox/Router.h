// SPDX-License-Identifier: Apache-2.0
//
// Which resource answers which request. A route states what it accepts, and whatever departs from
// it is refused before the resource sees it.
#pragma once

#include "http/Message.h"
#include "http/Multipart.h"
#include "http/Query.h"
#include "store/Database.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

class Backend;

enum class Body { none, json, form };
enum class Access { bearer, anyone };

/// One request on its way through a resource.
struct Call {
  Backend& backend;
  DatabaseConnection& database;
  const Request& request;
  Query query;
  std::vector<std::string> captures;  // what stood in the braces of the route's path
  std::string callerId;               // the user id of the token's subject; empty for anyone
  std::vector<FormPart> form;         // the parts of a form body

  [[nodiscard]] const std::string& capture(std::size_t index) const { return captures.at(index); }
};

struct Endpoint {
  std::string_view method;
  std::string_view path;  // below the API root; {name} stands for one segment that is not empty
  std::function<Reply(Call&)> handle;
  std::vector<std::string_view> query = {};  // the parameters that it takes
  Body body = Body::none;
  Access access = Access::bearer;
};

class Router {
 public:
  void add(Endpoint route);

  /// Answers a request whose path below the API root is given, and tells who asked as soon as that
  /// is known. Throws a `Problem` to refuse.
  [[nodiscard]] Reply dispatch(Backend& backend, const Request& request, std::string_view path,
                               std::string& callerId) const;

 private:
  struct Entry {
    Endpoint route;
    std::vector<std::string_view> segments;
  };
  [[nodiscard]] const Entry* find(const Request& request, std::string_view path,
                                  std::vector<std::string>& captures) const;

  std::vector<Entry> entries_;
};

}  // namespace orvane::sandbox
