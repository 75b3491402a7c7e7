// SPDX-License-Identifier: Apache-2.0
// Where tokens come from, what stands in them, and how long they are kept.
#include "tests/support/Outcome.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>
#include <Orvane/Runtime/TokenResolvers.h>
#include <Orvane/Testing/Device.h>

#include <gmock/gmock.h>
#include <openssl/evp.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

const Identity ann{"app", "ann"};
const std::string key(32, 'k');

Result<std::string> tokenOf(TokenResolver& resolver, const Identity& identity,
                            std::optional<double> offset = {}) {
  const Outcome<std::string> outcome;
  const RequestHandle request = resolver.resolve(identity, offset, outcome.handler());
  EXPECT_TRUE(request->isFinished());
  return outcome.result();
}

std::shared_ptr<SelfSignedTokenResolver> signing(SelfSignedTokenOptions options = {.key = key}) {
  return SelfSignedTokenResolver::make(std::move(options)).value().value();
}

// RFC 4648, section 5, without what fills up.
std::string decoded(std::string text) {
  std::replace(text.begin(), text.end(), '-', '+');
  std::replace(text.begin(), text.end(), '_', '/');
  const std::size_t size = text.size() * 3 / 4;
  text.resize((text.size() + 3) / 4 * 4, 'A');
  std::vector<unsigned char> bytes(text.size());
  EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()),
                  static_cast<int>(text.size()));
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

std::string claimsOf(const Result<std::string>& result) {
  const std::string token = result.value().value();
  const std::size_t first = token.find('.') + 1;
  return decoded(token.substr(first, token.rfind('.') - first));
}

// The expected token was computed by other means.
TEST(SelfSignedTokenResolverTest, SignsAsTheStandardSays) {
  const MovableClock clock(dateFromSeconds(1'700'000'000.75));
  const auto resolver = signing({.key = "an example key of 32 bytes, yes!"});
  EXPECT_EQ(tokenOf(*resolver, ann),
            std::string("eyJhbGciOiJIUzI1NiIsInR5cCI6IkpXVCJ9."
                        "eyJzdWIiOiJhbm4iLCJpYXQiOjE3MDAwMDAwMDAsImV4cCI6MTcwMDAwMDYwMH0."
                        "4XjvTDgss8BSxXxz8hyPB3HT3s8bGd9CA-n4UEHvwAA"));
}

TEST(SelfSignedTokenResolverTest, TellsWhoAndWhen) {
  const MovableClock clock;
  const std::tuple<Identity, std::optional<double>, std::string> rows[] = {
      {ann, {}, R"({"sub":"ann","iat":1700000000,"exp":1700000300})"},
      {{"app", {}}, {}, R"({"sub":"app","iat":1700000000,"exp":1700000300})"},
      {ann, 300.0, R"({"sub":"ann","iat":1700000300,"exp":1700000600})"},
      {ann, -0.5, R"({"sub":"ann","iat":1699999999,"exp":1700000299})"},
      {{"app", "\"Zoë\"\n"}, {}, R"({"sub":"\"Zoë\"\n","iat":1700000000,"exp":1700000300})"},
  };
  const auto resolver = signing({.key = key, .lifetime = std::chrono::minutes(5)});
  for (const auto& [identity, offset, claims] : rows) {
    EXPECT_EQ(claimsOf(tokenOf(*resolver, identity, offset)), claims);
  }
}

TEST(SelfSignedTokenResolverTest, KeepsATokenForAWhile) {
  MovableClock clock;
  const auto resolver = signing();
  const auto first = tokenOf(*resolver, ann, 10.0);
  const auto isSame = [&](std::optional<double> offset = 10.0) {
    return tokenOf(*resolver, ann, offset) == first;
  };
  clock.advance(Seconds(59.9));
  EXPECT_TRUE(isSame());
  EXPECT_NE(tokenOf(*resolver, {"app", "bob"}, 10.0), first) << "tokens are a person's own";
  clock.advance(Seconds(0.2));
  EXPECT_FALSE(isSame()) << "it has become old";

  clock.set(dateFromSeconds(1'700'000'000));
  EXPECT_TRUE(isSame()) << "a clock that was put back asks for a new token, of the same times";
  EXPECT_FALSE(isSame(11.0)) << "another offset, other times";
  EXPECT_TRUE(isSame());
  clock.advance(Seconds(5));
  resolver->forget({"app", "bob"});
  EXPECT_TRUE(isSame());
  resolver->forget(ann);
  EXPECT_FALSE(isSame());
}

TEST(SelfSignedTokenResolverTest, NeverUsesATokenToItsEnd) {
  MovableClock clock;
  const auto resolver =
      signing({.key = key, .lifetime = std::chrono::seconds(10), .reuse = std::chrono::hours(1)});
  const auto first = tokenOf(*resolver, ann);
  clock.advance(Seconds(8.9));
  EXPECT_EQ(tokenOf(*resolver, ann), first);
  clock.advance(Seconds(0.2));
  EXPECT_NE(tokenOf(*resolver, ann), first);
}

TEST(SelfSignedTokenResolverTest, RefusesWhatItCannotSign) {
  const auto problem = [](SelfSignedTokenOptions options) {
    return SelfSignedTokenResolver::make(std::move(options)).error()->message();
  };
  EXPECT_EQ(problem({.key = std::string(31, 'k')}),
            "the key that signs tokens is shorter than 32 bytes");
  EXPECT_EQ(problem({.key = key, .lifetime = std::chrono::seconds(0)}),
            "the lifetime of tokens is shorter than a second");
  EXPECT_EQ(problem({.key = key, .lifetime = std::chrono::seconds::max()}),
            "the lifetime of tokens is longer than 100 years");

  const Error unsignable = TokenError(TokenError::Kind::signing);
  EXPECT_EQ(tokenOf(*signing(), {"app", "\xFF"}), unsignable) << "no JSON text holds that";
  const MovableClock clock(dateFromSeconds(1e300));
  EXPECT_EQ(tokenOf(*signing(), ann), unsignable);
}

TEST(SelfSignedTokenResolverTest, ReadsKeysInHexadecimal) {
  EXPECT_EQ(bytesFromHexadecimal("00fFa9"), std::string("\0\xFF\xA9", 3));
  EXPECT_EQ(bytesFromHexadecimal(""), "");
  for (const char* text : {"0", "0g", "0x", " 00", "000"}) {
    EXPECT_EQ(bytesFromHexadecimal(text), std::nullopt) << text;
  }
}

TEST(ReplaceableTokenResolverTest, AnswersTheLatestToken) {
  ReplaceableTokenResolver resolver("first");
  EXPECT_EQ(tokenOf(resolver, ann), std::string("first"));
  resolver.replace("second");
  EXPECT_EQ(tokenOf(resolver, ann), std::string("second"));
  resolver.forget(ann);
  EXPECT_EQ(tokenOf(resolver, ann), Error(TokenError(TokenError::Kind::signedOut)));
  resolver.replace("third");
  EXPECT_EQ(tokenOf(resolver, ann), std::string("third"));
}

TEST(FunctionTokenResolverTest, AsksTheFunctionAndWaitsForItsAnswer) {
  struct Question {
    Identity identity;
    std::optional<double> offset;
    Completion<std::string> answer;
  };
  std::vector<Question> questions;
  FunctionTokenResolver resolver(
      [&](const Identity& identity, std::optional<double> offset, Completion<std::string> answer) {
        questions.push_back({identity, offset, std::move(answer)});
      });
  const Outcome<std::string> answered;
  const RequestHandle first = resolver.resolve(ann, 2.5, answered.handler());
  const Outcome<std::string> cancelled;
  const RequestHandle second = resolver.resolve(ann, {}, cancelled.handler());
  const Outcome<std::string> dropped;
  const RequestHandle third = resolver.resolve(ann, {}, dropped.handler());

  ASSERT_THAT(questions, SizeIs(3));
  EXPECT_EQ(questions[0].identity, ann);
  EXPECT_EQ(questions[0].offset, 2.5);
  EXPECT_EQ(questions[1].offset, std::nullopt);
  EXPECT_FALSE(first->isFinished());

  questions[0].answer(std::string("token"));
  EXPECT_EQ(answered.result(), std::string("token"));
  EXPECT_TRUE(first->isFinished());
  EXPECT_TRUE(second->cancel());
  EXPECT_FALSE(cancelled.isHeld()) << "the function still holds what it was given to answer with";
  EXPECT_TRUE(second->cancel() && second->isFinished());
  questions[1].answer(std::string("token"));
  EXPECT_EQ(cancelled.count(), 0U);
  questions.clear();
  EXPECT_EQ(dropped.result(), Error(TokenError(TokenError::Kind::unanswered)));
  EXPECT_TRUE(third->isFinished());
}

TEST(TokenSourceTest, TakesWhateverMakesTokens) {
  const auto function = [](const Identity& identity, std::optional<double>,
                           Completion<std::string> answer) {
    answer(*identity.externalReferenceID + "'s");
  };
  std::vector<TokenSource> sources;
  sources.emplace_back("fixed");
  sources.emplace_back(function);
  sources.emplace_back(std::make_shared<ReplaceableTokenResolver>("own"));
  std::vector<std::string> tokens;
  for (const TokenSource& source : sources) {
    tokens.push_back(tokenOf(**source.resolver().value(), ann).value().value());
  }
  EXPECT_THAT(tokens, ElementsAre("fixed", "ann's", "own"));
  EXPECT_TRUE(TokenSource(SelfSignedTokenResolver::make({.key = key})).resolver());
  EXPECT_EQ(TokenSource(SelfSignedTokenResolver::make({})).resolver().error()->message(),
            "the key that signs tokens is shorter than 32 bytes");
  const std::function<void(const Identity&, std::optional<double>, Completion<std::string>)> none;
  for (const TokenSource& source :
       {TokenSource(), TokenSource(none), TokenSource(std::shared_ptr<TokenResolver>()),
        TokenSource(""), TokenSource(static_cast<const char*>(nullptr))}) {
    EXPECT_EQ(source.resolver().error()->message(), "tokens are missing");
  }
}

}  // namespace
}  // namespace orvane
