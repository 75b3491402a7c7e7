// SPDX-License-Identifier: Apache-2.0
// What an application needs to test itself without a backend: everything of Orvane/Testing.
#pragma once

#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/FixedResolvers.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/MovableTimers.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>
#include <Orvane/Testing/Script.h>
#include <Orvane/Testing/ScriptedDownloader.h>
#include <Orvane/Testing/ScriptedRequestManager.h>
