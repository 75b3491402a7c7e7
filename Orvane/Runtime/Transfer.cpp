// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Runtime/CurlErrors.h>
#include <Orvane/Runtime/CurlTLS.h>
#include <Orvane/Runtime/HTTPDate.h>
#include <Orvane/Runtime/Transfer.h>
#include <Orvane/Runtime/TransferLoop.h>
#include <Orvane/Runtime/TransportError.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace orvane {
namespace {

// The parser of answers reads this far behind the text; the room for it spares a copy.
constexpr std::size_t padding = 64;

// The body of a refusal may say why in words; one that is longer is not waited for.
constexpr std::size_t longestRefusal = std::size_t{64} << 10U;

// Memory is set aside for as much as is announced up to here; more, for more that has come.
constexpr std::size_t largestReserve = std::size_t{1} << 20U;

// A request is given up when servers keep saying that they have not looked at it.
constexpr int mostAttempts = 5;

constexpr std::string_view hidden = "…";

// What a callback of libcurl's does, but for memory that is not there: nothing may be thrown
// through libcurl.
template <class Body>
bool withoutThrowing(Body body) noexcept {
  try {
    return body();
  } catch (const std::exception&) {
    return false;
  }
}

// The number that follows `label` in a text that begins with `opening`.
std::optional<std::uint32_t> numberIn(std::string_view text, std::string_view opening,
                                      std::string_view label = {}) {
  if (!text.starts_with(opening)) return std::nullopt;
  const std::size_t place = text.find(label, opening.size());
  if (place == std::string_view::npos) return std::nullopt;
  const std::string_view digits = text.substr(place + label.size());
  std::uint32_t number = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (failure != std::errc()) return std::nullopt;
  return number;
}

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> names) {
  return std::any_of(names.begin(), names.end(),
                     [&](std::string_view expected) { return isHeader(name, expected); });
}

// The URL without its fragment and with its query's values hidden; a query without "=" is all
// value.
std::string withoutSecrets(std::string_view url) {
  url = url.substr(0, url.find('#'));
  const std::size_t queryStart = std::min(url.find('?'), url.size());
  std::string text(url.substr(0, queryStart));
  std::string_view query = url.substr(std::min(queryStart + 1, url.size()));
  char separator = '?';
  while (!query.empty()) {
    const std::string_view item = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(item.size() + 1, query.size()));
    const std::size_t equals = item.find('=');
    text += std::exchange(separator, '&');
    if (equals != std::string_view::npos) text.append(item.substr(0, equals + 1));
    text.append(hidden);
  }
  return text;
}

// The value of a header as an observer may see it.
std::string valueWithoutSecrets(const std::string& name, std::string_view value) {
  if (isOneOf(name, {"authorization", "proxy-authorization", "cookie", "set-cookie"})) {
    return std::string(hidden);
  }
  // A server may send the query of a request back in these.
  if (isOneOf(name, {"location", "content-location", "referer"})) return withoutSecrets(value);
  return std::string(value);
}

}  // namespace

Transfer::Transfer(std::shared_ptr<TransferLoop> loop, OutgoingRequest request,
                   Completion<std::string> then, Clock::time_point end)
    : deadline(end), loop_(std::move(loop)), request_(std::move(request)), then_(std::move(then)) {
  loop_->hasBegun();
}

bool Transfer::cancel() {
  State expected = State::pending;
  if (!state_.compare_exchange_strong(expected, State::cancelled, std::memory_order_seq_cst)) {
    return expected == State::cancelled;
  }
  // Letting go of the handler may let go of everything that refers to this.
  const std::shared_ptr<Transfer> self = shared_from_this();
  loop_->drop(self);
  then_ = nullptr;
  MainQueue::main().wakeWaiters();
  loop_->hasFinished();
  return true;
}

bool Transfer::isFinished() const noexcept {
  const State state = state_.load(std::memory_order_seq_cst);
  return state == State::finished || state == State::cancelled;
}

void Transfer::complete(Result<std::string> outcome) {
  State expected = State::pending;
  if (!state_.compare_exchange_strong(expected, State::claimed, std::memory_order_acq_rel)) return;
  std::exchange(then_, nullptr)(std::move(outcome));
  state_.store(State::finished, std::memory_order_seq_cst);
  MainQueue::main().wakeWaiters();
  loop_->hasFinished();
}

std::optional<Error> Transfer::prepare(std::unique_ptr<CurlEasy> easy) {
  easy_ = std::move(easy);
  if (!lines_) writeHeaderLines();
  easy_->set(CURLOPT_PRIVATE, this);
  easy_->set(CURLOPT_URL, request_.url.absoluteString().c_str());
  easy_->set(CURLOPT_HTTPHEADER, lines_->list());
  if (request_.isForThisMachine) easy_->bypassProxy();
  setCallbacks();
  setVerb();
  const CURLcode code = easy_->failure();
  if (code != CURLE_OK) return errorOf(code, {});
  return std::nullopt;
}

void Transfer::setCallbacks() {
  easy_->set(CURLOPT_HEADERDATA, this);
  easy_->set(CURLOPT_HEADERFUNCTION, &Transfer::receiveHead);
  easy_->set(CURLOPT_WRITEDATA, this);
  easy_->set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
  easy_->set(CURLOPT_PREREQDATA, this);
  easy_->set(CURLOPT_PREREQFUNCTION, &Transfer::beforeSending);
  easy_->set(CURLOPT_XFERINFODATA, this);
  easy_->set(CURLOPT_XFERINFOFUNCTION, &Transfer::hasMoved);
  if (request_.verb != Verb::get && !request_.body.empty()) easy_->set(CURLOPT_NOPROGRESS, 0L);
  // Where TLS does not tell which connections are shared.
  if (request_.isEncrypted && !usesOpenSSL()) listen();
}

// A farewell is told to any one of the transfers that share a connection.
void Transfer::listen() noexcept {
  easy_->set(CURLOPT_DEBUGDATA, this);
  easy_->set(CURLOPT_DEBUGFUNCTION, &Transfer::hear);
  easy_->set(CURLOPT_VERBOSE, 1L);
}

void Transfer::writeHeaderLines() { lines_.emplace(request_.headers); }

void Transfer::setVerb() {
  if (request_.verb == Verb::get && request_.body.empty()) {
    easy_->set(CURLOPT_HTTPGET, 1L);
    return;
  }
  // Writes all travel as a POST does, with a "Content-Length" even when there is no body.
  easy_->set(CURLOPT_POST, 1L);
  easy_->set(CURLOPT_POSTFIELDS, request_.body.c_str());
  easy_->set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
  easy_->set(CURLOPT_CUSTOMREQUEST, wireText(request_.verb).data());
}

int Transfer::beforeSending(void* transfer, char* remoteAddress, char*, int remotePort,
                            int localPort) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  const bool may = withoutThrowing([&] {
    return self.maySend(self.loop_->sockets().find(localPort, remoteAddress, remotePort));
  });
  return may ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

// A connection stands, and the request goes out next: for the first time, or once more, because the
// connection before died without a word of an answer.
bool Transfer::maySend(std::shared_ptr<OpenSocket> socket) {
  const bool isNew = easy_->info<long>(CURLINFO_NUM_CONNECTS) > 0;
  isConnectionDead_ = socket && socket->isClosedByPeer();
  if (isConnectionDead_ && isNew) {
    // The next one would be no better, and the one after it neither.
    isConnectionDead_ = false;
    return fail(TransportError(TransportError::Kind::cutOff,
                               "the server ended the connection before the request went out"));
  }
  if (isConnectionDead_) return false;
  if (attempts_ > 0 && !mayRepeat()) {
    return fail(TransportError(
        TransportError::Kind::cutOff,
        "the server ended the connection without an answer, and may have read the request"));
  }
  ++attempts_;
  isRefused_ = false;
  stream_ = 0;
  socket_ = std::move(socket);
  lastMove_ = Clock::now();
  const bool isShared = isMultiplexed();
  if (isShared) listen();
  HostLines::hasConnected(*this, isShared);
  return true;
}

// A read does no harm twice. A write is repeated only where it has certainly not been acted on.
bool Transfer::mayRepeat() const noexcept {
  // RFC 9113, section 8.7: what is refused has not been processed, nor what is above the last
  // stream of a farewell.
  const bool isLeftOut = socket_ && socket_->lastStream && stream_ > *socket_->lastStream;
  if (isRefused_ || isLeftOut) return attempts_ < mostAttempts;
  return request_.verb == Verb::get && attempts_ < 2;
}

bool Transfer::goesOutAgain(CURLcode code) noexcept {
  const bool isUnsent = std::exchange(isConnectionDead_, false);
  const bool isUnanswered = !failure_ && head_.status() == 0 && attempts_ > 0 && isCut(code);
  const bool wasKept = easy_->info<long>(CURLINFO_NUM_CONNECTS) == 0;
  if (!isPending() || (!isUnsent && !(isUnanswered && wasKept && mayRepeat()))) return false;
  lastMove_.reset();
  easy_->set(CURLOPT_FRESH_CONNECT, 1L);
  return easy_->failure() == CURLE_OK;
}

bool Transfer::isMultiplexed() const noexcept {
  return session() != nullptr && speaksHTTP2(*session());
}

const curl_tlssessioninfo* Transfer::session() const noexcept {
  return easy_->info<const curl_tlssessioninfo*>(CURLINFO_TLS_SSL_PTR);
}

int Transfer::hear(CURL*, curl_infotype kind, char* text, std::size_t size, void* transfer) {
  if (kind == CURLINFO_TEXT) static_cast<Transfer*>(transfer)->note({text, size});
  return 0;
}

// libcurl tells in words alone what becomes of a stream of HTTP/2. Where it chooses others one day,
// a write that could be repeated fails instead.
void Transfer::note(std::string_view text) noexcept {
  for (const std::string_view opening : {"Using Stream ID: ", "[HTTP/2] ["}) {
    if (const auto number = numberIn(text, opening)) stream_ = *number;
  }
  for (const std::string_view opening : {"received GOAWAY", "recveived GOAWAY"}) {
    const auto number = numberIn(text, opening, "last_stream=");
    if (number && socket_) socket_->lastStream = number;
  }
  // It asks for HTTP/1.1 instead of looking at it (RFC 9113, section 7).
  if (text.starts_with("REFUSED_STREAM") || text.starts_with("Downgrades to HTTP/1.1")) {
    isRefused_ = true;
  }
  // A refusal over a connection that was used before passes for the end of that.
  if (text.starts_with("Connection died, retrying") && isConnectionWell()) isRefused_ = true;
}

// Nothing has happened to the connection over HTTP/2: no error, and no end.
bool Transfer::isConnectionWell() const noexcept {
  return stream_ > 0 && socket_ && !socket_->isClosedByPeer() && !easy_->hasComplained() &&
         isMultiplexed() && !hasTakenLeave(*session());
}

// Called often while a transfer lasts, and a last time before its connection is let go.
int Transfer::hasMoved(void* transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  if (std::exchange(self.sent_, sent) != sent) self.lastMove_ = Clock::now();
  if (self.needsFarewell_ && self.session() != nullptr) {
    self.hasFarewell_ = hasTakenLeave(*self.session());
  }
  return 0;
}

std::size_t Transfer::receiveHead(char* bytes, std::size_t, std::size_t count, void* transfer) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  const bool isTaken = withoutThrowing([&] { return self.keepHead({bytes, count}); });
  return isTaken ? count : 0;
}

bool Transfer::keepHead(std::string_view line) {
  lastMove_ = Clock::now();
  if (!head_.take(line)) return fail(*head_.problem());
  if (!head_.isComplete() || !head_.isSuccess()) return true;
  watchForFarewell();
  // Where TLS did not tell.
  if (head_.isMultiplexed() && !hostLine->isMultiplexed) HostLines::hasConnected(*this, true);
  if (decoder_ || head_.coding().empty() || !decompresses()) return true;
  decoder_ = ContentDecoder::make(head_.coding());
  if (decoder_) return true;
  return fail(TransportError(TransportError::Kind::protocol, "it is compressed in no known way"));
}

// Where only the end of the connection ends the body, TLS has to tell whether it is the server's.
void Transfer::watchForFarewell() noexcept {
  if (needsFarewell_ || head_.tellsItsEnd() || !request_.isEncrypted || !usesOpenSSL()) return;
  needsFarewell_ = true;
  easy_->set(CURLOPT_NOPROGRESS, 0L);
}

std::size_t Transfer::receive(char* bytes, std::size_t, std::size_t count, void* transfer) {
  Transfer& self = *static_cast<Transfer*>(transfer);
  const bool isTaken = withoutThrowing([&] { return self.keep({bytes, count}); });
  return isTaken ? count : CURL_WRITEFUNC_ERROR;
}

bool Transfer::keep(std::string_view bytes) {
  lastMove_ = Clock::now();
  if (head_.isSuccess() && decoder_) return decode(bytes);
  received_ += bytes.size();
  return head_.isSuccess() ? take(bytes.data(), bytes.size()) : takeReason(bytes);
}

bool Transfer::takeReason(std::string_view bytes) {
  if (received_ > longestRefusal) return false;
  answer_.append(bytes);
  return true;
}

bool Transfer::decode(std::string_view bytes) {
  const auto outcome = decoder_->decode(bytes, [this](const char* piece, std::size_t count) {
    received_ += count;
    return take(piece, count);
  });
  if (outcome != ContentDecoder::Outcome::broken) {
    return outcome == ContentDecoder::Outcome::ok;
  }
  return fail(TransportError(TransportError::Kind::protocol, "its compression is broken"));
}

bool Transfer::take(const char* bytes, std::size_t count) {
  const std::size_t limit = loop_->options().maximumAnswerSize;
  const std::size_t announced = decoder_ ? 0 : static_cast<std::size_t>(head_.length().value_or(0));
  if (received_ > limit || announced > limit) {
    return fail(TransportError(TransportError::Kind::tooLarge,
                               "more than " + std::to_string(limit) + " bytes"));
  }
  if (!reserve(std::max(received_, std::min(announced, largestReserve)))) return false;
  answer_.append(bytes, count);
  return true;
}

// False when all answers together would take more than they may.
bool Transfer::reserve(std::size_t count) {
  const std::size_t former = answer_.capacity();
  if (count + padding <= former) return true;
  std::size_t wanted = std::max(count + padding, 2 * former);
  if (!loop_->mayHold(wanted - former)) wanted = count + padding;
  if (!loop_->mayHold(wanted - former)) {
    return fail(TransportError(TransportError::Kind::tooLarge,
                               "all answers under way take more memory than they may"));
  }
  answer_.reserve(wanted);
  const std::size_t added = answer_.capacity() - former;
  held_ += added;
  loop_->hasTaken(added);
  return true;
}

bool Transfer::fail(TransportError error) {
  if (!failure_) failure_ = std::move(error);
  return false;
}

Result<std::string> Transfer::taken() { return std::move(answer_); }

// The body of a refusal, as far as it can be read.
std::string Transfer::refusalText() const {
  if (head_.coding().empty()) return answer_;
  std::string text;
  if (const auto decoder = ContentDecoder::make(head_.coding())) {
    static_cast<void>(decoder->decode(answer_, [&text](const char* piece, std::size_t count) {
      text.append(piece, count);
      return text.size() <= longestRefusal;
    }));
  }
  return text;
}

Error Transfer::refusal() const {
  const Date now = DeviceClock::now();
  const std::optional<Date> date = dateFromHTTP(easy_->header("Date"), now);
  const Error error =
      NetworkError::invalidStatusCode(head_.status(), date)
          .withRetryAfter(pauseFromHTTP(easy_->header("Retry-After"), date.value_or(now)));
  return error.with({.status = head_.status(), .reason = reasonIn(refusalText())});
}

Error Transfer::failureOf(CURLcode code, std::string details) const {
  if (details.empty() && easy_) details = easy_->errorText();
  const auto proxyStatus = easy_ ? easy_->info<long>(CURLINFO_HTTP_CONNECTCODE) : 0L;
  if (proxyStatus >= 300 && head_.status() == 0) {
    return TransportError(TransportError::Kind::connection,
                          "the proxy refused with status " + std::to_string(proxyStatus));
  }
  // What libcurl collects before it hands it on.
  if (isAboutMemory(code) && !head_.isComplete()) {
    return TransportError(TransportError::Kind::tooLarge, "its headers");
  }
  // A callback that had a reason of its own has told it.
  if (code == CURLE_WRITE_ERROR || code == CURLE_ABORTED_BY_CALLBACK) {
    return TransportError(TransportError::Kind::other, "there is no memory left for it");
  }
  return errorOf(code, std::move(details));
}

Result<std::string> Transfer::outcome(CURLcode code, std::string details) {
  // Whatever becomes of its body: who refuses has answered.
  if (head_.isComplete() && !head_.isSuccess()) return refusal();
  if (failure_) return *failure_;
  if (auto error = problem()) return *std::move(error);
  if (code != CURLE_OK) return failureOf(code, std::move(details));
  if (!head_.isComplete()) {
    return TransportError(TransportError::Kind::cutOff, "it ended within its headers");
  }
  if (needsFarewell_ && !hasFarewell_) {
    return TransportError(TransportError::Kind::cutOff, "the server has not taken its leave");
  }
  if (decoder_ && !decoder_->isWhole()) {
    return TransportError(TransportError::Kind::protocol, "the end of the compressed text lacks");
  }
  return taken();
}

Exchange Transfer::exchange(const Result<std::string>& outcome, bool withSecrets) const {
  const auto shown = [withSecrets](const std::string& name, std::string_view value) {
    return withSecrets ? std::string(value) : valueWithoutSecrets(name, value);
  };
  Exchange exchange;
  exchange.verb = request_.verb;
  const std::string& url = request_.url.absoluteString();
  exchange.url = withSecrets ? url : withoutSecrets(url);
  for (const auto& [name, value] : request_.headers) {
    exchange.requestHeaders.emplace(name, shown(name, value));
  }
  exchange.requestSize = request_.body.size();
  exchange.responseSize = received_;
  exchange.error = outcome.error();
  if (withSecrets) {
    exchange.requestBody = request_.body;
    exchange.responseBody = outcome ? *outcome : refusalText();
  }
  if (!easy_ || easy_->get() == nullptr) return exchange;
  if (head_.status() > 0) exchange.statusCode = head_.status();
  curl_header* header = nullptr;
  while ((header = curl_easy_nextheader(easy_->get(), CURLH_HEADER, -1, header)) != nullptr) {
    exchange.responseHeaders.emplace_back(header->name, shown(header->name, header->value));
  }
  exchange.duration = std::chrono::microseconds(easy_->info<curl_off_t>(CURLINFO_TOTAL_TIME_T));
  return exchange;
}

std::unique_ptr<CurlEasy> Transfer::release() {
  lines_.reset();
  request_.body = {};
  return std::move(easy_);
}

}  // namespace orvane
