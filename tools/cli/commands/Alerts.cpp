// SPDX-License-Identifier: Apache-2.0
// orvane alerts: which driving raises an alert.
#include "Commands.h"
#include "Days.h"
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>

namespace orvane::cli {
namespace {

struct SetsAlert {
  static constexpr std::string_view done = "The alert is set.";

  UserID driver;

  void declareDriver(Options& options) {
    options.positional("DRIVER", driver, "Whose driving: a user");
  }

  static Operation<Unit> set(Session& session, DrivingAlertType setting) {
    return DrivingAlertService(session.identity()).registerAlertSetting(std::move(setting));
  }
};

struct AlertOfAcceleration : SetsAlert {
  static constexpr std::string_view name = "acceleration";
  static constexpr std::string_view summary = "Be told of harsh acceleration, from a severity on";
  static constexpr Example examples[] = {{"alerts acceleration 1002 medium", "medium and worse"}};

  DrivingEventSeverity severity = DrivingEventSeverity::off;

  void declare(Options& options) {
    declareDriver(options);
    options.positional("SEVERITY", severity, "From which severity on, or off");
  }

  Operation<Unit> ask(Session& session) const {
    return set(session, DrivingAlertType::acceleration(driver.text, severity));
  }
};

struct AlertOfBraking : SetsAlert {
  static constexpr std::string_view name = "braking";
  static constexpr std::string_view summary = "Be told of harsh braking, from a severity on";
  static constexpr Example examples[] = {{"alerts braking 1002 off", "no such alerts"}};

  DrivingEventSeverity severity = DrivingEventSeverity::off;

  void declare(Options& options) {
    declareDriver(options);
    options.positional("SEVERITY", severity, "From which severity on, or off");
  }

  Operation<Unit> ask(Session& session) const {
    return set(session, DrivingAlertType::braking(driver.text, severity));
  }
};

struct AlertOfSpeeding : SetsAlert {
  static constexpr std::string_view name = "speeding";
  static constexpr std::string_view summary = "Be told of driving faster than a threshold";
  static constexpr Example examples[] = {{"alerts speeding 1002 120", "faster than 120"}};

  std::string threshold;

  void declare(Options& options) {
    declareDriver(options);
    options.positional("THRESHOLD", threshold, "The speed, sent as it stands");
  }

  Operation<Unit> ask(Session& session) const {
    return set(session, DrivingAlertType::speeding(driver.text, threshold));
  }
};

struct AlertOfLateNight : SetsAlert {
  static constexpr std::string_view name = "late-night";
  static constexpr std::string_view summary = "Be told of driving late at night";
  static constexpr Example examples[] = {
      {"alerts late-night 1002 yes --from 22:30 --to 5:00", "between these times"},
      {"alerts late-night 1002 no", "no such alerts"},
  };

  bool isEnabled = false;
  std::optional<TimeOfDay> from;
  std::optional<TimeOfDay> to;

  void declare(Options& options) {
    declareDriver(options);
    options.positional("ENABLED", isEnabled, "Whether it raises an alert");
    options.option("--from", from, "When the night begins, in the device's time zone");
    options.option("--to", to, "When the night ends");
  }

  Operation<Unit> ask(Session& session) const {
    if (from.has_value() != to.has_value()) {
      throw Failure(ExitCode::usage, "--from and --to go together");
    }
    std::optional<Date> begin;
    std::optional<Date> end;
    if (from) begin = next(*from);
    if (to) end = next(*to);
    return set(session, DrivingAlertType::lateNight(driver.text, isEnabled, begin, end));
  }
};

}  // namespace

Resource alertCommands() {
  return Resource("alerts", "Which driving raises an alert")
      .add<AlertOfAcceleration>()
      .add<AlertOfBraking>()
      .add<AlertOfSpeeding>()
      .add<AlertOfLateNight>();
}

}  // namespace orvane::cli
