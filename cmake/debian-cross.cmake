# SPDX-License-Identifier: Apache-2.0
#
# The common part of the cross toolchain files. Requires OSTRA_TARGET, the GNU triplet of the target.
set(CMAKE_C_COMPILER ${OSTRA_TARGET}-gcc)
set(CMAKE_CXX_COMPILER ${OSTRA_TARGET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${OSTRA_TARGET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${OSTRA_TARGET}/pkgconfig:/usr/share/pkgconfig)
