# SPDX-License-Identifier: Apache-2.0
#
# What every target of the project compiles and links with: warnings, calls into other shared libraries without a stub
# (-fno-plt), and hardening.
include(CheckCXXCompilerFlag)

add_library(ostra_compile_options INTERFACE)
target_compile_options(ostra_compile_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -fno-plt -fstack-protector-strong)
target_link_options(ostra_compile_options INTERFACE LINKER:-z,relro,-z,now)

# Flags that only some compilers and processors have. Clang merely warns about those of another processor.
set(CMAKE_REQUIRED_FLAGS -Werror)
set(CMAKE_REQUIRED_QUIET ON) # a missing flag is no error
foreach(flag -fcf-protection=full -mbranch-protection=standard -fstack-clash-protection)
    string(MAKE_C_IDENTIFIER "OSTRA_TAKES${flag}" takes_flag)
    check_cxx_compiler_flag(${flag} ${takes_flag})
    if(${takes_flag})
        target_compile_options(ostra_compile_options INTERFACE ${flag})
    endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_QUIET)

# The fortified functions of the C library need an optimizer, and conflict with the sanitizers.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    set(is_optimized $<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>)
    target_compile_options(ostra_compile_options INTERFACE
        $<${is_optimized}:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()
