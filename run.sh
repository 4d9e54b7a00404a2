#!/usr/bin/env bash
# Installs what is missing, builds the editor and starts it: in a window where there is a display, else in a web browser.
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh

tools/install-missing "${build_packages[@]}" "${run_packages[@]}"
[ -f build/CMakeCache.txt ] || cmake --preset release -DKLV_TESTS=OFF
cmake --build build --target klv --parallel "$(nproc)" | grep -v 'Built target' || [ "${PIPESTATUS[0]}" -eq 0 ]
cd build

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec ./klv
fi

# No display: GTK's own Broadway server shows the same window in a browser, to this machine alone.
../tools/install-missing "${browser_packages[@]}"
display=5
while (exec 3<>"/dev/tcp/127.0.0.1/$((8080 + display))") 2>/dev/null; do display=$((display + 1)); done
port=$((8080 + display))
broadwayd --address=127.0.0.1 --port="$port" ":$display" >/dev/null 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
until (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do
    kill -0 "$server" 2>/dev/null || { echo "The Broadway server did not start." >&2; exit 1; }
    sleep 0.1
done
echo "The editor is at http://127.0.0.1:$port/"
GDK_BACKEND=broadway BROADWAY_DISPLAY=":$display" ./klv
