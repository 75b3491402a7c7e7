// SPDX-License-Identifier: Apache-2.0
// orvane config: the settings themselves.
#include "Commands.h"

namespace orvane::cli {
namespace {

struct ShowConfig {
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show every setting and where it comes from";

  void run(Session& session) const {
    const Settings& settings = session.settings();
    Table table{"setting", "value", "from"};
    for (const SettingRow& row : settingRows()) {
      const auto& text = settings.text(row.setting);
      const std::string shown = row.isSecret && text ? "…" : text.value_or("");
      table.row(row.name, shown, settings.origin(row.setting));
    }
    session.output().table(table);
  }
};

struct ShowPath {
  static constexpr std::string_view name = "path";
  static constexpr std::string_view summary = "Show which file the settings are read from";

  void run(Session& session) const { session.output().line(session.settings().file().string()); }
};

}  // namespace

Resource configCommands() {
  return Resource("config", "The settings of this program").add<ShowConfig>().add<ShowPath>();
}

}  // namespace orvane::cli
