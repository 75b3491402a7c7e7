// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Error.h>

namespace orvane {

// Out of line, so that the class has one home and its type one identity across shared libraries.
Error::AnyBox::~AnyBox() = default;

}  // namespace orvane
