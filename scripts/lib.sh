# What the scripts share; sourced, never run. Everything said here goes to stderr: the output of
# scripts/run belongs to the program.
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")

# Objects that another checkout has compiled serve this one too, where ccache is installed.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1

# The one list of Debian 12 packages.
#   build: what preset release asks for (library, program, tests, benches), and the ffmpeg and vips
#          programs, which make the media of the tests and of the demonstration
#   check: what only the format check, clang-tidy and the fuzz targets ask for
packages_build=(
    g++ cmake ninja-build pkg-config ffmpeg
    libavformat-dev libavcodec-dev libavutil-dev libswresample-dev libswscale-dev
    libyuv-dev libpng-dev zlib1g-dev libcairo2-dev libvips-dev libgif-dev libpoppler-glib-dev
    libboost-dev libcli11-dev nlohmann-json3-dev libinih-dev libgsf-1-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    libjpeg-dev libtiff-dev libwebp-dev zlib1g-dev libvips-tools)
packages_check=(clang-14 libclang-rt-14-dev clang-tidy-14 clang-format-14 libffms2-dev)

say() {
    printf '== %s\n' "$*" >&2
}

fail() {
    printf '== %s\n' "$*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        fail "run as root, or install sudo: needed for: $*"
    fi
}

# Prints those of the packages named that are not installed, one a line.
missing_packages() {
    comm -23 <(printf '%s\n' "$@" | sort) \
        <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
            sed -n 's/^installed //p' | sort)
}

# Installs those of the packages named that are missing. Elsewhere than on Debian's family there is
# nothing to ask; CMake then names what it does not find.
ensure_packages() {
    command -v dpkg-query >/dev/null || return 0
    local missing
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    say "installing ${missing[*]}"
    as_root apt-get update -q >&2
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
}

# Ninja configures again by itself when a CMakeLists.txt changes, but knows nothing of the presets.
ensure_configured() {
    local preset=$1 stamp="$root/build/$1/.configured"
    [ -e "$stamp" ] && [ ! "$root/CMakePresets.json" -nt "$stamp" ] && return 0
    say "configuring preset $preset"
    (cd "$root" && cmake --preset "$preset") >&2
    touch "$stamp"
}

# build PRESET [TARGET]: brings TARGET (everything, when none is named) up to date; says nothing
# when it is.
build() {
    local preset=$1 target=${2:-all}
    ensure_configured "$preset"
    # Into a variable first: grep -q closing a pipe early would count as ninja's failure.
    local plan
    plan=$(ninja -C "$root/build/$preset" -n "$target")
    [[ $plan == *"no work to do"* ]] && return 0
    say "building preset $preset${2:+, $target}"
    (cd "$root" && cmake --build --preset "$preset" --target "$target" -j "$(nproc)") >&2
}
