#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs a build to an empty prefix, moves it, and builds and runs two outside projects against it: the first program
# and CMakeLists.txt of README.md through find_package, and the plain names in C through pkg-config. Takes from the
# environment what the build itself uses: CMAKE, CC, CXX, CFLAGS, CXXFLAGS, TOOLCHAIN_FILE and EMULATOR, the latter two
# empty unless cross-compiling.
# Usage: package_test.sh BUILD_FOLDER, or the prefix where it is installed already
set -euo pipefail

installed=$1
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

prefix=$installed
if [ -f "$installed/CMakeCache.txt" ]; then
    "$CMAKE" --install "$installed" --prefix "$folder/first" >/dev/null
    prefix=$folder/moved
    mv "$folder/first" "$prefix"
fi
for header in "$here"/../../include/*.h; do
    [ -f "$prefix/include/ostra_adapter_utils/${header##*/}" ] || { echo "not installed: ${header##*/}"; exit 1; }
done
libraries=$(dirname "$(find "$prefix/lib" -name libostra_adapter_utils.so)")
pages=$prefix/share/doc/ostra_adapter_utils
for page in LICENSE README.md CHANGELOG.md docs/wire-formats.md; do
    [ -f "$pages/$page" ] || { echo "not installed: $page"; exit 1; }
done
version=$(sed -n 's/^#define OSTRA_VERSION "\(.*\)"$/\1/p' "$here/../../include/ostra_version.h")
interface=${version%%.*} # while it is 0, each minor version may change the interface
[ "${interface:?}" != 0 ] || interface=${version%.*}
[ -L "$libraries/libostra_adapter_utils.so.$interface" ] || { echo "no library is called after $interface"; exit 1; }

mkdir "$folder/outside"
sed -n '/^```cmake$/,/^```$/{/^```/!p;}' "$here/../../README.md" >"$folder/outside/CMakeLists.txt"
sed -n '/^## A first program/,/^## /{/^```cpp$/,/^```$/{/^```/!p;}}' "$here/../../README.md" >"$folder/outside/first_frame.cpp"
diff -B <(sed -n '/^#include/,$p' "$here/../../examples/first_frame.cpp") "$folder/outside/first_frame.cpp" ||
    { echo "README.md does not show examples/first_frame.cpp"; exit 1; }
"$CMAKE" -G Ninja -S "$folder/outside" -B "$folder/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN_FILE" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_CXX_FLAGS="$CXXFLAGS -Wall -Wextra -Werror" >"$folder/log" ||
    { cat "$folder/log"; exit 1; }
"$CMAKE" --build "$folder/cmake" >"$folder/log" || { cat "$folder/log"; exit 1; }
printed=$($EMULATOR "$folder/cmake/first_program")
promised=$(sed -n 's/^ *\/\/ Prints: //p' "$folder/outside/first_frame.cpp")
[ "$printed" = "${promised:?}" ] || { echo "README.md promises $promised, not $printed"; exit 1; }

flags=$(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --cflags --libs ostra_adapter_utils)
# The program itself needs only the one library, which must find the other beside it. The flags are words to be split.
# shellcheck disable=SC2086
"$CC" $CFLAGS -std=c11 -Wall -Wextra -Werror -x c "$here/../library/c_interface.c" - \
    -Wl,--as-needed $flags -Wl,--enable-new-dtags,-rpath,"$libraries" -o "$folder/c_interface" <<'C'
#include <stdio.h>
const char *CallFromC(void);
int main(void)
{
    const char *failure = CallFromC();
    puts(failure ? failure : "the C entry points work");
    return failure != NULL;
}
C
OSTRA_HOST_LOG_LEVEL=off $EMULATOR "$folder/c_interface"
