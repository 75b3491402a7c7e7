// SPDX-License-Identifier: Apache-2.0
// A server on Boost.Asio that greets whoever connects by the name of the person who is signed in: a
// line for each connection. Answers COUNT connections, and ends.
//
//   orvane-sandbox --exec -- orvane-example-asio_server PORT COUNT   # with the local backend
//   ORVANE_BASE_URL=https://telematics.example ORVANE_TOKEN=… orvane-example-asio_server PORT COUNT
#include "Settings.h"
#include <Orvane/Asio.h>
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

namespace {

namespace io = boost::asio;
using io::ip::tcp;

io::awaitable<void> greet(tcp::socket socket, orvane::UserService users) {
  const auto user = co_await orvane::asio::async(users.fetch(), io::use_awaitable);
  const std::string line =
      user ? "Hello " + user->firstName.value_or("stranger") + "\n"
           : "Sorry: " + user.errorOr(orvane::NetworkError::unknown).message() + "\n";
  co_await io::async_write(socket, io::buffer(line), io::use_awaitable);
}

io::awaitable<void> serve(tcp::acceptor acceptor, orvane::UserService users, int count) {
  for (; count > 0; --count) {
    tcp::socket socket = co_await acceptor.async_accept(io::use_awaitable);
    io::co_spawn(acceptor.get_executor(), greet(std::move(socket), users), io::detached);
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) {
    std::cerr << "usage: " << arguments[0] << " PORT COUNT\n";
    return 64;
  }
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;

  io::io_context context;
  // The loop drains the main queue: no thread besides the transport's.
  orvane::MainQueue::main().forward(
      [&](orvane::MainQueue::Job job) { io::post(context, std::move(job)); });
  const auto port = static_cast<io::ip::port_type>(std::atoi(arguments[1]));
  tcp::acceptor acceptor(context, {io::ip::address_v4::loopback(), port});
  std::cerr << "listening on " << acceptor.local_endpoint().port() << '\n';
  io::co_spawn(context,
               serve(std::move(acceptor), orvane::UserService(identity()), std::atoi(arguments[2])),
               io::detached);
  context.run();
  runtime.value()->shutdown();
  return 0;
}
