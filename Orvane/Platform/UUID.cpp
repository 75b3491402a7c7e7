// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/UUID.h>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace orvane {

std::string randomUUID() { return boost::uuids::to_string(boost::uuids::random_generator()()); }

}  // namespace orvane
