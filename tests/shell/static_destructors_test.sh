#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks that threads can use the library while the process exits: neither the library nor the host platform may have
# objects that are destroyed then. The constants of the public headers are such objects, so the library must not use
# them: its sources are compiled without them.
# Usage: static_destructors_test.sh NM HOST_PLATFORM SOURCE_DIRECTORY COMPILER [FLAG ...]
. "$(dirname "$0")/lib.sh"

nm=$1
platform=$2
top=$3
shift 3

cp "$top"/include/*.h "$work"
sed -i -E '/^inline const std::/d; /^inline const DHTypeNames .*\{$/,/^\};$/d' "$work"/*.h
for source in "$top"/{common,protocol,json,bridge,dfx}/*.cpp; do
    "$@" -std=c++17 -I"$work" -I"$top/common" -I"$top/platform/host/include" -S -o - "$source"
done >"$work/library.s"
"$nm" -D -u "$platform" >"$work/platform.symbols"
[ -s "$work/platform.symbols" ] || fail "no symbols in $platform"
if grep atexit "$work"/library.s "$work"/platform.symbols; then
    fail "an object is destroyed at exit"
fi
echo "no object is destroyed at exit"
