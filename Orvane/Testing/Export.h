// SPDX-License-Identifier: Apache-2.0
// Marks what Orvane::Testing exports.
#pragma once

#include <Orvane/Platform/Export.h>

#if defined(ORVANE_BUILDING_TESTING)
#define ORVANE_TESTING_EXPORT ORVANE_EXPORTED
#else
#define ORVANE_TESTING_EXPORT ORVANE_IMPORTED
#endif
