// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// libcurl's error codes as this library's errors.
#pragma once

#include <Orvane/Platform/Error.h>

#include <curl/curl.h>

#include <string>

namespace orvane {

/// The error that `code` stands for. `details` are libcurl's words on it, where it has any.
[[nodiscard]] Error errorOf(CURLcode code, std::string details);

/// True when the connection, or the request's share in it, ended before its time.
[[nodiscard]] bool isCut(CURLcode code) noexcept;

/// True when libcurl had no room for something: none at all, or none within its own limits.
[[nodiscard]] bool isAboutMemory(CURLcode code) noexcept;

}  // namespace orvane
