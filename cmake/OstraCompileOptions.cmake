# What every target of the project compiles with: all of these warnings, and calls into other shared libraries without
# a stub in between, which matters where an operation is little more than such calls.
add_library(ostra_compile_options INTERFACE)
target_compile_options(ostra_compile_options INTERFACE -Wall -Wextra -Wconversion -Wshadow -fno-plt)
