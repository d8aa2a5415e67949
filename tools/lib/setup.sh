# shellcheck shell=bash disable=SC2034
# Shared by ./run, ./test, ./package, ./benchmark and the scripts in tools/: what must be installed, and how the program is built.
# To be sourced, with the top folder as working directory.

build_packages=(
    g++ cmake ninja-build
    qt6-base-dev qt6-base-dev-tools qt6-base-private-dev qt6-pdf-dev qt6-svg-dev qt6-translations-l10n
    python3 python3-markdown
    libfribidi-dev libharfbuzz-dev libjemalloc-dev libqpdf-dev libseccomp-dev pkgconf zlib1g-dev
    fonts-dejavu-core fonts-lato fonts-roboto-unhinted
    libgmock-dev libgtest-dev locales
)
# A virtual display, for the guided tour and the tests in the real window.
tour_packages=(xvfb openbox xdotool dbus-daemon at-spi2-core python3-gi imagemagick poppler-utils)
wayland_packages=(qt6-wayland)
# What checks the desktop entry and the metainfo.
check_packages=(desktop-file-utils appstream)
package_packages=(dpkg-dev file)
fuzz_packages=(clang libclang-rt-dev)
lint_packages=(clang-tidy)
# For the program that ./benchmark watches the screen with.
probe_packages=(libx11-dev libxtst-dev libxdamage-dev)

say() {
    printf '== %s\n' "$*"
}

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

as_root() {
    if [[ $(id -u) == 0 ]]; then
        "$@"
    else
        sudo "$@"
    fi
}

# Installs those of the given packages that are not there yet.
install_missing() {
    local package missing=()
    for package in "$@"; do
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0
    if [[ $(id -u) != 0 ]] && ! command -v sudo >/dev/null; then
        fail "These packages are missing, and only root can install them: ${missing[*]}"
    fi
    say "Installing ${missing[*]}"
    as_root apt-get update </dev/null
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --no-install-recommends "${missing[@]}" </dev/null
}

# build_preset PRESET [TARGET…]: all targets where none is named.
# Configures where that was not done yet; later changes to the build files are noticed by the build itself.
build_preset() {
    local preset=$1
    shift
    if [[ ! -f build/$preset/build.ninja ]]; then
        say "Configuring build/$preset"
        cmake --preset "$preset"
    fi
    say "Building build/$preset"
    cmake --build --preset "$preset" ${*:+--target "$@"}
}
