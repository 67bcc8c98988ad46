# SPDX-License-Identifier: Apache-2.0
#
# What every target of the project compiles and links with: all of these warnings; calls into other shared libraries
# without a stub in between, which matters where an operation is little more than such calls; and what makes a fault in
# the code hard to exploit.
include(CheckCXXCompilerFlag)

add_library(ostra_compile_options INTERFACE)
target_compile_options(ostra_compile_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -fno-plt -fstack-protector-strong)
target_link_options(ostra_compile_options INTERFACE LINKER:-z,relro,-z,now)

# Each processor has a flag of its own for the protection of jumps and returns, if any. Clang merely warns of that of
# another one.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "OSTRA_TAKES${flag}" takes_flag)
    check_cxx_compiler_flag(${flag} ${takes_flag})
    if(${takes_flag})
        target_compile_options(ostra_compile_options INTERFACE ${flag})
    endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

# The checked functions of the C library need an optimiser, and stand in the way of the sanitizers' own.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    set(is_optimised $<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>)
    target_compile_options(ostra_compile_options INTERFACE
        $<${is_optimised}:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()
