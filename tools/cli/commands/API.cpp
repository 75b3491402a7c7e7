// SPDX-License-Identifier: Apache-2.0
// orvane api: any request, with the token of who is signed in.
#include "Commands.h"
#include <Orvane/Common/Container.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Services/User/UserService.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace orvane::cli {

/// A parameter of a query.
struct QueryItem {
  std::string text;
};

template <>
struct Argument<QueryItem> {
  static constexpr std::string_view label = "NAME=VALUE";
  static constexpr std::string_view meaning = "a name, an equals sign and a value";
  static constexpr bool isWhole = true;
  [[nodiscard]] static std::optional<QueryItem> parse(std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == 0 || equals == std::string_view::npos) return std::nullopt;
    return QueryItem{std::string(text)};
  }
};

struct HeaderLine {
  std::string name;
  std::string value;
};

template <>
struct Argument<HeaderLine> {
  static constexpr std::string_view label = "'NAME: VALUE'";
  static constexpr std::string_view meaning = "a name, a colon and a value";
  static constexpr bool isWhole = true;
  [[nodiscard]] static std::optional<HeaderLine> parse(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos) return std::nullopt;
    const std::size_t value = std::min(text.find_first_not_of(" \t", colon + 1), text.size());
    return HeaderLine{std::string(text.substr(0, colon)), std::string(text.substr(value))};
  }
};

namespace {

// What stands between "&" and "=" as it is meant (RFC 3986, section 2.1, over what the query of a
// URL leaves alone).
std::string encoded(std::string_view text) {
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/:,@";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string whole;
  for (const char character : text) {
    const auto value = static_cast<unsigned char>(character);
    if (plain.find(character) != std::string_view::npos) {
      whole += character;
    } else {
      whole.append({'%', digits[value / 16U], digits[value % 16U]});
    }
  }
  return whole;
}

std::string contentsOf(std::istream& stream, const std::string& name) {
  std::string text(std::istreambuf_iterator<char>(stream), {});
  if (stream.bad() || !stream.eof()) {
    throw Failure(ExitCode::usage, "--data: " + name + " can't be read");
  }
  return text;
}

std::string standardInput() {
  std::string text;
  std::array<char, 4096> piece{};
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), stdin)) {
    text.append(piece.data(), count);
  }
  if (std::ferror(stdin) != 0) throw Failure(ExitCode::usage, "--data: it can't be read");
  return text;
}

struct SendRequest {
  static constexpr std::string_view name = "api";
  static constexpr std::string_view summary = "Send any request, and print what comes back";
  static constexpr Example examples[] = {
      {"api GET identity", "who the backend takes the token for"},
      {"api GET users/1001/trips --query limit=2 --query expand=scores",
       "paths stand below the API root; values are encoded"},
      {"api POST trips/500001 --query purpose=BUSINESS",
       "a write; --data FILE sends a body, from standard input with -"},
  };

  orvane::Verb verb{};
  std::string path;
  std::vector<QueryItem> query;
  std::optional<std::filesystem::path> data;
  std::vector<HeaderLine> headers;

  void declare(Options& options) {
    options.positional("METHOD", verb, "What to do");
    options.positional("PATH", path,
                       "The path below the API root, or a whole URL of the backend's");
    options.option("--query", query, "A parameter of the query; may be repeated");
    options.option("--data", data, "The file with the body, JSON unless a header says otherwise");
    options.option("--header", headers, "A header; may be repeated");
  }

  void run(Session& session) const {
    const std::string body = session.uncancelled([this] { return this->body(); });
    session.keepBodies();
    session.connect();
    const Operation<OrvaneDetails> resolving(
        [&session, resolver = UserService(session.identity()).orvaneDetailsResolver()](
            Completion<OrvaneDetails> then) {
          return resolver->resolve(session.identity(), std::move(then));
        });
    const OrvaneDetails details = session.call(resolving);
    const URL url = urlBelow(details.apiURL.absoluteString());
    const Headers sent = headersOver(details.headers, !body.empty());
    const Operation<std::string> request([&](Completion<std::string> then) {
      return Container::common()->inject<RequestManager>()->send(verb, url, body, sent,
                                                                 std::move(then));
    });
    const Result<std::string> answer = session.attempt(request);
    Output& output = session.output();
    if (!answer && output.style().isRaw()) session.fail(answer.errorOr(NetworkError::unknown));
    // Bodies of refusals, too: they say why.
    const std::string text = answer ? *answer : session.log().lastAnswer();
    if (!text.empty() && output.style().isJSON()) output.json(text);
    if (!text.empty() && !output.style().isJSON()) print(text, output);
    if (answer) return;
    session.finish();
    session.fail(answer.errorOr(NetworkError::unknown));
  }

 private:
  // As it came; on a terminal, where it is to be read, JSON is laid out, and nothing can steer it.
  static void print(const std::string& text, Output& output) {
    if (!output.style().isTable()) return output.raw(text);
    const bool isJSON = text.find_first_of("{[") == text.find_first_not_of(" \t\r\n");
    const std::string shown = isJSON ? indentedJSON(text) : text;
    for (std::string_view rest = shown; !rest.empty();) {
      const std::size_t end = std::min(rest.find('\n'), rest.size());
      output.line(visible(rest.substr(0, end)));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

  [[nodiscard]] std::string body() const {
    if (!data) return {};
    if (*data == "-") return standardInput();
    std::ifstream file(*data);
    return contentsOf(file, data->string());
  }

  // The token goes to the backend that it is for, and to no other.
  [[nodiscard]] URL urlBelow(const std::string& root) const {
    std::string text = path.starts_with(root + "/") ? path : root + "/";
    if (path.find("://") == std::string::npos) {
      text += path.substr(std::min(path.find_first_not_of('/'), path.size()));
    } else if (text != path) {
      throw Failure(ExitCode::usage, "PATH is not below the API root, " + root);
    }
    for (const QueryItem& item : query) {
      const std::size_t equals = item.text.find('=');
      text += text.find('?') == std::string::npos ? '?' : '&';
      text += encoded(item.text.substr(0, equals)) + "=" + encoded(item.text.substr(equals + 1));
    }
    const auto url = URL::parse(text);
    if (!url) throw Failure(ExitCode::malformedRequest, "PATH forms no URL: " + path);
    return *url;
  }

  [[nodiscard]] Headers headersOver(Headers all, bool hasBody) const {
    if (hasBody) {
      all["Content-Type"] = "application/json";
      all["X-Requested-With"] = "XMLHttpRequest";
    }
    for (const HeaderLine& header : headers) all[header.name] = header.value;
    return all;
  }
};

}  // namespace

Resource apiCommand() { return Resource::only<SendRequest>(); }

}  // namespace orvane::cli
