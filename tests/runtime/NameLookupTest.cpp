// SPDX-License-Identifier: Apache-2.0
// A resolver that does not answer costs those their time who asked it, and nobody else. In each of
// these the lookup is stuck to the end: that they end is what they show.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/NameLookups.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/GoogleTest.h>

#include <string>

namespace orvane {
namespace {

using Kind = TransportError::Kind;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

const std::string stuckURL = std::string("https://") + StuckNameLookups::host + "/";
const std::string ok = "ok";

TEST(NameLookupTest, EndsWithItsTimeOut) {
  const StuckNameLookups lookups;
  EXPECT_EQ(kindOf(get(*managerWith({.connectTimeout = 100ms}), stuckURL)), Kind::timeOut);
  EXPECT_EQ(kindOf(get(*managerWith({.totalTimeout = 100ms}), stuckURL)), Kind::timeOut);
}

TEST(NameLookupTest, HoldsUpNoOtherHost) {
  const TestServer server(answering(ok));
  const auto manager = managerWith({});
  const StuckNameLookups lookups;
  const RequestHandle pending = manager->get(*URL::parse(stuckURL), {}, nullptr);
  lookups.waitFor(1);
  EXPECT_EQ(get(*manager, server.url()), ok);
  EXPECT_TRUE(pending->cancel());
  EXPECT_EQ(get(*manager, server.url()), ok) << "nor when it has been given up";
}

TEST(NameLookupTest, DoesNotOutliveTheTransport) {
  const auto manager = managerWith({});
  const StuckNameLookups lookups;
  auto pending = start(*manager, Verb::get, stuckURL);
  lookups.waitFor(1);
  EXPECT_TRUE(manager->shutdown(30s));
  EXPECT_EQ(kindOf(pending.get()), Kind::cancelled);
}

}  // namespace
}  // namespace orvane
