#!/usr/bin/env bash
# Installs what the tests need, builds, and runs every test under a virtual display. Arguments go to ctest.
# PRESET chooses the build: release (the default), debug, asan or coverage.
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh
preset=${PRESET:-release}

tools/install-missing "${build_packages[@]}" "${run_packages[@]}" "${browser_packages[@]}" "${test_packages[@]}"
# Under the sanitizers GCC 12 takes the standard library's own variables for uninitialised: warnings stay warnings there.
errors=OFF
if [ -n "${CI:-}" ] && [ "$preset" != asan ]; then errors=ON; fi
cmake --preset "$preset" -DKLV_TESTS=ON -DCMAKE_COMPILE_WARNING_AS_ERROR="$errors"
cmake --build --preset "$preset" --parallel "$(nproc)"
xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24 -noreset" ctest --preset "$preset" \
    --parallel "$(nproc)" "$@"
