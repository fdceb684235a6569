#!/usr/bin/env bash
# The package as a host team takes it: install the build into a scratch prefix, build the
# out-of-tree consumer (C and C++) against it with the same toolchain, and run both programs.
#   package_test.sh WINE_RUN BUILD_DIR SOURCE_DIR TOOLCHAIN_FILE
set -euo pipefail
wine_run=$1 build=$2 source=$3 toolchain=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
test -f "$work/prefix/lib/cmake/VelHal/VelHalConfig.cmake"
test -f "$work/prefix/include/velhal/hal/hal_api.h"
if [[ -e $work/prefix/include/velhal/hal/class_dispatch.h ]]; then
  echo "an internal header was installed" >&2
  exit 1
fi

cmake -S "$source/tests/consumer" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/build" >/dev/null

c_output=$("$wine_run" "$work/build/consumer_c.exe" 2>/dev/null | tr -d '\r')
cpp_output=$("$wine_run" "$work/build/consumer_cpp.exe" 2>/dev/null | tr -d '\r')
echo "$c_output"
echo "$cpp_output"
[[ $c_output == consumer_c:* && $cpp_output == consumer_cpp:* ]]
