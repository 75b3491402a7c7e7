// SPDX-License-Identifier: Apache-2.0
// An HTTP server on Boost.Asio and Boost.Beast that answers its own clients from the backend, all
// of them at once on one thread: GET /users/me is the person who is signed in, GET /trips the trips
// of late. Ends with SIGINT or SIGTERM, when those who are being answered have been.
//
//   orvane-sandbox --exec -- orvane-example-asio_server 8080   # with the local backend
//   curl http://127.0.0.1:8080/users/me
#include "Settings.h"
#include <Orvane/Asio.h>
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <set>
#include <string>
#include <utility>

namespace {

namespace beast = boost::beast;
namespace http = beast::http;
namespace io = boost::asio;
using io::ip::tcp;
using namespace std::chrono_literals;

using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;

Response say(http::status status, std::string text) {
  Response response(status, 11);
  response.set(http::field::content_type, "text/plain; charset=utf-8");
  response.body() = std::move(text) + "\n";
  return response;
}

// What came of an operation, for a client: never the backend's words, which may be about people.
template <class T>
Response answer(const orvane::Result<T>& result) {
  if (!result) {
    const orvane::Error error = result.errorOr(orvane::NetworkError::unknown);
    std::cerr << error.description() << '\n';
    return error.as<orvane::TimedOut>() != nullptr
               ? say(http::status::gateway_timeout, "the backend takes too long")
               : say(http::status::bad_gateway, "the backend does not answer as it should");
  }
  Response response(http::status::ok, 11);
  response.set(http::field::content_type, "application/json");
  response.body() = orvane::encodeChecked(*result).value_or("null");
  return response;
}

class Server {
 public:
  Server(io::io_context& context, tcp::acceptor acceptor)
      : context_(context), acceptor_(std::move(acceptor)) {}

  void start() { io::co_spawn(context_, accept(), io::detached); }

  // Takes no new clients, lets go of those that want nothing, and answers the others.
  void stop() {
    isStopping_ = true;
    acceptor_.close();
    for (beast::tcp_stream* stream : idle_) stream->close();
  }

 private:
  io::awaitable<void> accept() {
    while (!isStopping_) {
      boost::system::error_code error;
      tcp::socket socket =
          co_await acceptor_.async_accept(io::redirect_error(io::use_awaitable, error));
      if (!error) io::co_spawn(context_, serve(std::move(socket)), io::detached);
    }
  }

  // One client, for as long as it wants something.
  io::awaitable<void> serve(tcp::socket socket) {
    beast::tcp_stream stream(std::move(socket));
    beast::flat_buffer buffer;
    boost::system::error_code error;
    while (!error && !isStopping_) {
      Request request;
      idle_.insert(&stream);
      stream.expires_after(30s);
      co_await http::async_read(stream, buffer, request,
                                io::redirect_error(io::use_awaitable, error));
      idle_.erase(&stream);
      if (error) break;

      Response response = co_await respond(request);
      response.keep_alive(request.keep_alive() && !isStopping_);
      response.prepare_payload();
      stream.expires_after(30s);
      co_await http::async_write(stream, response, io::redirect_error(io::use_awaitable, error));
      if (!response.keep_alive()) break;
    }
    stream.socket().shutdown(tcp::socket::shutdown_send, error);
  }

  // While an answer of the backend's is awaited here, the thread is the other clients'.
  io::awaitable<Response> respond(const Request& request) const {
    if (request.method() != http::verb::get) {
      co_return say(http::status::method_not_allowed, "only GET");
    }
    if (request.target() == "/users/me") {
      co_return answer(co_await orvane::asio::async(users_.fetch().within(5s), io::use_awaitable));
    }
    if (request.target() == "/trips") {
      const std::set filters{orvane::TripService::Filter::cursor(20, 0)};
      co_return answer(co_await orvane::asio::async(trips_.fetchAllChecked(filters).within(5s),
                                                    io::use_awaitable));
    }
    co_return say(http::status::not_found, "there are /users/me and /trips");
  }

  io::io_context& context_;
  tcp::acceptor acceptor_;
  const orvane::UserService users_{identity()};
  const orvane::TripService trips_{identity()};
  std::set<beast::tcp_stream*> idle_;
  bool isStopping_ = false;
};

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::cerr << "usage: " << arguments[0] << " PORT\n";
    return 64;
  }
  const auto runtime = orvane::Runtime::install(settings());
  if (!runtime) return 1;

  io::io_context context(1);
  // The loop drains the main queue: no thread besides the transport's.
  orvane::MainQueue::main().forward(
      [&](orvane::MainQueue::Job job) { io::post(context, std::move(job)); });

  const auto port = static_cast<io::ip::port_type>(std::atoi(arguments[1]));
  tcp::acceptor acceptor(context, {io::ip::address_v4::loopback(), port});
  std::cerr << "listening on " << acceptor.local_endpoint().port() << '\n';
  Server server(context, std::move(acceptor));
  server.start();

  io::signal_set signals(context, SIGINT, SIGTERM);
  signals.async_wait([&](boost::system::error_code error, int) {
    if (!error) server.stop();
  });
  context.run();  // until the last client has gone
  runtime.value()->shutdown();
  return 0;
}
