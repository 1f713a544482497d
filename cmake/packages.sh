# What ./run, ./test and ./bench share: the packages that they need, and quiet builds. Read by bash.

# What builds the program.
kw_build_packages=(
    cmake ninja-build g++ pkg-config
    libexpat1-dev libhwy-dev libcli11-dev nlohmann-json3-dev
    qt6-base-dev libqt6opengl6-dev qt6-svg-dev qt6-tools-dev qt6-l10n-tools
    libavformat-dev libavcodec-dev libavutil-dev libswscale-dev # movies
    libgl1-mesa-dev libglu1-mesa-dev                            # the image viewer
    qt6-image-formats-plugins qt6-translations-l10n fonts-dejavu-core # for the views, when they run
)
# What the tests and the benchmarks need besides.
kw_test_packages=(
    libgtest-dev libgmock-dev libbenchmark-dev libplist-dev python3 locales
    ffmpeg                     # makes the movies of the tests
    xvfb xauth libgl1-mesa-dri # OpenGL with no screen
)

# What ./bench needs, and the libraries that it measures beside ours.
kw_bench_packages=(libbenchmark-dev python3 valgrind)
kw_peer_packages=(
    libgsl-dev libboost-math-dev python3-numpy python3-scipy     # curves
    libmuparser-dev libfparser-dev libkseexpr-dev libluajit-5.1-dev # expressions
    libqcustomplot-dev libqcustomplot2.1-qt6                     # drawing
    libplist-dev                                                 # archives
)

# kw_take_no_words TEXT WORD...: shows the text for --help, and refuses any other word.
kw_take_no_words() {
    local text=$1
    shift
    if [ $# -eq 0 ]; then
        return
    fi
    case $1 in
    -h | --help)
        echo "$text"
        exit 0
        ;;
    esac
    echo "$0: \"$1\" is not understood; there is only --help" >&2
    exit 2
}

# Prints those of the packages that are missing, one a line.
kw_missing_packages() {
    local package state
    for package in "$@"; do
        state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) || state=none
        [ "$state" = installed ] || echo "$package"
    done
}

# kw_install_packages PACKAGE...: installs those that are missing, or says what to install and goes on
# with what is there.
kw_install_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        echo "This system has no apt-get. Please install what Debian calls:" >&2
        echo "    $*" >&2
        return
    fi
    local missing
    mapfile -t missing < <(kw_missing_packages "$@")
    [ ${#missing[@]} -eq 0 ] && return

    local root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Please install, as root: apt-get install ${missing[*]}" >&2
            return
        fi
        root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    local apt=("${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q)
    # Lists that cannot be fetched need not matter to these packages.
    kw_quietly "${apt[@]}" update || true
    if ! kw_quietly "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; then
        echo "That did not work. Please install: ${missing[*]}" >&2
    fi
}

# Runs a command and shows what it printed only if it fails.
kw_quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 || status=$?
    [ $status -eq 0 ] || cat "$log" >&2
    rm -f "$log"
    return $status
}

# kw_build PRESET TARGET...: configures if need be and builds, in build/PRESET.
kw_build() {
    local preset=$1 tree=build/$1
    shift
    if ! mkdir -p "$tree" || [ ! -w "$tree" ]; then
        echo "$PWD/$tree cannot be written; it may belong to another user" >&2
        return 3
    fi
    # Ninja configures again by itself when a CMakeLists.txt changes, but does not know the presets.
    if [ ! -e "$tree/build.ninja" ] || [ CMakePresets.json -nt "$tree/build.ninja" ]; then
        kw_quietly cmake --preset "$preset" || return
    fi
    local build=(cmake --build "$tree" -j "$(nproc 2>/dev/null || echo 2)" ${1:+--target "$@"})
    # On a terminal ninja keeps to one line, which says how far it is; when there is nothing to do it
    # would say so.
    if [ -t 1 ]; then
        if [[ $("${build[@]}" -- -n 2>/dev/null) != *"no work to do"* ]]; then
            "${build[@]}"
        fi
    else
        kw_quietly "${build[@]}" -- --quiet
    fi
}

# kw_test PRESET: runs the tests that kw_build built; shows those that fail, and ctest's summary.
kw_test() {
    local jobs
    jobs=$(nproc 2>/dev/null || echo 2)
    if [ -t 1 ]; then
        ctest --preset "$1" -j "$jobs" --progress
    else
        ctest --preset "$1" -j "$jobs" |
            grep --line-buffered -Ev '^ +Start +[0-9]+: | Passed +[0-9.]+ sec$'
    fi
}
