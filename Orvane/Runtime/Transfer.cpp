// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Runtime/CurlErrors.h>
#include <Orvane/Runtime/Transfer.h>
#include <Orvane/Runtime/TransferLoop.h>
#include <Orvane/Runtime/TransportError.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace orvane {
namespace {

// The parser of answers reads this far behind the text; the room for it spares a copy.
constexpr std::size_t padding = 64;

// The body of a refusal is of no interest; one that is longer is not waited for.
constexpr std::size_t longestRefusal = std::size_t{64} << 10U;

constexpr std::string_view hidden = "…";

bool isSuccess(long status) { return status >= 200 && status < 300; }

std::optional<Date> dateOf(CURL* handle) {
  curl_header* header = nullptr;
  if (curl_easy_header(handle, "Date", 0, CURLH_HEADER, -1, &header) != CURLHE_OK) return {};
  // RFC 9110, section 5.6.7: three forms, all of which libcurl reads.
  const std::time_t seconds = curl_getdate(header->value, nullptr);
  if (seconds == -1) return std::nullopt;
  return dateFromSeconds(static_cast<double>(seconds));
}

// libcurl drops a header whose value is blank, unless it is written this way.
std::string headerLine(const std::string& name, const std::string& value) {
  if (value.find_first_not_of(" \t") == std::string::npos) return name + ";";
  return name + ": " + value;
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
}

std::optional<Error> Transfer::prepare(std::unique_ptr<CurlEasy> easy) {
  easy_ = std::move(easy);
  if (!lines_) writeHeaderLines();
  easy_->clearErrorText();
  easy_->set(CURLOPT_PRIVATE, this);
  easy_->set(CURLOPT_WRITEDATA, this);
  easy_->set(CURLOPT_WRITEFUNCTION, &Transfer::receive);
  easy_->set(CURLOPT_URL, request_.url.absoluteString().c_str());
  easy_->set(CURLOPT_HTTPHEADER, lines_.get());
  // Whether a connection can carry several requests is known after the handshake. Without one it
  // is known after the first answer, and waiting for that would be waiting for its server.
  easy_->set(CURLOPT_PIPEWAIT, request_.isEncrypted ? 1L : 0L);
  easy_->bypassProxy(request_.isForThisMachine);
  setVerb();
  const CURLcode code = easy_->failure();
  if (code != CURLE_OK) return errorOf(code, {});
  return std::nullopt;
}

void Transfer::writeHeaderLines() {
  const auto append = [this](const char* line) {
    lines_.reset(curl_slist_append(lines_.release(), line));
  };
  for (const auto& [name, value] : request_.headers) append(headerLine(name, value).c_str());
  // What libcurl would add of its own; a name alone keeps it from doing so.
  constexpr std::pair<std::string_view, const char*> additions[] = {
      {"accept", "Accept:"}, {"content-type", "Content-Type:"}, {"expect", "Expect:"}};
  for (const auto& [name, line] : additions) {
    const bool isGiven = std::any_of(
        request_.headers.begin(), request_.headers.end(),
        [&, wanted = name](const auto& header) { return isHeader(header.first, wanted); });
    if (!isGiven) append(line);
  }
}

void Transfer::setVerb() {
  if (request_.verb == Verb::get && request_.body.empty()) {
    easy_->set(CURLOPT_CUSTOMREQUEST, nullptr);
    easy_->set(CURLOPT_HTTPGET, 1L);
    return;
  }
  // Writes all travel as a POST does, with a "Content-Length" even when there is no body.
  easy_->set(CURLOPT_POST, 1L);
  easy_->set(CURLOPT_POSTFIELDS, request_.body.c_str());
  easy_->set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
  easy_->set(CURLOPT_CUSTOMREQUEST, wireText(request_.verb).data());
}

std::size_t Transfer::receive(char* bytes, std::size_t, std::size_t count,
                              void* transfer) noexcept {
  return static_cast<Transfer*>(transfer)->keep(bytes, count) ? count : CURL_WRITEFUNC_ERROR;
}

bool Transfer::keep(const char* bytes, std::size_t count) {
  const bool isFirst = received_ == 0;
  received_ += count;
  if (isFirst) isRefused_ = !isSuccess(easy_->info<long>(CURLINFO_RESPONSE_CODE));
  return isRefused_ ? received_ <= longestRefusal : take(bytes, count);
}

bool Transfer::take(const char* bytes, std::size_t count) {
  const std::size_t limit = loop_->options().maximumAnswerSize;
  const auto announced =
      answer_.empty() ? easy_->info<curl_off_t>(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T) : curl_off_t{0};
  const std::size_t expected = announced > 0 ? static_cast<std::size_t>(announced) : 0;
  isTooLarge_ = received_ > limit || expected > limit;
  if (isTooLarge_) return false;
  reserve(std::max(received_, expected));
  answer_.append(bytes, count);
  return true;
}

void Transfer::reserve(std::size_t count) {
  if (count + padding <= answer_.capacity()) return;
  answer_.reserve(std::max(count + padding, 2 * answer_.capacity()));
}

std::optional<Error> Transfer::problem() const {
  if (!isTooLarge_) return std::nullopt;
  return TransportError(
      TransportError::Kind::tooLarge,
      "more than " + std::to_string(loop_->options().maximumAnswerSize) + " bytes");
}

Result<std::string> Transfer::taken() { return std::move(answer_); }

Result<std::string> Transfer::outcome(CURLcode code) {
  if (auto error = problem()) return *std::move(error);
  if (code != CURLE_OK && !isRefused_) return errorOf(code, easy_->errorText());
  const auto status = easy_->info<long>(CURLINFO_RESPONSE_CODE);
  if (!isSuccess(status)) return NetworkError::invalidStatusCode(status, dateOf(easy_->get()));
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
  if (const auto status = easy_->info<long>(CURLINFO_RESPONSE_CODE); status > 0) {
    exchange.statusCode = status;
  }
  curl_header* header = nullptr;
  while ((header = curl_easy_nextheader(easy_->get(), CURLH_HEADER, -1, header)) != nullptr) {
    exchange.responseHeaders.emplace_back(header->name, shown(header->name, header->value));
  }
  exchange.responseSize = received_;
  exchange.error = outcome.error();
  exchange.duration = std::chrono::microseconds(easy_->info<curl_off_t>(CURLINFO_TOTAL_TIME_T));
  if (withSecrets) {
    exchange.requestBody = request_.body;
    exchange.responseBody = outcome.value().value_or("");
  }
  return exchange;
}

std::unique_ptr<CurlEasy> Transfer::release() {
  lines_.reset();
  request_.body = {};
  return std::move(easy_);
}

}  // namespace orvane
