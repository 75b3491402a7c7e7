// SPDX-License-Identifier: Apache-2.0
// orvane: the library from a shell.
#include "Program.h"

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>

namespace {

// A standard stream that is closed must not become somebody's socket. It stays unusable: what is
// written to it fails, as it should.
void keepStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) != -1) continue;
    // The lowest number that is free is this one.
    static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

}  // namespace

int main(int argumentCount, char** arguments) {
  keepStandardStreams();
  // A reader that goes away is an error of writing, and a connection that breaks one of the call's.
  std::signal(SIGPIPE, SIG_IGN);
  // The width of characters; everything else stays as in the C locale.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  return static_cast<int>(orvane::cli::runProgram(argumentCount, arguments));
}
