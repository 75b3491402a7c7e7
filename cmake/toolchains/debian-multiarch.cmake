# SPDX-License-Identifier: Apache-2.0
#
# For another processor on Debian: its cross compiler, the packages of that architecture beside this machine's own
# (dpkg --add-architecture), and QEMU, which runs what was built. Included by one file per processor, which sets
# orvane_triplet and orvane_qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${orvane_triplet}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR ${orvane_qemu})

# Both architectures share /usr: where find_library and find_package look first, and pkg-config at all.
set(CMAKE_LIBRARY_ARCHITECTURE ${orvane_triplet})
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${orvane_triplet}/pkgconfig:/usr/share/pkgconfig)
