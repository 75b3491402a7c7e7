# SPDX-License-Identifier: Apache-2.0
#
# Debian's armhf: ARMv7 of 32 bits with VFPv3, little-endian.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(orvane_triplet arm-linux-gnueabihf)
set(orvane_qemu qemu-arm-static)
include(${CMAKE_CURRENT_LIST_DIR}/debian-multiarch.cmake)
