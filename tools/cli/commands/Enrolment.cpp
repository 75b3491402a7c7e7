// SPDX-License-Identifier: Apache-2.0
// orvane activate, terms, device and push: how a person and a phone join the programme.
#include "Commands.h"
#include <Orvane/Services/Activation/ActivationService.h>
#include <Orvane/Services/Device/DeviceService.h>
#include <Orvane/Services/EULA/EULAService.h>
#include <Orvane/Services/PushNotification/PushNotificationService.h>

namespace orvane::cli {
namespace {

struct Activate {
  static constexpr std::string_view name = "activate";
  static constexpr std::string_view summary = "Join the programme on this device";
  static constexpr std::string_view done = "The enrolment is activated.";
  static constexpr Example examples[] = {
      {"activate ACT-1007 424242 nora.frei@example.com",
       "with what the programme sent; the address becomes the display name, too"}};

  std::string id;
  std::string code;
  std::string email;

  void declare(Options& options) {
    options.positional("ID", id, "The activation's identifier");
    options.positional("CODE", code, "The activation code");
    options.positional("EMAIL", email, "The person's e-mail address");
  }

  Operation<Unit> ask(const ActivationService& service) const {
    return service.activate(id, code, email);
  }
};

struct AcceptTerms {
  static constexpr std::string_view name = "accept";
  static constexpr std::string_view summary = "Accept the programme's terms";
  static constexpr std::string_view done = "The terms are accepted.";

  Operation<Unit> ask(const EULAService& service) const { return service.acceptTerms(); }
};

struct AnswersDevice {
  using Answer = Device;

  static void print(const Device& device, Output& output) {
    output.block(Block()
                     .row("id", device.identifier)
                     .row("type", device.deviceType)
                     .row("enrolment id", device.enrollmentDeviceId)
                     .row("serial number", device.serialNumber)
                     .row("push token", device.pushNotificationToken)
                     .row("push notifications", device.pushNotificationsAreEnabled)
                     .row("collects data", device.dataCollectionIsActive));
  }
};

struct ShowDevice : AnswersDevice {
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show this device as the backend knows it";

  Operation<Device> ask(const DeviceService& service) const { return service.fetch(); }
};

struct ActivateDevice : AnswersDevice {
  static constexpr std::string_view name = "activate";
  static constexpr std::string_view summary = "Make this device the one that collects driving";

  Operation<Device> ask(const DeviceService& service) const { return service.activate(); }
};

struct DeactivateDevice : AnswersDevice {
  static constexpr std::string_view name = "deactivate";
  static constexpr std::string_view summary = "End that this device collects driving";

  Operation<Device> ask(const DeviceService& service) const { return service.deactivate(); }
};

struct SetPushToken : AnswersDevice {
  static constexpr std::string_view name = "set";
  static constexpr std::string_view summary = "Register this device's push token";
  static constexpr Example examples[] = {
      {"push set 3f1c…", "notifications reach this device from now on"},
      {"push set ''", "an empty token is sent, too"},
  };

  std::string token;

  void declare(Options& options) {
    options.positional("TOKEN", token, "The platform's push token, as a text");
  }

  Operation<Device> ask(const PushNotificationService& service) const {
    return service.setToken(token);
  }
};

}  // namespace

Resource activateCommand() { return Resource::only<Activate>(); }

Resource termsCommands() { return Resource("terms", "The programme's terms").add<AcceptTerms>(); }

Resource deviceCommands() {
  return Resource("device", "This device, which collects the driving")
      .add<ShowDevice>()
      .add<ActivateDevice>()
      .add<DeactivateDevice>();
}

Resource pushCommands() {
  return Resource("push", "How notifications reach this device").add<SetPushToken>();
}

}  // namespace orvane::cli
