#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Configures the project as other projects and packagers do, without building it: there is a default build type, a
# static build is rejected, the pkg-config file keeps absolute directories, the version comes from ostra_version.h, in
# which string and number agree, and a parent project can install and export targets that link to the library.
# Usage: configuration_test.sh SOURCE_DIRECTORY, with CMAKE, CC and CXX in the environment
. "$(dirname "$0")/lib.sh"

source=$1

# configure NAME SOURCE [OPTION ...]: configures in $work/NAME, with the log in NAME.log
configure() {
    local name=$1 from=$2
    shift 2
    "$CMAKE" -G Ninja -S "$from" -B "$work/$name" -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
        -DBUILD_TESTING=OFF -DOSTRA_BUILD_EXAMPLES=OFF -DOSTRA_BUILD_TOOLS=OFF "$@" >"$work/$name.log" 2>&1
}

configure absolute "$source" -DCMAKE_INSTALL_LIBDIR=/absolute/libraries -DCMAKE_INSTALL_INCLUDEDIR=/absolute/headers ||
    fail "absolute directories: $(cat "$work/absolute.log")"
grep -q '^CMAKE_BUILD_TYPE:STRING=RelWithDebInfo$' "$work/absolute/CMakeCache.txt" || fail "no default build type"
flags=$(PKG_CONFIG_PATH=$work/absolute pkg-config --cflags --libs ostra_adapter_utils)
for flag in -I/absolute/headers/ostra_adapter_utils -I/absolute/headers/ostra_adapter_utils/platform -L/absolute/libraries; do
    [[ " $flags " == *" $flag "* ]] || fail "pkg-config prints $flags, without $flag"
done

! configure static "$source" -DBUILD_SHARED_LIBS=OFF || fail "BUILD_SHARED_LIBS=OFF is accepted"
grep -q 'shared library only' "$work/static.log" || fail "the error message for a static build does not explain the reason"

number=$(($("$CC" -E -P -include "$source/include/ostra_version.h" - <<<OSTRA_VERSION_NUMBER)))
grep -q "OSTRA_VERSION \"$((number / 10000)).$((number / 100 % 100)).$((number % 100))\"" "$source/include/ostra_version.h" ||
    fail "OSTRA_VERSION_NUMBER is $number"

mkdir "$work/newer"
ln -s "$source"/* "$work/newer"
rm "$work/newer/include"
cp -r "$source/include" "$work/newer"
sed -i 's/\(#define OSTRA_VERSION \)".*"/\1"1.99.7"/' "$work/newer/include/ostra_version.h"
configure newer-build "$work/newer" || fail "another version in the header: $(cat "$work/newer-build.log")"
grep -q '^CMAKE_PROJECT_VERSION:STATIC=1.99.7$' "$work/newer-build/CMakeCache.txt" &&
    grep -q 'libostra_adapter_utils.so.1 ' "$work/newer-build/build.ninja" ||
    fail "the project's version is not that of ostra_version.h"

mkdir "$work/parent"
ln -s "$source" "$work/parent/adapter"
echo 'int main() { return 0; }' >"$work/parent/host.cpp"
cat >"$work/parent/CMakeLists.txt" <<'PARENT'
cmake_minimum_required(VERSION 3.16)
project(parent LANGUAGES C CXX)
add_subdirectory(adapter)
add_library(host SHARED host.cpp)
target_link_libraries(host PUBLIC ostra::adapter_utils ostra::host_platform)
install(TARGETS host EXPORT hostTargets LIBRARY DESTINATION lib)
install(EXPORT hostTargets DESTINATION lib/cmake/host)
PARENT
configure parent-build "$work/parent" || fail "in a parent project: $(cat "$work/parent-build.log")"

echo "all configurations work"
