// SPDX-License-Identifier: Apache-2.0
#include "tests/support/RequestRows.h"

#include "tests/support/Requests.h"
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

namespace orvane {

void expectRequests(const std::vector<RequestRow>& rows) {
  for (const RequestRow& row : rows) {
    SCOPED_TRACE(row.name);
    const ScopedFoundation foundation;
    row.call({"key", row.externalReferenceID});
    const auto requests = foundation.requestManager->questions();
    ASSERT_EQ(requests.size(), 1U);
    std::string text = requestText(requests.front());
    text.erase(text.find_last_not_of('\n') + 1);
    EXPECT_EQ(text, row.request);
  }
}

}  // namespace orvane
