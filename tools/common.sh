# Shared by ./check, ./demo and ./bench: a known environment, the packages, and the build of one preset.
# Sourced, never run. The caller has set `top` to the folder of the checkout.

# One environment for everybody: the system's tools, the system's Python, no locale of the caller's.
export PATH=/usr/bin:/bin:/usr/sbin:/sbin
for name in $(compgen -e | grep -E '^(PYTHON|PYENV|CONDA|VIRTUAL_ENV|CMAKE_|CTEST_|GTEST_)' || true); do
    unset "$name"
done
unset LD_LIBRARY_PATH LD_PRELOAD CC CXX CFLAGS CXXFLAGS LDFLAGS
export LC_ALL=C.UTF-8
export CTEST_COLOR_OUTPUT=OFF

build_packages=(
    build-essential g++ cmake ninja-build ccache pkg-config git
    libxerces-c-dev python3 python3-dev
    libcli11-dev libfmt-dev pybind11-dev nlohmann-json3-dev
    libcairo2-dev libpango1.0-dev libpng-dev libglib2.0-dev libedit-dev
)
check_packages=(
    clang-14 lld-14 clang-format-14 llvm-14 libclang-rt-14-dev
    libgtest-dev libgmock-dev groff-base doxygen
    dpkg-dev fakeroot file lintian
)
bench_packages=(libbenchmark-dev)

say() { printf '%s\n' "$*"; }
say_error() { printf '%s\n' "$*" >&2; }

# Installs those of the named packages that are missing. The package lists are fetched only when something is.
install_packages() {
    local missing=() package
    for package in "$@"; do
        if [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | tr -d ' ')" != ii ]; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say_error "These packages are missing, and there is no sudo to install them: ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# configure PRESET [CMAKE ARGUMENT...]: quiet when it works, the whole output when it does not.
configure() {
    local preset=$1 log
    shift
    mkdir -p "$top/build"
    log="$top/build/configure-$preset.log"
    if ! (cd "$top" && cmake --preset "$preset" "$@") >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# build PRESET [TARGET...]: the same, for the build.
build() {
    local preset=$1 log
    shift
    log="$top/build/build-$preset.log"
    if ! (cd "$top" && cmake --build --preset "$preset" ${1:+--target "$@"}) >"$log" 2>&1; then
        grep -vE '^\[[0-9]+/[0-9]+\]' "$log" >&2 || true
        return 1
    fi
}
