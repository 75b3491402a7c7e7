// SPDX-License-Identifier: Apache-2.0
// Where the examples find the backend: in the environment, by the names that the command line
// knows, too. An application has settings of its own.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Runtime.h>

#include <cstdlib>
#include <string>

inline std::string setting(const char* name, const char* fallback = "") {
  const char* value = std::getenv(name);
  return value != nullptr ? value : fallback;
}

/// The backend (ORVANE_BASE_URL), who is signed in there (ORVANE_TOKEN), and the certificate
/// authority to trust instead of the system's, if any (ORVANE_CA_FILE).
inline orvane::RuntimeOptions settings() {
  return {.baseURL = setting("ORVANE_BASE_URL"),
          .tokens = setting("ORVANE_TOKEN"),
          .transport = {.caFile = setting("ORVANE_CA_FILE")}};
}

inline orvane::Identity identity() { return {setting("ORVANE_API_KEY", "my-api-key")}; }
