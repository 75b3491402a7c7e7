// SPDX-License-Identifier: Apache-2.0
#include "tests/support/RequestRows.h"

#include "tests/support/Requests.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/ScopedFoundation.h>

namespace orvane {

void expectRequest(const std::string& request, const std::function<void(const Identity&)>& call,
                   const std::optional<std::string>& externalReferenceID) {
  SCOPED_TRACE(request);
  const ScopedFoundation foundation;
  call({"key", externalReferenceID});
  const auto requests = foundation.requestManager->questions();
  ASSERT_EQ(requests.size(), 1U);
  std::string text = requestText(requests.front());
  text.erase(text.find_last_not_of('\n') + 1);
  EXPECT_EQ(text, request);
}

}  // namespace orvane
