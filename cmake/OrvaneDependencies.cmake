# SPDX-License-Identifier: Apache-2.0
#
# What each library needs, and the least versions that have what it needs; the installed package asks for the same.
#
# orvane_needs_<component>: arguments of find_package, one dependency each. simdjson's package declares every minor
# version incompatible with the one before, so that its version is looked at apart.
set(orvane_needs_Orvane "Threads" "simdjson" "Boost 1.81 CONFIG COMPONENTS headers url" "ICU 67 COMPONENTS i18n uc"
    "absl CONFIG")
set(orvane_needs_Runtime "CURL 7.87" "OpenSSL 1.1.1 COMPONENTS Crypto SSL" "ZLIB")
set(orvane_needs_Testing)
set(orvane_least_simdjson 3.0)

# The libraries that each of them links.
set(orvane_libraries_Orvane simdjson::simdjson Boost::url ICU::i18n ICU::uc absl::time)
set(orvane_libraries_Runtime CURL::libcurl OpenSSL::SSL OpenSSL::Crypto ZLIB::ZLIB)
set(orvane_libraries_Testing)
