// SPDX-License-Identifier: Apache-2.0
// The Runtime: a complete default for what a host supplies to Orvane.
#pragma once

#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/CurlDownloader.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/DownloadError.h>
#include <Orvane/Runtime/EndpointResolvers.h>
#include <Orvane/Runtime/Exchange.h>
#include <Orvane/Runtime/FileDeviceIdentifier.h>
#include <Orvane/Runtime/IntervalTimeMonitor.h>
#include <Orvane/Runtime/Loggers.h>
#include <Orvane/Runtime/Runtime.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>
#include <Orvane/Runtime/TokenResolvers.h>
#include <Orvane/Runtime/TransportError.h>
