// SPDX-License-Identifier: Apache-2.0
// orvane completion: scripts that make a shell complete this program's command lines, and what they
// ask for.
#include "Completion.h"

#include "Commands.h"
#include "ConfigurationFile.h"
#include "GlobalOptions.h"
#include "OutputFile.h"
#include <Orvane/Common/Logger.h>
#include <Orvane/Runtime/Loggers.h>
#include <Orvane/Services/Invitation/InvitationService.h>
#include <Orvane/Services/Trip/TripService.h>
#include <Orvane/Services/User/UserService.h>
#include <Orvane/Services/Vehicle/VehicleService.h>

#include <algorithm>
#include <chrono>
#include <functional>

namespace orvane::cli {
namespace {

struct Bash {
  static constexpr std::string_view name = "bash";
  static constexpr std::string_view summary = "Print the script for bash";
  static constexpr Example examples[] = {
      {"completion bash", "source <(orvane completion bash) in ~/.bashrc"}};
  static void run(Session& session) { session.output().raw(bashCompletion); }
};

struct Zsh {
  static constexpr std::string_view name = "zsh";
  static constexpr std::string_view summary = "Print the script for zsh";
  static void run(Session& session) { session.output().raw(zshCompletion); }
};

struct Fish {
  static constexpr std::string_view name = "fish";
  static constexpr std::string_view summary = "Print the script for fish";
  static void run(Session& session) { session.output().raw(fishCompletion); }
};

// --- What the backend has ------------------------------------------------------------------------

std::string joinedNames(const std::optional<std::string>& one,
                        const std::optional<std::string>& other) {
  return one.value_or("") + (one && other ? " " : "") + other.value_or("");
}

std::vector<Candidate> tripsOf(Session& session) {
  std::vector<Candidate> found;
  const TripService service(session.identity());
  for (const Trip& trip : session.call(service.fetch({}, {TripService::Filter::cursor(30, 0)}))) {
    const std::string start = trip.dateStarted ? localMinute(*trip.dateStarted, trip.timeZone) : "";
    const std::string distance = trip.distance ? ", " + kilometresOf(*trip.distance) : "";
    found.push_back({trip.id.value_or(""), start + distance});
  }
  return found;
}

std::vector<Candidate> vehiclesOf(Session& session) {
  std::vector<Candidate> found;
  for (const Vehicle& vehicle :
       session.call(VehicleService(session.identity()).getAllVehicles({}))) {
    found.push_back({vehicle.vehicleId.value_or(""), joinedNames(vehicle.make, vehicle.model)});
  }
  return found;
}

std::vector<Candidate> usersOf(Session& session) {
  std::vector<Candidate> found;
  const User self = session.call(
      UserService(session.identity()).fetch({}, {UserService::Expansion::associatedUsers}));
  const auto note = [&](const User& user) {
    found.push_back({user.id.value_or(""), joinedNames(user.firstName, user.lastName)});
  };
  note(self);
  if (self.associatedUsers) std::ranges::for_each(*self.associatedUsers, note);
  return found;
}

std::vector<Candidate> invitationsOf(Session& session) {
  std::vector<Candidate> found;
  for (const Invitation& invitation :
       session.call(InvitationService(session.identity()).fetchVehicleInvites({}))) {
    const std::string status = invitation.status ? toText(*invitation.status) : "";
    found.push_back({invitation.invitationId.value_or(""), status});
  }
  return found;
}

using Lister = std::vector<Candidate> (*)(Session&);

Lister listerOf(Listed listed) {
  switch (listed) {
    case Listed::trips:
      return tripsOf;
    case Listed::vehicles:
      return vehiclesOf;
    case Listed::users:
      return usersOf;
    case Listed::invitations:
      return invitationsOf;
    default:
      return nullptr;
  }
}

// --- What was asked a moment ago -----------------------------------------------------------------

// The cache of a backend's list, for one person: the name gives neither away.
std::filesystem::path cacheOf(const Settings& settings, Listed listed) {
  const std::filesystem::path folder = settings.folder("XDG_CACHE_HOME", ".cache");
  if (folder.empty()) return {};
  std::string key = std::to_string(static_cast<int>(listed));
  for (const Setting setting : {Setting::baseURL, Setting::user, Setting::token}) {
    key += "\n" + settings.text(setting).value_or("");
  }
  return folder / "orvane" / ("completion-" + std::to_string(std::hash<std::string>{}(key)));
}

std::vector<Candidate> candidatesIn(const std::string& text) {
  std::vector<Candidate> found;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, end);
    const std::size_t tab = std::min(line.find('\t'), line.size());
    found.push_back({std::string(line.substr(0, tab)),
                     std::string(line.substr(std::min(tab + 1, line.size())))});
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return found;
}

bool isFresh(const std::filesystem::path& file) {
  constexpr std::chrono::minutes longest{2};
  std::error_code failure;
  const auto written = std::filesystem::last_write_time(file, failure);
  if (failure) return false;
  const auto age = std::filesystem::file_time_type::clock::now() - written;
  return age >= std::chrono::seconds(0) && age < longest;
}

std::vector<Candidate> askedOf(Settings settings, Listed listed) {
  const Lister lister = listerOf(listed);
  const std::filesystem::path cache = cacheOf(settings, listed);
  if (!cache.empty() && isFresh(cache)) return candidatesIn(contentsOf(cache).value_or(""));
  // Whoever presses a key does not wait for long.
  settings.setFlag(Setting::timeout, "1.5");
  Session session(std::move(settings), {}, ExchangeLog::Shown::nothing);
  Logger::setShared(std::make_shared<FunctionLogger>([](const Logger::Entry&) {}));
  session.connect();
  std::vector<Candidate> found = lister(session);
  if (cache.empty()) return found;
  std::string text;
  for (const auto& [word, meaning] : found) text += visible(word) + "\t" + visible(meaning) + "\n";
  std::error_code ignored;
  std::filesystem::create_directories(cache.parent_path(), ignored);
  writeDocument(cache, text, session.output(), Readers::owner);
  return found;
}

// The settings as the unfinished command line has them.
Settings settingsOf(const CommandSet& set, const std::vector<std::string>& words) {
  Settings settings([](const char* name) { return std::getenv(name); });
  GlobalOptions globals;
  Options options;
  globals.declare(options, settings);
  for (const auto& [option, value] : CommandWords(set, words).given) {
    const auto found = std::ranges::find(options.rows(), option.name, &Option::name);
    if (found != options.rows().end()) found->accept(value);
  }
  settings.load(globals.place());
  return settings;
}

std::vector<Candidate> profilesOf(const Settings& settings) {
  std::vector<Candidate> found;
  const auto file = configurationIn(contentsOf(settings.file()).value_or(""));
  for (const std::string& profile : file.profiles) found.push_back({profile});
  return found;
}

struct ListWords {
  static constexpr std::string_view name = "words";
  static constexpr std::string_view summary =
      "Print what could stand next, for the scripts of the shells";
  static constexpr Example examples[] = {
      {"completion words -- trips sh", "after what is completed otherwise: nothing here"}};
  static constexpr bool isInternal = true;

  std::vector<std::string> words;
  std::optional<std::string> line;
  bool hasMeanings = false;

  void declare(Options& options) {
    options.positional("WORD", words, "The words so far, the last one unfinished");
    options.option("--line", line, "Instead: the line so far, with the program's name");
    options.flag("--meanings", hasMeanings, "Print what they mean, too, behind a tab");
  }

  void run(Session& session) const {
    std::vector<std::string> given = words;
    if (line) {
      given = shellWords(*line);
      given.erase(given.begin());
    }
    const CommandSet set = describedCommands();
    Candidates candidates = candidatesFor(set, given);
    Output& output = session.output();
    const bool isFile = candidates.listed == Listed::files;
    output.line(isFile ? "files" : candidates.listed == Listed::folders ? "folders" : "words");
    addListed(candidates, set, given);
    for (const auto& [word, meaning] : candidates.words) {
      const std::string text = candidates.before + word;
      output.line(hasMeanings && !meaning.empty() ? text + "\t" + visible(meaning) : text);
    }
  }

 private:
  // Silent where that fails: nobody has asked for anything yet.
  static void addListed(Candidates& candidates, const CommandSet& set,
                        const std::vector<std::string>& given) {
    const bool isAsked = listerOf(candidates.listed) != nullptr;
    if (!isAsked && candidates.listed != Listed::profiles) return;
    try {
      Settings settings = settingsOf(set, given);
      for (Candidate& candidate :
           isAsked ? askedOf(std::move(settings), candidates.listed) : profilesOf(settings)) {
        if (candidate.text.starts_with(candidates.begun)) {
          candidates.words.push_back(std::move(candidate));
        }
      }
    } catch (const std::exception&) {
      return;
    }
  }
};

}  // namespace

Resource completionCommands() {
  return Resource("completion", "Scripts for your shell")
      .add<Bash>()
      .add<Zsh>()
      .add<Fish>()
      .add<ListWords>();
}

}  // namespace orvane::cli
