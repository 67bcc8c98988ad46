#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs a build to an empty prefix, moves it, and builds and runs two external projects against it: the first program
# and CMakeLists.txt of README.md with find_package, and the C interface with pkg-config.
# Usage: package_test.sh BUILD_DIRECTORY, or package_test.sh PREFIX for an installed package. Reads CMAKE, CC, CXX,
# CFLAGS, CXXFLAGS, TOOLCHAIN_FILE and EMULATOR from the environment; the last two are empty unless cross-compiling.
. "$(dirname "$0")/lib.sh"

installed=$1
top=$(cd "$(dirname "$0")/../.." && pwd)

prefix=$installed
if [ -f "$installed/CMakeCache.txt" ]; then
    "$CMAKE" --install "$installed" --prefix "$work/first" >/dev/null
    prefix=$work/moved
    mv "$work/first" "$prefix"
fi
for header in "$top"/include/*.h; do
    [ -f "$prefix/include/ostra_adapter_utils/${header##*/}" ] || fail "not installed: ${header##*/}"
done
libraries=$(dirname "$(find "$prefix/lib" -name libostra_adapter_utils.so)")
version=$(sed -n 's/^#define OSTRA_VERSION "\(.*\)"$/\1/p' "$top/include/ostra_version.h")
interface=${version%%.*} # while this is 0, each minor version may change the interface
[ "${interface:?}" != 0 ] || interface=${version%.*}
[ -L "$libraries/libostra_adapter_utils.so.$interface" ] || fail "missing: libostra_adapter_utils.so.$interface"

# The documentation and the files that it links to. A Debian package uses its own name for the directory.
pages=$(dirname "$(find "$prefix"/share/doc/*ostra* -name CHANGELOG.md)")
links=0
while IFS=: read -r page link; do
    target=$(dirname "$page")/${link%%#*}
    [ -e "$target" ] || fail "$page links to $link, which is not installed"
    links=$((links + 1))
done < <(find "$pages" -name '*.md' -exec grep -oHP '\]\(\K(?!#|[a-z]+:)[^)]+' {} +)
[ -f "$pages/docs/wire-formats.md" ] && [ $links -gt 0 ] || fail "the documentation is not installed"

mkdir "$work/outside"
sed -n '/^```cmake$/,/^```$/{/^```/!p;}' "$top/README.md" >"$work/outside/CMakeLists.txt"
sed -n '/^#include <cstdio>$/,/^```$/{/^```/!p;}' "$top/README.md" >"$work/outside/first_frame.cpp"
diff -B <(sed -n '/^#include/,$p' "$top/examples/first_frame.cpp") "$work/outside/first_frame.cpp" ||
    fail "README.md does not show examples/first_frame.cpp"
"$CMAKE" -G Ninja -S "$work/outside" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN_FILE" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_CXX_FLAGS="$CXXFLAGS -Wall -Wextra -Werror" >"$work/log" || fail "$(cat "$work/log")"
"$CMAKE" --build "$work/cmake" >"$work/log" || fail "$(cat "$work/log")"
printed=$($EMULATOR "$work/cmake/first_program")
expected=$(sed -n 's/^ *\/\/ Prints: //p' "$work/outside/first_frame.cpp")
[ "$printed" = "${expected:?}" ] || fail "the first program printed \"$printed\" instead of \"$expected\""

flags=$(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --cflags --libs ostra_adapter_utils)
# The program needs one library only, which must find the other one. The flags must be split into words.
# shellcheck disable=SC2086
"$CC" $CFLAGS -std=c11 -Wall -Wextra -Werror -x c "$top/tests/library/c_interface.c" - \
    -Wl,--as-needed $flags -Wl,--enable-new-dtags,-rpath,"$libraries" -o "$work/c_interface" <<'C'
#include <stdio.h>
int CallFromC(void);
int main(void)
{
    const int isSuccessful = CallFromC();
    puts(isSuccessful ? "the C entry points work" : "a C entry point failed");
    return isSuccessful ? 0 : 1;
}
C
OSTRA_HOST_LOG_LEVEL=off $EMULATOR "$work/c_interface"
