#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Prints the version that these sources are of: 0.1.0
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
sed -nE 's/^#define ORVANE_VERSION_(MAJOR|MINOR|PATCH) ([0-9]+)$/\2/p' Orvane/Version.h | paste -sd .
