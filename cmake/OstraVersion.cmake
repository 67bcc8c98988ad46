# Holds the version that programs see in a header to that of the project, and names the shared libraries after it.
set(header ${CMAKE_CURRENT_SOURCE_DIR}/include/ostra_version.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
file(READ ${header} text)
foreach(definition
        "_MAJOR ${PROJECT_VERSION_MAJOR}" "_MINOR ${PROJECT_VERSION_MINOR}" "_PATCH ${PROJECT_VERSION_PATCH}"
        " \"${PROJECT_VERSION}\"")
    string(FIND "${text}" "#define OSTRA_VERSION${definition}\n" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "The project is of version ${PROJECT_VERSION}; include/ostra_version.h says otherwise.")
    endif()
endforeach()

# While the major version is 0, each minor one may change the interface.
set(OSTRA_SOVERSION ${PROJECT_VERSION_MAJOR})
if(PROJECT_VERSION_MAJOR EQUAL 0)
    string(APPEND OSTRA_SOVERSION .${PROJECT_VERSION_MINOR})
endif()
