// SPDX-License-Identifier: Apache-2.0
#include "resources/Resources.h"

namespace orvane::sandbox {

Reply answerDownload(Backend&, const Request&) { throw notFound("there is no such package"); }

}  // namespace orvane::sandbox
