// SPDX-License-Identifier: Apache-2.0
// How far a download has come, in a line that fits.
#include "ProgressBar.h"
#include <Orvane/GoogleTest.h>

#include <limits>
#include <tuple>

namespace orvane::cli {
namespace {

TEST(ProgressTest, FitsItsLine) {
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  const std::tuple<DownloadProgress, std::size_t, const char*> rows[] = {
      {{0, 2'000'000}, 48, "file [....................]   0 %  0.0 of 2.0 MB"},
      {{1'999'999, 2'000'000}, 48, "file [###################.]  99 %  1.9 of 2.0 MB"},
      {{2'000'000, 2'000'000}, 48, "file [####################] 100 %  2.0 of 2.0 MB"},
      // Wide terminals do not make it longer than that.
      {{5, 10}, 200, "file [####################....................]  50 %  0.0 of 0.0 MB"},
      {{1'500'000, 2'000'000}, 38, "file [#######...]  75 %  1.5 of 2.0 MB"},
      {{1'500'000, 2'000'000}, 37, "file  75 %  1.5 of 2.0 MB"},
      {{1'500'000, 2'000'000}, 12, "file  75 % …"},
      {{1'500'000, 2'000'000}, 0, "…"},
      // Servers that do not tell, and servers that are wrong.
      {{1'500'000, std::nullopt}, 50, "file  1.5 MB"},
      {{1'500'000, 0}, 50, "file  1.5 MB"},
      {{3'000'000, 2'000'000}, 48, "file [####################] 100 %  3.0 of 2.0 MB"},
      {{-1, 2'000'000}, 48, "file [....................]   0 %  0.0 of 2.0 MB"},
      {{most, most},
       78,
       "file [##########################] 100 %  9223372036854.7 of 9223372036854.7 MB"},
  };
  for (const auto& [progress, columns, line] : rows) {
    EXPECT_EQ(progressLine("file", progress, columns), line) << columns;
  }
}

}  // namespace
}  // namespace orvane::cli
