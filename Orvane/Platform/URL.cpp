// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Platform/URL.h>

#include <boost/url/encode.hpp>
#include <boost/url/grammar/lut_chars.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/rfc/pchars.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>

namespace orvane {
namespace {

namespace urls = boost::urls;

// RFC 3986, section 3.3 and 3.4: what stands in a path, and in a query, without being encoded.
constexpr auto pathCharacters = urls::pchars + '/';
constexpr auto queryCharacters = urls::pchars + '/' + '?';
// Section 3.2.2: of what a host's name may hold, what names on the web are made of.
constexpr auto hostCharacters =
    urls::grammar::lut_chars("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-");

// The text has been parsed before, so this can't fail.
urls::url_view parsed(const std::string& text) { return urls::parse_uri_reference(text).value(); }

// Where the path ends: at the query, the fragment or the end of the text.
std::size_t pathEnd(std::string_view text) {
  return std::min(text.find_first_of("?#"), text.size());
}

// RFC 3986, section 3.3: a path behind an authority is empty or begins with a slash. Boost 1.81
// reads "//host:port/" as a host, an empty port and the path "port/".
bool beginsPathWithSlash(const urls::url_view& url) {
  const auto path = url.encoded_path();
  return !url.has_authority() || path.empty() || path.front() == '/';
}

template <class Characters>
bool consistsOf(std::string_view text, const Characters& characters) {
  return std::all_of(text.begin(), text.end(),
                     [&](char c) { return characters(static_cast<unsigned char>(c)); });
}

// Whether a text is "https://host/path" without port, query or percent sign, as pictures of people
// are named: then its characters are all there is to check.
bool isPlainWebAddress(std::string_view text) {
  constexpr std::string_view scheme = "https://";
  if (!text.starts_with(scheme)) return false;
  text.remove_prefix(scheme.size());
  const std::size_t hostEnd = std::min(text.find('/'), text.size());
  return hostEnd != 0 && consistsOf(text.substr(0, hostEnd), hostCharacters) &&
         consistsOf(text.substr(hostEnd), pathCharacters);
}

template <class Characters>
void appendEncoded(std::string& text, std::string_view raw, const Characters& allowed) {
  consistsOf(raw, allowed) ? text.append(raw) : text.append(urls::encode(raw, allowed));
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
  if (text.empty()) return std::nullopt;
  if (isPlainWebAddress(text)) return URL(std::string(text));
  const auto url = urls::parse_uri_reference(text);
  if (url.has_error() || !beginsPathWithSlash(*url)) return std::nullopt;
  return URL(std::string(text));
}

std::optional<URL> URL::fromFilePath(std::string_view path) {
  if (!path.starts_with('/') || !isUTF8(path)) return std::nullopt;
  std::string text = "file://";
  appendEncoded(text, path, pathCharacters);
  return parse(text);
}

std::string URL::scheme() const {
  std::string scheme(parsed(text_).scheme());
  std::transform(scheme.begin(), scheme.end(), scheme.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  });
  return scheme;
}

std::string URL::host() const { return parsed(text_).host_address(); }

bool URL::hasHost() const {
  const urls::url_view url = parsed(text_);
  return url.has_scheme() && !url.encoded_host_address().empty();
}

std::string URL::path() const { return std::string(parsed(text_).encoded_path()); }

std::optional<std::string> URL::query() const {
  const urls::url_view url = parsed(text_);
  if (!url.has_query()) return std::nullopt;
  return std::string(url.encoded_query());
}

std::optional<std::string> URL::filePath() const {
  const std::string machine = host();
  if (scheme() != "file" || !(machine.empty() || machine == "localhost")) return std::nullopt;
  return parsed(text_).path();
}

std::optional<URL> URL::appendingPathComponent(std::string_view component) const {
  if (!isUTF8(component)) return std::nullopt;
  const std::size_t end = pathEnd(text_);
  // The slashes of an authority ("https://") are not the path's, but nothing is lost with them: a
  // URL without a host can't be sent to.
  std::size_t rootEnd = end;
  while (rootEnd > 0 && text_[rootEnd - 1] == '/') --rootEnd;
  component.remove_prefix(std::min(component.find_first_not_of('/'), component.size()));

  std::string text;
  text.reserve(text_.size() + component.size() + 1);
  text.append(text_, 0, rootEnd).push_back('/');
  appendEncoded(text, component, pathCharacters);
  text.append(text_, end);
  // Well-formed as this URL is: what was added is one slash and path characters.
  return URL(std::move(text));
}

std::optional<URL> URL::settingQuery(std::optional<std::string_view> query) const {
  if (query && !isUTF8(*query)) return std::nullopt;
  const std::size_t fragment = std::min(text_.find('#'), text_.size());

  std::string text = text_.substr(0, pathEnd(text_));
  if (query) {
    text.push_back('?');
    appendEncoded(text, *query, queryCharacters);
  }
  text.append(text_, fragment);
  if (text.empty()) return std::nullopt;
  return URL(std::move(text));
}

}  // namespace orvane
