# Shell functions that demo.sh and test.sh share; to be sourced in the project's top folder.

say() { printf '%s\n' "$*"; }
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }

# step TEXT: a step begins, and the one before has ended.
step() {
    end_step
    step_name=$*
    step_begin=$(date +%s)
    printf '\n== %s\n' "$*"
}

# end_step [REMARK]: adds the step, if one has begun, to the table of tell_steps.
step_name=
steps=
end_step() {
    [ -n "$step_name" ] || return 0
    seconds=$(($(date +%s) - step_begin))
    steps="$steps$(printf '%3d:%02d  %s' $((seconds / 60)) $((seconds % 60)) "$step_name${1:+: $1}")
"
    step_name=
}

# tell_steps: what each step has taken, in minutes and seconds, and all of them together.
first_begin=$(date +%s)
tell_steps() {
    end_step
    [ -n "$steps" ] || return 0
    seconds=$(($(date +%s) - first_begin))
    printf '\n== Time\n%s%3d:%02d  in all\n' "$steps" $((seconds / 60)) $((seconds % 60))
}

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

# install_for_panel: what the soft front panel is made and tested with, where it is to be had. Many machines have an npm
# that is not Debian's. Without npm the panel has no plot, without a browser its tests are skipped and say so.
install_for_panel() {
    command -v npm >/dev/null || (install_packages npm) || say "going on without npm"
    [ "${1-}" != test ] || (install_packages browser) || say "going on without a browser"
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
