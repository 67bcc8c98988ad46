# SPDX-License-Identifier: Apache-2.0
#
# Debian's cross compiler and multi-arch libraries for 32-bit Arm; programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(OSTRA_TARGET arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # no notes about ABI changes in GCC 7
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
