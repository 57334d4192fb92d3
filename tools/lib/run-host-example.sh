#!/usr/bin/env bash
# Installs a Windows build of kticore into a staging tree, builds the demo host
# against it with find_package, as an application would, and runs it under
# Wine. Usage: run-host-example.sh WINDOWS_BUILD_DIR
set -euo pipefail
. "$(dirname "$0")/common.sh"

build_dir=$(cd "$1" && pwd)
work="$build_dir/host-example"
kt_wine_environment "$build_dir"

cmake --install "$build_dir" --prefix "$work/stage" >/dev/null
cmake -S "$KT_ROOT/examples/demo" -B "$work/build" \
    -DCMAKE_TOOLCHAIN_FILE="$KT_ROOT/cmake/toolchains/mingw-w64-x86_64-posix.cmake" \
    -DCMAKE_PREFIX_PATH="$work/stage" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$work/build" >/dev/null
"$KT_ROOT/tools/lib/wine-run" "$work/build/kticore_demo.exe"
