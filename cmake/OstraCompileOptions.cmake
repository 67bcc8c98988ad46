# SPDX-License-Identifier: Apache-2.0
#
# Compile and link options of every target: warnings, calls into shared libraries without the PLT, and hardening.
include(CheckCXXCompilerFlag)

add_library(ostra_compile_options INTERFACE)
target_compile_options(ostra_compile_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -fno-plt -fstack-protector-strong)
target_link_options(ostra_compile_options INTERFACE LINKER:-z,relro,-z,now)

# Flags that only some compilers and processors support. Clang only warns about flags for another processor, hence
# -Werror.
set(CMAKE_REQUIRED_FLAGS -Werror)
set(CMAKE_REQUIRED_QUIET ON) # an unsupported flag is not an error
foreach(flag -fcf-protection=full -mbranch-protection=standard -fstack-clash-protection)
    string(MAKE_C_IDENTIFIER "OSTRA_SUPPORTS${flag}" is_supported)
    check_cxx_compiler_flag(${flag} ${is_supported})
    if(${is_supported})
        target_compile_options(ostra_compile_options INTERFACE ${flag})
    endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_QUIET)

# The fortified functions of the C library require optimization and conflict with the sanitizers.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    set(is_optimized $<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>)
    target_compile_options(ostra_compile_options INTERFACE
        $<${is_optimized}:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()
