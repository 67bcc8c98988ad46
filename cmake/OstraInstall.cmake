# SPDX-License-Identifier: Apache-2.0
#
# Installs the headers, the library, the host platform, a CMake package, a pkg-config file, documentation and examples.
# The installed tree is relocatable.
include(CMakePackageConfigHelpers)

set(headers_dir ${CMAKE_INSTALL_INCLUDEDIR}/ostra_adapter_utils)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ostra_adapter_utils)

install(TARGETS ostra_adapter_utils ostra_host_platform EXPORT ostra_adapter_utilsTargets)
install(DIRECTORY include/ DESTINATION ${headers_dir})
install(DIRECTORY platform/host/include/ DESTINATION ${headers_dir}/platform)
install(EXPORT ostra_adapter_utilsTargets NAMESPACE ostra:: DESTINATION ${package_dir})

configure_package_config_file(cmake/ostra_adapter_utilsConfig.cmake.in ostra_adapter_utilsConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(ostra_adapter_utilsConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/ostra_adapter_utilsConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/ostra_adapter_utilsConfigVersion.cmake
    DESTINATION ${package_dir})

# Relative directories are relative to the pkg-config file, so that the tree is relocatable; absolute ones are kept.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(OSTRA_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
    set(OSTRA_PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
else()
    file(RELATIVE_PATH OSTRA_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(PREPEND OSTRA_PC_PREFIX "\${pcfiledir}/")
    set(OSTRA_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(OSTRA_PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
else()
    set(OSTRA_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(cmake/ostra_adapter_utils.pc.in ostra_adapter_utils.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ostra_adapter_utils.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The documentation and the files that it links to, in the layout of the repository.
set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/ostra_adapter_utils)
install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${doc_dir})
install(DIRECTORY docs examples DESTINATION ${doc_dir}
        FILES_MATCHING PATTERN *.md PATTERN *.svg PATTERN *.png PATTERN *.cpp PATTERN *.h)
install(FILES platform/host/README.md DESTINATION ${doc_dir}/platform/host)
