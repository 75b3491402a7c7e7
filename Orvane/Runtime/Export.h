// SPDX-License-Identifier: Apache-2.0
// Marks what Orvane::Runtime exports.
#pragma once

#include <Orvane/Platform/Export.h>

#if defined(ORVANE_BUILDING_RUNTIME)
#define ORVANE_RUNTIME_EXPORT ORVANE_EXPORTED
#else
#define ORVANE_RUNTIME_EXPORT ORVANE_IMPORTED
#endif
