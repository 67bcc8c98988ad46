# What `cpack` makes of that which `cmake --install` puts somewhere: one Debian package, for those who build against the
# library and run what they built.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ostra-adapter-utils-dev)
set(CPACK_PACKAGE_VENDOR "The authors of ${PROJECT_NAME}")
set(CPACK_PACKAGE_CONTACT ${CPACK_PACKAGE_VENDOR})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_DESCRIPTION "The library, the host platform that it stands on, their headers, and ostra-inspect.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON) # with what is linked; the headers need the standard ones and nothing else
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6-dev, libstdc++-dev")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "g++, pkg-config")
include(CPack)
