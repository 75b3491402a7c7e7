# SPDX-License-Identifier: Apache-2.0
#
# Debian's arm64: AArch64, little-endian.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(orvane_triplet aarch64-linux-gnu)
set(orvane_qemu qemu-aarch64-static)
include(${CMAKE_CURRENT_LIST_DIR}/debian-multiarch.cmake)
