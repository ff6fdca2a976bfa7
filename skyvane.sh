#!/bin/sh
# Set-up and entry point for a fresh Debian 12 machine:
#   ./skyvane.sh run           install what is missing, build, open the desktop program (the
#                              headless scanner until Ctrl-C when there is no display)
#   ./skyvane.sh run CAPTURE   install what is missing, build, decode a capture file
#   ./skyvane.sh test          install what is missing, build with sanitizers, fuzz briefly, run the tests
#   ./skyvane.sh bench         build optimised and run the benchmarks
# Every step is skipped when nothing changed, so repeated calls are fast.
set -eu

ROOT=$(cd "$(dirname "$0")" && pwd)
JOBS=$(nproc 2>/dev/null || echo 2)

PACKAGES="build-essential cmake ninja-build pkg-config clang libclang-rt-14-dev
qt6-base-dev libsqlite3-dev libicu-dev libplist-dev libpcap-dev zlib1g-dev
libnl-3-dev libnl-genl-3-dev libavahi-client-dev ieee-data
libgtest-dev libgmock-dev libbenchmark-dev tshark dbus-daemon dbus-bin
desktop-file-utils appstream librsvg2-bin help2man
libcanberra-dev libcanberra-pulse sound-theme-freedesktop"

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

install_packages() {
    missing=""
    for p in $PACKAGES; do
        status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
        case "$status" in
            *" installed") ;;
            *) missing="$missing $p" ;;
        esac
    done
    [ -z "$missing" ] && return 0
    echo "Installing Debian packages:$missing"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -q
    # shellcheck disable=SC2086
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing
}

# configure DIR [cmake options...]: configure once, then let ninja re-run cmake when needed.
configure() {
    dir=$1; shift
    if [ ! -f "$dir/build.ninja" ]; then
        # ccache, where someone installed it, makes rebuilding a fresh checkout quick.
        launcher=""
        if command -v ccache >/dev/null 2>&1; then
            launcher="-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache"
        fi
        # shellcheck disable=SC2086
        cmake -S "$ROOT" -B "$dir" -G Ninja $launcher "$@"
    fi
}

build_release() {
    configure "$ROOT/build/release" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSKYVANE_TESTS=OFF
    cmake --build "$ROOT/build/release" -j "$JOBS"
}

build_tests() {
    configure "$ROOT/build/test" -DCMAKE_BUILD_TYPE=Debug -DSKYVANE_SANITIZE=ON -DSKYVANE_WERROR=ON -DSKYVANE_BENCH=OFF
    cmake --build "$ROOT/build/test" -j "$JOBS"
}

build_fuzzers() {
    configure "$ROOT/build/fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
        -DSKYVANE_FUZZ=ON -DSKYVANE_TESTS=OFF -DSKYVANE_BENCH=OFF
    cmake --build "$ROOT/build/fuzz" -j "$JOBS"
}

run_fuzzers() {
    seconds=${FUZZ_SECONDS:-60}
    for target in "$ROOT"/build/fuzz/fuzz/fuzz_*; do
        [ -f "$target" ] && [ -x "$target" ] || continue
        name=$(basename "$target")
        corpus="$ROOT/build/fuzz/corpus/$name"
        mkdir -p "$corpus"
        echo "Fuzzing $name for ${seconds}s"
        "$target" -max_total_time="$seconds" -print_final_stats=0 "$corpus" "$ROOT/fuzz/seeds/$name" \
            >"$ROOT/build/fuzz/$name.log" 2>&1 || { tail -n 60 "$ROOT/build/fuzz/$name.log"; exit 1; }
        tail -n 1 "$ROOT/build/fuzz/$name.log"
    done
}

cmd=${1:-}
case "$cmd" in
    run)
        install_packages
        build_release
        [ $# -lt 2 ] || exec "$ROOT/build/release/app/cli/skyvane-cli" decode "$2"
        # The first Wi-Fi interface, or the simulated environment without one: in a window when
        # there is a display, else the same scanner on the terminal.
        if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
            exec "$ROOT/build/release/app/cli/skyvane"
        fi
        echo "No display (DISPLAY and WAYLAND_DISPLAY are unset): running the headless scanner instead." >&2
        exec "$ROOT/build/release/app/cli/skyvane-cli" scan
        ;;
    test)
        install_packages
        build_tests
        build_fuzzers
        run_fuzzers
        cd "$ROOT/build/test"
        ctest --output-on-failure -j "$JOBS" --timeout 600
        ;;
    bench)
        install_packages
        configure "$ROOT/build/bench" -DCMAKE_BUILD_TYPE=Release -DSKYVANE_TESTS=OFF
        cmake --build "$ROOT/build/bench" -j "$JOBS"
        bash "$ROOT/bench/decode_vs_tshark.sh" "$ROOT/build/bench/app/cli/skyvane-cli"
        for b in "$ROOT"/build/bench/bench/bench_*; do if [ -f "$b" ] && [ -x "$b" ]; then "$b"; fi; done
        ;;
    *)
        echo "usage: $0 run [CAPTURE_FILE] | test | bench" >&2
        exit 2
        ;;
esac
