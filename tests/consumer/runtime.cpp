// SPDX-License-Identifier: Apache-2.0
// An application that takes the Runtime, and the doubles for its tests, along.
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>
#include <Orvane/Testing.h>

int main() { return 0; }
