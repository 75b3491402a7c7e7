// SPDX-License-Identifier: Apache-2.0
// What an application may try: the compiler must say what `decode` takes.
#include <Orvane/Coding/Coding.h>

int main() { return orvane::decode<int>("1") ? 0 : 1; }
