// SPDX-License-Identifier: Apache-2.0
#include "http/Listener.h"

#include "http/Connection.h"
#include "http/Query.h"

#include <httplib.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace orvane::sandbox {

namespace {

using namespace std::chrono_literals;

constexpr auto idleTimeout = 60s;
constexpr int backlog = 512;
constexpr std::int64_t largestBody = 1 << 20;
constexpr std::size_t smallestCompressed = 1024;

// cpp-httplib would parse a form by itself and insist on a line break after the last boundary,
// which is not required (RFC 2046, 5.1.1); under this name it leaves the body alone.
constexpr const char* hiddenContentType = "X-Sandbox-Content-Type";

/// The connection whose request the calling thread is working on.
thread_local Connection* currentConnection = nullptr;

bool hasBody(const httplib::Request& request) {
  return request.method == "POST" || request.method == "PUT" || request.method == "DELETE" ||
         request.method == "PATCH";
}

std::string gzip(const std::string& plain) {
  z_stream stream{};
  constexpr int gzipWindow = 15 + 16;
  if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("gzip can't be initialised");
  }
  std::string packed(deflateBound(&stream, plain.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.data()));
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

/// The first `limit` bytes of the body under the length of the whole; then the connection ends.
void setCutBody(httplib::Response& response, std::string body, std::size_t limit,
                const std::string& contentType) {
  const std::size_t size = body.size();
  response.set_content_provider(
      size, contentType,
      [body = std::move(body), limit](std::size_t offset, std::size_t, httplib::DataSink& sink) {
        if (offset >= limit) return false;
        sink.write(body.data() + offset, limit - offset);
        return true;
      });
}

void setStreamedBody(httplib::Response& response, BodyStream stream,
                     const std::string& contentType) {
  response.set_chunked_content_provider(
      contentType, [stream = std::move(stream)](std::size_t, httplib::DataSink& sink) {
        const std::string_view piece = stream();
        if (piece.empty()) {
          sink.done();
        } else {
          sink.write(piece.data(), piece.size());
        }
        return true;
      });
}

/// Those who stay, each with a thread that waits for what is to be sent.
class QueuedViewer : public Viewer {
 public:
  void send(std::string text) override {
    const std::lock_guard lock{mutex_};
    if (waiting_.size() + text.size() > mostWaiting) gone_ = true;
    if (!gone_) waiting_.append(text);
    changed_.notify_one();
  }
  [[nodiscard]] bool isGone() const override {
    const std::lock_guard lock{mutex_};
    return gone_;
  }
  void leave() {
    const std::lock_guard lock{mutex_};
    gone_ = true;
    changed_.notify_one();
  }
  /// Waits for text; empty once nobody is there.
  [[nodiscard]] std::string next() {
    std::unique_lock lock{mutex_};
    changed_.wait(lock, [this] { return gone_ || !waiting_.empty(); });
    return gone_ ? std::string{} : std::exchange(waiting_, {});
  }

 private:
  static constexpr std::size_t mostWaiting = 4 << 20;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::string waiting_;
  bool gone_ = false;
};

void setViewersBody(httplib::Response& response, const std::shared_ptr<QueuedViewer>& viewer,
                    const std::string& contentType) {
  response.set_chunked_content_provider(
      contentType,
      [viewer](std::size_t, httplib::DataSink& sink) {
        const bool sent = currentConnection->flush();
        const std::string text = sent ? viewer->next() : std::string{};
        if (!text.empty()) return sink.write(text.data(), text.size());
        sink.done();
        return true;
      },
      [viewer](bool) { viewer->leave(); });
}

}  // namespace

class Listener::Server : public httplib::Server {
 public:
  Server(Listener::Options options, const ServerClock& clock, Listener::Handler handler)
      : options_(options),
        clock_(clock),
        handler_(std::move(handler)),
        stopEvent_(::eventfd(0, EFD_CLOEXEC)) {
    new_task_queue = [this] { return new httplib::ThreadPool(options_.threads); };
    set_payload_max_length(static_cast<std::size_t>(largestBody));
    set_keep_alive_timeout(std::chrono::seconds{idleTimeout}.count());
    set_keep_alive_max_count(1'000'000);
    // cpp-httplib would share the port with another server that is there already (SO_REUSEPORT).
    set_socket_options([](socket_t socket) {
      const int yes = 1;
      ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      if (auto refusal = refuseBody(request)) {
        currentConnection->exchange.closeAfterwards = true;
        fill(response, *std::move(refusal));
        return HandlerResponse::Handled;
      }
      if (hasBody(request) && request.method != "PATCH") return HandlerResponse::Unhandled;
      answer(request, response);
      return HandlerResponse::Handled;
    });
    const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
      answer(request, response);
    };
    constexpr const char* anyPath = "[\\s\\S]*";
    Post(anyPath, handle);
    Put(anyPath, handle);
    Delete(anyPath, handle);
    set_error_handler([](const httplib::Request&, httplib::Response& response) {
      if (currentConnection->exchange.understood || !response.body.empty()) return;
      // Where the next request begins is anybody's guess.
      currentConnection->exchange.closeAfterwards = true;
      fill(response, errorReply(response.status, "bad_request", "the request can't be read"));
    });
    set_post_routing_handler([this](const httplib::Request&, httplib::Response& response) {
      const Connection::Exchange& exchange = currentConnection->exchange;
      if (exchange.sendDate) response.set_header("Date", httpDate(clock_.now()));
      if (!exchange.closeAfterwards) return;
      response.headers.erase("Keep-Alive");
      response.headers.erase("Connection");
      response.set_header("Connection", "close");
    });
  }

  ~Server() override {
    stopServing();
    ::close(stopEvent_);
  }

  void start() {
    port_ = options_.port == 0 ? bind_to_any_port(options_.host)
                               : (bind_to_port(options_.host, options_.port) ? options_.port : -1);
    if (port_ <= 0) {
      throw std::runtime_error("port " + std::to_string(options_.port) + " can't be bound on " +
                               options_.host + ": " + std::strerror(errno));
    }
    ::listen(svr_sock_, backlog);  // cpp-httplib asks for 5, too few for a burst
    thread_ = std::thread([this] {
      listen_after_bind();
      ended_ = true;
    });
  }

  void stopServing() {
    if (!thread_.joinable()) return;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(stopEvent_, &one, sizeof one);
    for (const auto& viewer : viewers()) viewer->leave();
    // stop() does nothing until the thread has come to listen, and must not be lost.
    while (!is_running() && !ended_) std::this_thread::yield();
    stop();
    thread_.join();
  }

  [[nodiscard]] int port() const { return port_; }

 private:
  bool process_and_close_socket(socket_t socket) override {
    Connection connection{socket, options_.tls, stopEvent_};
    currentConnection = &connection;
    ++open_;
    serve(connection);
    --open_;
    currentConnection = nullptr;
    return true;
  }

  void serve(Connection& connection) {
    if (!connection.handshake()) return;
    while (connection.awaitRequest(idleTimeout)) {
      // Every thread has a connection: give this one up so that others are served as well.
      const bool last = open_ >= options_.threads;
      bool closed = false;
      const bool complete = process(connection, last, closed, [&](httplib::Request& request) {
        prepare(request, connection);
      });
      if (!connection.flush() || !complete) return;  // cut off: no goodbye
      if (last || closed || connection.exchange.closeAfterwards) break;
    }
    connection.sayGoodbye();
    if (connection.exchange.closeAfterwards) connection.drain();
  }

  // Newer versions of cpp-httplib are told the addresses of both ends, which nobody here asks for.
  template <class Setup>
  bool process(Connection& connection, bool last, bool& closed, const Setup& setup) {
    if constexpr (requires { this->process_request(connection, last, closed, setup); }) {
      return process_request(connection, last, closed, setup);
    } else {
      const std::string nobody;
      return process_request(connection, nobody, 0, nobody, 0, last, closed, setup);
    }
  }

  static void prepare(httplib::Request& request, Connection& connection) {
    constexpr std::array ownNames{"REMOTE_ADDR", "REMOTE_PORT", "LOCAL_ADDR", "LOCAL_PORT"};
    for (const char* name : ownNames) request.headers.erase(name);
    connection.exchange.headers.assign(request.headers.begin(), request.headers.end());

    // Ranges and compression are the replies' own business.
    request.ranges.clear();
    request.headers.erase("Accept-Encoding");
    if (request.is_multipart_form_data()) {
      request.headers.emplace(hiddenContentType, request.get_header_value("Content-Type"));
      request.headers.erase("Content-Type");
    }
    const bool announcesBody =
        request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
    if (!announcesBody && hasBody(request)) {
      request.headers.emplace("Content-Length", "0");  // otherwise it would read to the end
    }
    // The body of any other method stays unread.
    connection.exchange.closeAfterwards =
        announcesBody && (!hasBody(request) || request.method == "PATCH");
  }

  /// A body of unclear or excessive length is not read at all.
  static std::optional<Reply> refuseBody(const httplib::Request& request) {
    const auto header = request.headers.find("Content-Length");
    if (header == request.headers.end()) return std::nullopt;
    const auto length = parseInteger(header->second);
    if (!length || *length < 0) {
      return errorReply(400, "bad_request", "the body's length is not a number");
    }
    if (*length <= largestBody) return std::nullopt;
    return errorReply(413, "content_too_large", "the body is too large");
  }

  void answer(const httplib::Request& source, httplib::Response& response) {
    Connection::Exchange& exchange = currentConnection->exchange;
    exchange.understood = true;
    Request request;
    request.method = source.method;
    const auto questionMark = exchange.target.find('?');
    request.path = exchange.target.substr(0, questionMark);
    if (questionMark != std::string::npos) request.query = exchange.target.substr(questionMark + 1);
    request.headers = exchange.headers;
    request.body = source.body;

    Reply reply = handler_(request);
    exchange.sendDate = reply.sendDate;
    exchange.bytesPerSecond = reply.bytesPerSecond;
    if (reply.drop) {
      currentConnection->drop();
      return;
    }
    const auto encodings = request.header("Accept-Encoding");
    const bool compress = options_.compress && reply.compressible && !reply.stream &&
                          reply.body.size() >= smallestCompressed && encodings &&
                          encodings->find("gzip") != std::string_view::npos;
    if (compress) {
      reply.body = gzip(reply.body);
      reply.headers.emplace_back("Content-Encoding", "gzip");
    }
    if (auto stay = std::move(reply.stay)) {
      const auto viewer = std::make_shared<QueuedViewer>();
      const std::string contentType = reply.contentType;
      reply.body.clear();
      fill(response, std::move(reply));
      setViewersBody(response, viewer, contentType);
      exchange.closeAfterwards = true;
      {
        const std::lock_guard lock{viewersMutex_};
        std::erase_if(viewers_, [](const auto& each) { return each.expired(); });
        viewers_.push_back(viewer);
        if (stopping_) viewer->leave();
      }
      return stay(viewer);
    }
    fill(response, std::move(reply));
  }

  /// Those of now; whoever comes later is sent away.
  std::vector<std::shared_ptr<QueuedViewer>> viewers() {
    const std::lock_guard lock{viewersMutex_};
    stopping_ = true;
    std::vector<std::shared_ptr<QueuedViewer>> present;
    for (const auto& each : viewers_) {
      if (auto viewer = each.lock()) present.push_back(std::move(viewer));
    }
    return present;
  }

  static void fill(httplib::Response& response, Reply reply) {
    response.status = reply.status;
    for (const auto& [name, value] : reply.headers) response.set_header(name, value);
    if (reply.stream) {
      setStreamedBody(response, std::move(reply.stream), reply.contentType);
    } else if (reply.cutAfterBytes && *reply.cutAfterBytes < reply.body.size()) {
      setCutBody(response, std::move(reply.body), *reply.cutAfterBytes, reply.contentType);
    } else {
      if (!reply.body.empty()) response.set_header("Content-Type", reply.contentType);
      response.body = std::move(reply.body);
    }
  }

  Listener::Options options_;
  const ServerClock& clock_;
  Listener::Handler handler_;
  int stopEvent_;
  int port_ = -1;
  std::thread thread_;
  std::atomic<bool> ended_{false};
  std::atomic<std::size_t> open_{0};
  std::mutex viewersMutex_;
  std::vector<std::weak_ptr<QueuedViewer>> viewers_;
  bool stopping_ = false;
};

Listener::Listener(Options options, const ServerClock& clock, Handler handler)
    : server_(std::make_unique<Server>(options, clock, std::move(handler))) {}

Listener::~Listener() = default;

void Listener::start() { server_->start(); }
void Listener::stop() { server_->stopServing(); }
int Listener::port() const { return server_->port(); }

}  // namespace orvane::sandbox
