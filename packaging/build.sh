# Sourced by ./run and ./test: installs what is missing, configures and builds. Expects `root`, the checkout's folder.

packages="g++ cmake ninja-build pkg-config qt6-base-dev libsqlite3-dev libpq-dev unixodbc-dev libflatbuffers-dev flatbuffers-compiler liblz4-dev libxxhash-dev libboost-dev libssl-dev libargon2-dev nlohmann-json3-dev zlib1g-dev libxlsxwriter-dev libzint-dev libsecret-1-dev fonts-noto-cjk qt6-translations-l10n"
# What only the tests need.
test_packages="clang-format clang-tidy libgtest-dev libgmock-dev libqt6sql6-sqlite postgresql-15 postgresql-15-orafce odbc-postgresql libsqliteodbc poppler-utils unzip xvfb xdotool"
# What making packages needs, and trying them.
package_packages="dpkg-dev desktop-file-utils appstream lintian"
package_test_packages="debootstrap curl openssl systemd unzip"
# A Node.js from elsewhere brings its own npm, which excludes Debian's.
command -v npm >/dev/null || test_packages="$test_packages nodejs npm"

say() { printf '== %s\n' "$*"; }
die() { printf '%s\n' "$*" >&2; exit 1; }

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# install_missing PACKAGE...
install_missing() {
    local package missing=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} = 0 ] && return
    command -v apt-get >/dev/null || die "Missing packages: ${missing[*]}. They are named as in Debian 12; install them and start again."
    say "Installing ${missing[*]}"
    as_root apt-get update -qq || die "apt-get update failed: is the network reachable?"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null \
        || die "Installing ${missing[*]} failed."
}

# build PRESET [TARGET...]: without targets those of the preset. The programs end up in $root/build/PRESET/bin.
build() {
    local preset=$1
    shift
    say "Building (preset $preset)"
    cmake -S "$root" --preset "$preset" >"$root/build-configure.log" 2>&1 || { cat "$root/build-configure.log" >&2; die "Configuring failed."; }
    rm -f "$root/build-configure.log"
    (cd "$root" && cmake --build --preset "$preset" ${1:+--target "$@"}) || die "Building failed."
}
