// SPDX-License-Identifier: Apache-2.0
// Any bytes as a form that somebody sends to the local backend: the first line is the content type,
// the rest the body. It is refused with status 400, or its parts are found in it.
#include "http/Multipart.h"

#include "fuzz/Bytes.h"
#include "http/Message.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace orvane;
  std::string_view body = textOf(data, size);
  const std::string_view contentType = takeUntil(body, '\n');
  try {
    for (const sandbox::FormPart& part : sandbox::parseMultipart(contentType, body)) {
      require(!part.name.empty() && body.find(part.name) != std::string_view::npos);
      require(body.find(part.value) != std::string_view::npos);
    }
  } catch (const sandbox::Problem& problem) {
    require(problem.status() == 400);
  }
  return 0;
}
