// SPDX-License-Identifier: Apache-2.0
// In a program with Qt's event loop: it runs the main queue's jobs, so that every answer comes on
// its thread, where windows may be touched. Prints who is signed in and the trips of late.
//
//   orvane-sandbox --exec -- orvane-example-qt   # with the local backend
//   ORVANE_BASE_URL=https://telematics.example ORVANE_TOKEN=… orvane-example-qt
//
// In CMake: find_package(Qt6 COMPONENTS Core), and Qt6::Core beside Orvane::Runtime.
#include "Settings.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>
#include <QString>
#include <QTextStream>
#include <utility>
#include <vector>

namespace {

// Never destroyed: an answer that comes when the application has gone is not run any more, and
// finds it all the same.
void handMainQueueToQt() {
  static auto* const receiver = new QObject;
  orvane::MainQueue::main().forward([](orvane::MainQueue::Job job) {
    QMetaObject::invokeMethod(receiver, std::move(job), Qt::QueuedConnection);
  });
}

// What a window would be: whatever it asked for is cancelled when it goes.
class Overview {
 public:
  void load() {
    user_ = users_.fetch().onMain().start(
        [this](const orvane::Result<orvane::User>& user) { greet(user); });
  }

  [[nodiscard]] int status() const { return status_; }

 private:
  void greet(const orvane::Result<orvane::User>& user) {
    if (!user) return sorry(user.errorOr(orvane::NetworkError::unknown));
    out_ << "Hello " << QString::fromStdString(user->displayName.value_or("stranger")) << Qt::endl;
    trips_ =
        service_.fetchAllChecked({orvane::TripService::Filter::cursor(10, 0)})
            .onMain()
            .start([this](const orvane::Result<std::vector<orvane::Trip>>& trips) { list(trips); });
  }

  void list(const orvane::Result<std::vector<orvane::Trip>>& trips) {
    if (!trips) return sorry(trips.errorOr(orvane::NetworkError::unknown));
    for (const orvane::Trip& trip : *trips) {
      out_ << QString::fromStdString(trip.id.value_or("?")) << ": " << trip.distance.value_or(0)
           << " m" << Qt::endl;
    }
    status_ = 0;
    QCoreApplication::quit();
  }

  void sorry(const orvane::Error& error) {
    QTextStream(stderr) << QString::fromStdString(error.description()) << Qt::endl;
    QCoreApplication::quit();
  }

  const orvane::UserService users_{identity()};
  const orvane::TripService service_{identity()};
  orvane::ScopedRequest user_;
  orvane::ScopedRequest trips_;
  QTextStream out_{stdout};
  int status_ = 1;
};

}  // namespace

int main(int argumentCount, char** arguments) {
  const QCoreApplication application(argumentCount, arguments);
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;
  handMainQueueToQt();

  Overview overview;
  overview.load();
  QCoreApplication::exec();
  runtime.value()->shutdown();  // while there is an application
  return overview.status();
}
