# Shell functions that demo.sh and test.sh share; to be sourced in the project's top folder.

say() { printf '%s\n' "$*"; }
step() { printf '\n== %s\n' "$*"; }
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }

# install_packages STEP...: installs the packages that packages.txt lists for these steps, those that are missing.
install_packages() {
    missing=
    for group in "$@"; do
        for package in $(sed -n "s/^$group //p" packages.txt); do
            state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
            [ "$state" = installed ] || missing="$missing $package"
        done
    done
    [ -n "$missing" ] || return 0
    step "Installing$missing"
    if [ "$(id -u)" = 0 ]; then
        as_root=
    else
        as_root=sudo
        command -v sudo >/dev/null || fail "installing packages needs root or sudo"
    fi
    log=$(mktemp)
    if ! { $as_root apt-get update && DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1; then
        cat "$log"
        fail "the packages could not be installed"
    fi
    rm -f "$log"
}

# build PRESET [TARGET...]: configures and builds; quiet unless something fails.
build() {
    preset=$1
    shift
    step "Building ($preset)"
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
    [ $# -eq 0 ] || set -- --target "$@"
    cmake --build --preset "$preset" "$@"
}
