# SPDX-License-Identifier: Apache-2.0
#
# Reads OSTRA_VERSION and OSTRA_SOVERSION from ostra_version.h. Included before project().
set(version_header ${CMAKE_CURRENT_SOURCE_DIR}/include/ostra_version.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${version_header})
file(STRINGS ${version_header} definition REGEX "^#define OSTRA_VERSION \"")
if(NOT definition MATCHES "\"(([0-9]+)\\.([0-9]+)\\.[0-9]+)\"$")
    message(FATAL_ERROR "${version_header} does not define OSTRA_VERSION as \"MAJOR.MINOR.PATCH\".")
endif()
set(OSTRA_VERSION ${CMAKE_MATCH_1})

# While the major version is 0, each minor version may change the interface.
set(OSTRA_SOVERSION ${CMAKE_MATCH_2})
if(OSTRA_SOVERSION EQUAL 0)
    string(APPEND OSTRA_SOVERSION .${CMAKE_MATCH_3})
endif()
