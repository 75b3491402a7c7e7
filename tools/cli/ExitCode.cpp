// SPDX-License-Identifier: Apache-2.0
#include "ExitCode.h"

#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/DownloadError.h>
#include <Orvane/Runtime/TokenResolvers.h>
#include <Orvane/Runtime/TransportError.h>

#include <cstdint>

namespace orvane::cli {
namespace {

constexpr ExitCodeRow rows[] = {
    {ExitCode::success, "everything went well"},
    {ExitCode::nameLookup, "the backend's name can't be looked up"},
    {ExitCode::connection, "the backend can't be reached"},
    {ExitCode::tls, "the backend's certificate is not to be trusted"},
    {ExitCode::timeOut, "the time was up"},
    {ExitCode::cutOff, "the connection ended before the answer did"},
    {ExitCode::tooLarge, "the answer is too large"},
    {ExitCode::protocol, "what answered does not speak HTTP"},
    {ExitCode::malformedRequest, "the arguments form no request; nothing was sent"},
    {ExitCode::invalidData, "the answer is not what was asked for"},
    {ExitCode::noData, "the answer is empty"},
    {ExitCode::refused, "the backend refused the request (any other status)"},
    {ExitCode::unauthorized, "the backend does not accept the token (401)"},
    {ExitCode::forbidden, "the backend does not allow it (403)"},
    {ExitCode::notFound, "the backend does not know it (404)"},
    {ExitCode::serverError, "the backend failed (5xx)"},
    {ExitCode::usage, "the command line is wrong"},
    {ExitCode::internal, "an error without a kind of its own"},
    {ExitCode::output, "the output, or a file, can't be written"},
    {ExitCode::configuration, "a setting is missing or wrong"},
    {ExitCode::cancelled, "cancelled with Ctrl-C"},
};

Failure refusal(std::int64_t status) {
  const std::string number = " (" + std::to_string(status) + ")";
  const std::string refused = "the backend refused the request" + number;
  switch (status) {
    case 400:
      return {ExitCode::refused, refused + ": it finds a value wrong"};
    case 401:
      return {ExitCode::unauthorized, "the backend does not accept the token" + number};
    case 403:
      return {ExitCode::forbidden, "the backend does not allow this user to do that" + number};
    case 404:
      return {ExitCode::notFound, "the backend does not know what was asked for" + number};
    case 409:
      return {ExitCode::refused, refused + ": it contradicts what is there"};
    case 429:
      return {ExitCode::refused, refused + ": too many requests; try again later"};
    default:
      break;
  }
  if (status >= 500) return {ExitCode::serverError, "the backend failed" + number};
  if (status >= 300 && status < 400) {
    return {ExitCode::refused, "the backend points elsewhere" + number + "; that is not followed"};
  }
  return {ExitCode::refused, refused};
}

ExitCode codeOf(NetworkError::Case kind) {
  switch (kind) {
    case NetworkError::Case::malformedRequest:
      return ExitCode::malformedRequest;
    case NetworkError::Case::invalidResponseData:
      return ExitCode::invalidData;
    case NetworkError::Case::noData:
      return ExitCode::noData;
    case NetworkError::Case::invalidStatusCode:
      return ExitCode::refused;
    case NetworkError::Case::unknown:
      break;
  }
  return ExitCode::internal;
}

ExitCode codeOf(TransportError::Kind kind) {
  switch (kind) {
    case TransportError::Kind::nameLookup:
      return ExitCode::nameLookup;
    case TransportError::Kind::connection:
      return ExitCode::connection;
    case TransportError::Kind::tls:
      return ExitCode::tls;
    case TransportError::Kind::timeOut:
      return ExitCode::timeOut;
    case TransportError::Kind::cutOff:
      return ExitCode::cutOff;
    case TransportError::Kind::tooLarge:
      return ExitCode::tooLarge;
    case TransportError::Kind::protocol:
      return ExitCode::protocol;
    case TransportError::Kind::insecure:
      return ExitCode::configuration;
    case TransportError::Kind::cancelled:
      return ExitCode::cancelled;
    case TransportError::Kind::overloaded:
    case TransportError::Kind::other:
      break;
  }
  return ExitCode::internal;
}

ExitCode codeOf(const Error& error) {
  if (const auto* network = error.as<NetworkError>()) return codeOf(network->kind());
  if (const auto* transport = error.as<TransportError>()) return codeOf(transport->kind());
  if (error.as<DataError>() != nullptr) return ExitCode::malformedRequest;
  if (error.as<ConfigurationError>() != nullptr) return ExitCode::configuration;
  if (error.as<TokenError>() != nullptr) return ExitCode::configuration;
  if (error.as<DownloadError>() != nullptr) return ExitCode::output;
  if (error.as<Cancelled>() != nullptr) return ExitCode::cancelled;
  if (error.as<TimedOut>() != nullptr) return ExitCode::timeOut;
  return ExitCode::internal;
}

}  // namespace

std::span<const ExitCodeRow> exitCodes() noexcept { return rows; }

Failure failureOf(const Error& error, const std::string& request) {
  const auto* network = error.as<NetworkError>();
  const bool isRefusal =
      network != nullptr && network->kind() == NetworkError::Case::invalidStatusCode;
  const Failure told =
      isRefusal ? refusal(network->statusCode()) : Failure(codeOf(error), error.message());
  std::string words = told.what();
  const ErrorContext none;
  const ErrorContext& context = error.context() != nullptr ? *error.context() : none;
  if (!context.reason.empty()) words += "; it says: " + context.reason;
  if (!context.finding.empty()) words += ": " + context.finding;
  const std::string& place = request.empty() ? context.operation : request;
  if (!place.empty()) words += " [" + place + "]";
  return {told.code(), words};
}

}  // namespace orvane::cli
