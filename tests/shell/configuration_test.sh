#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Configures the project in the ways that other projects and packagers do, and builds nothing: it has a build type when
# none is asked for, refuses to be static, names fixed folders in its pkg-config file, refuses a header of another
# version, and can be a part of a project that installs and exports what links to it. Takes CMAKE, CC and CXX from the
# environment. Usage: configuration_test.sh SOURCE_FOLDER
set -euo pipefail

source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failed=0

complain() {
    echo "$*"
    failed=1
}

# configure NAME SOURCE OPTION ...: leaves the log in NAME.log
configure() {
    local name=$1 from=$2
    shift 2
    "$CMAKE" -G Ninja -S "$from" -B "$folder/$name" -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
        -DBUILD_TESTING=OFF -DOSTRA_BUILD_EXAMPLES=OFF -DOSTRA_BUILD_TOOLS=OFF "$@" >"$folder/$name.log" 2>&1
}

configure fixed "$source" -DCMAKE_INSTALL_LIBDIR=/fixed/libraries -DCMAKE_INSTALL_INCLUDEDIR=/fixed/headers ||
    complain "fixed folders: $(cat "$folder/fixed.log")"
grep -q '^CMAKE_BUILD_TYPE:STRING=RelWithDebInfo$' "$folder/fixed/CMakeCache.txt" || complain "there is no build type"
flags=$(PKG_CONFIG_PATH=$folder/fixed pkg-config --cflags --libs ostra_adapter_utils)
for flag in -I/fixed/headers/ostra_adapter_utils -I/fixed/headers/ostra_adapter_utils/platform -L/fixed/libraries; do
    [[ " $flags " == *" $flag "* ]] || complain "pkg-config says $flags, without $flag"
done

! configure static "$source" -DBUILD_SHARED_LIBS=OFF || complain "a static library is not refused"
grep -q 'shared library only' "$folder/static.log" || complain "no reason why it cannot be static"

mkdir "$folder/newer"
cp -r "$source"/{CMakeLists.txt,cmake,include} "$folder/newer"
sed -i 's/VERSION 0\.[0-9]*\.[0-9]* LANG/VERSION 0.99.0 LANG/' "$folder/newer/CMakeLists.txt"
! configure newer-build "$folder/newer" || complain "a header of an older version is not refused"
grep -q 'ostra_version.h says otherwise' "$folder/newer-build.log" || complain "no word of the header's version"

mkdir "$folder/parent"
ln -s "$source" "$folder/parent/adapter"
echo 'int main() { return 0; }' >"$folder/parent/host.cpp"
cat >"$folder/parent/CMakeLists.txt" <<'PARENT'
cmake_minimum_required(VERSION 3.16)
project(parent LANGUAGES C CXX)
add_subdirectory(adapter)
add_library(host SHARED host.cpp)
target_link_libraries(host PUBLIC ostra::adapter_utils ostra::host_platform)
install(TARGETS host EXPORT hostTargets LIBRARY DESTINATION lib)
install(EXPORT hostTargets DESTINATION lib/cmake/host)
PARENT
configure parent-build "$folder/parent" || complain "as a part of a project: $(cat "$folder/parent-build.log")"

[ $failed = 1 ] || echo "configured as others do"
exit $failed
