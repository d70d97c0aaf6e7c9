#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Tessal's two entry points: `./run.sh editor [FILE]` and `./run.sh test`.
# Each installs the Debian packages that are missing, configures, builds incrementally,
# then opens the editor or runs every test through ctest.
# Packages are installed without their recommendations, so whatever is needed at run time is
# named here even when another package only recommends it: fonts-urw-base35 (the WMF player's
# fonts) and llvm-14 (llvm-symbolizer, which turns sanitizer reports into source lines).
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(cmake g++ make pkg-config qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-tools-dev
          libqt6opengl6-dev libgl-dev libboost-dev libgtest-dev libgmock-dev libbenchmark-dev
          libemf2svg-dev libwmf-dev libuemf-dev libdxflib-dev python3-ezdxf fonts-dejavu-core
          fonts-urw-base35 qt6-qpa-plugins xvfb xdotool xauth clang-14 libclang-rt-14-dev llvm-14)
BUILD_DIR=${TESSAL_BUILD_DIR:-build}

install_missing() {
    local missing=()
    for p in "${PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "run.sh: installing ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

build() {
    if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
        cmake -S . -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTESSAL_BUILD_TESTS=ON \
              -DTESSAL_BUILD_DESIGNER=ON
    fi
    cmake --build "$BUILD_DIR" --parallel "$(nproc)"
}

cmd=${1:-}
case "$cmd" in
editor)
    shift
    install_missing
    build
    if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
        export QT_QPA_PLATFORM=offscreen
    fi
    exec "$BUILD_DIR/apps/editor/tessal-editor" "$@"
    ;;
test)
    install_missing
    build
    export QT_QPA_PLATFORM=offscreen
    cd "$BUILD_DIR"
    exec ctest --output-on-failure --parallel "$(nproc)" --timeout 600
    ;;
*)
    echo "usage: ./run.sh editor [FILE] | ./run.sh test" >&2
    exit 2
    ;;
esac
