// SPDX-License-Identifier: Apache-2.0
// orvane: the library from a shell.
#include "Program.h"

#include <clocale>
#include <csignal>

int main(int argumentCount, char** arguments) {
  // A reader that goes away is an error of writing, and a connection that breaks one of the call's.
  std::signal(SIGPIPE, SIG_IGN);
  // The width of characters; everything else stays as in the C locale.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  return static_cast<int>(orvane::cli::runProgram(argumentCount, arguments));
}
