// SPDX-License-Identifier: Apache-2.0
// What --verbose shows of the exchanges with the backend.
#pragma once

#include <Orvane/Runtime/Exchange.h>

namespace orvane::cli {

/// Writes an exchange to standard error: the request with its headers, marked with ">", and what
/// came of it, marked with "<". Secrets are as the exchange has them: blanked. Any thread.
void traceExchange(const Exchange& exchange);

}  // namespace orvane::cli
