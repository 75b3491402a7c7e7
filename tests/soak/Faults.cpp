// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/Faults.h"

#include "tests/runtime/support/Bodies.h"

#include <string_view>

namespace orvane::soak {
namespace {

using enum Ending;

std::string head(std::string_view headers) {
  return "HTTP/1.1 200 OK\r\n" + std::string(headers) + "\r\n";
}

std::string withLength(std::size_t length, std::string_view more = {}) {
  return head("Content-Length: " + std::to_string(length) + "\r\n" + std::string(more));
}

constexpr std::string_view chunked = "Transfer-Encoding: chunked\r\n";
constexpr std::string_view compressed = "Content-Encoding: gzip\r\n";

using Connection = ServerConnection;
using Body = const std::string;

constexpr Behaviour behaviours[] = {
    // Good ones.
    {"whole", 300, success, [](Connection& c, Body& body) { c.answer(200, body); }},
    {"in chunks", 60, success,
     [](Connection& c, Body& body) {
       const std::size_t half = body.size() / 2;
       c.send(head(chunked) + chunk(body.substr(0, half)));
       c.send(chunk(body.substr(half)) + chunk({}));
     }},
    {"compressed", 60, success,
     [](Connection& c, Body& body) {
       const std::string packed = gzipped(body);
       c.send(withLength(packed.size(), compressed) + packed);
     },
     failure},
    {"byte by byte", 5, success,
     [](Connection& c, Body& body) {
       for (const char byte : withLength(body.size())) c.send({&byte, 1});
       c.send(body);
     }},
    {"interim answers first", 20, success,
     [](Connection& c, Body& body) {
       c.send("HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n");
       c.answer(200, body);
     }},
    {"and says goodbye", 20, success,
     [](Connection& c, Body& body) {
       c.answer(200, body, "Connection: close\r\n");
       c.end();
     }},
    {"and leaves in silence", 40, success,
     [](Connection& c, Body& body) {
       c.answer(200, body);
       c.end();
     }},
    {"and is cut afterwards", 20, success,
     [](Connection& c, Body& body) {
       c.answer(200, body);
       c.cut();
     }},
    {"ends with its connection", 10, success,
     [](Connection& c, Body& body) {
       c.send(head("") + body);
       c.end();
     }},
    // Refusals.
    {"not found", 20, failure,
     [](Connection& c, Body&) { c.answer(404, R"({"message":"no such thing"})"); }},
    {"unavailable", 10, failure,
     [](Connection& c, Body&) { c.answer(503, "<html>", "Retry-After: 1\r\n"); }},
    {"refused, and cut", 10, failure,
     [](Connection& c, Body&) {
       c.send("HTTP/1.1 500 Oops\r\nContent-Length: 100\r\n\r\nsorr");
       c.cut();
     }},
    {"elsewhere", 5, failure,
     [](Connection& c, Body&) { c.answer(302, "", "Location: https://127.0.0.1:1/\r\n"); }},
    // Bad ones.
    {"cut before the answer", 15, failure, [](Connection& c, Body&) { c.cut(); }},
    {"gone before the answer", 15, failure, [](Connection& c, Body&) { c.end(); }},
    {"cut in the status", 5, failure,
     [](Connection& c, Body&) {
       c.send("HTTP/1.1 2");
       c.end();
     }},
    {"cut in the headers", 10, failure,
     [](Connection& c, Body&) {
       c.send("HTTP/1.1 200 OK\r\nContent-Len");
       c.end();
     }},
    {"cut in the body", 10, failure,
     [](Connection& c, Body& body) {
       c.send(withLength(body.size() + 1) + body);
       c.end();
     }},
    {"without TLS's farewell", 10, failure,
     [](Connection& c, Body& body) {
       c.send(head("") + body);
       c.cut();
     }},
    {"cut between chunks", 10, failure,
     [](Connection& c, Body& body) {
       c.send(head(chunked) + chunk(body));
       c.end();
     }},
    {"broken chunks", 10, failure,
     [](Connection& c, Body& body) {
       c.send(head(chunked) + "zz\r\n" + body + "\r\n0\r\n\r\n");
       c.end();
     }},
    {"two lengths", 10, failure,
     [](Connection& c, Body& body) {
       c.send(withLength(body.size(), "Content-Length: 3\r\n") + body);
       c.end();
     }},
    {"compressed without its end", 10, failure,
     [](Connection& c, Body& body) {
       const std::string packed = gzipped(body);
       c.send(withLength(packed.size() - 9, compressed) + packed.substr(0, packed.size() - 9));
     }},
    {"not compressed, as was said", 5, failure,
     [](Connection& c, Body& body) { c.send(withLength(body.size(), compressed) + body); }},
    {"no HTTP", 10, failure,
     [](Connection& c, Body&) {
       c.send("220 mail.example ESMTP\r\n");
       c.end();
     }},
    {"endless headers", 1, failure,
     [](Connection& c, Body&) {
       c.send("HTTP/1.1 200 OK\r\n");
       while (c.send("X-More: and more, and more, and more\r\n")) {
       }
     }},
    {"too large", 2, failure,
     [](Connection& c, Body&) {
       c.send(withLength(std::size_t{1} << 40U) + std::string(4096, 'x'));
       c.waitUntilClosed();
     }},
    {"silence", 2, failure, [](Connection& c, Body&) { c.waitUntilClosed(); }},
    {"silence in the body", 2, failure,
     [](Connection& c, Body& body) {
       c.send(withLength(body.size() + 1) + body);
       c.waitUntilClosed();
     }},
};

}  // namespace

// splitmix64 (Steele, Lea, Flood 2014).
std::uint64_t Dice::roll(char what, std::uint64_t number, std::uint64_t sides) const {
  std::uint64_t x = seed_ + 0x9E3779B97F4A7C15U * (256 * number + static_cast<unsigned char>(what));
  x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
  return (x ^ (x >> 31U)) % sides;
}

const Behaviour& Dice::behaviour(std::uint64_t number) const {
  constexpr auto sum = [] {
    std::uint64_t weights = 0;
    for (const Behaviour& behaviour : behaviours) weights += behaviour.weight;
    return weights;
  }();
  const Behaviour* behaviour = behaviours;
  for (std::uint64_t rest = roll('b', number, sum); rest >= behaviour->weight; ++behaviour) {
    rest -= behaviour->weight;
  }
  return *behaviour;
}

}  // namespace orvane::soak
