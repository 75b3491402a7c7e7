// SPDX-License-Identifier: Apache-2.0
// Everything public of Orvane but the Runtime and the Testing kit, which have umbrellas of their
// own.
#pragma once

#include <Orvane/Coding/Coding.h>
#include <Orvane/Common/Await.h>
#include <Orvane/Common/Container.h>
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Common/Stores.h>
#include <Orvane/Common/Version.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Core/Resolvers.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Models/Discount.h>
#include <Orvane/Models/Leaderboard.h>
#include <Orvane/Models/RewardToken.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Models/User.h>
#include <Orvane/Models/Vehicle.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/TimeZone.h>
#include <Orvane/Services/Discount/DiscountMetadataService.h>
#include <Orvane/Services/Discount/DiscountService.h>
#include <Orvane/Services/Leaderboard/LeaderboardService.h>
#include <Orvane/Services/Rewards/RewardsService.h>
#include <Orvane/Services/Scoring/ScoringAggregateService.h>
#include <Orvane/Services/Scoring/ScoringService.h>
#include <Orvane/Services/User/UserService.h>
