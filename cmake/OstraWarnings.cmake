# The warnings that every target of the project compiles without.
add_library(ostra_warnings INTERFACE)
target_compile_options(ostra_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow)
