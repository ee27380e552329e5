# Sourced by ./build: the sources of Debian's packages, under $cache/src. The lists of sources are kept apart, so that the machine's own
# stay as they are.

source_options=()

prepare_sources() {
    local file apt=$cache/apt
    mkdir -p "$apt/parts" "$apt/lists/partial" "$cache/src"
    # Where packages come from, sources come from too.
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -f "$file" ] && grep -q '^Suites:.* *bookworm' "$file" && sed 's/^Types:.*/Types: deb-src/' "$file" >"$apt/parts/${file##*/}"
    done
    cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null | sed -n 's/^deb \(.* bookworm[^ ]* .*main\)/deb-src \1/p' \
        >"$apt/parts/debian.list" || true
    source_options=(-qq -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$apt/parts" -o Dir::State::Lists="$apt/lists"
        -o APT::Sandbox::User=root)
    # One of the archives may be out of reach; what is missing shows when it is asked for.
    apt-get update "${source_options[@]}" || say "Not every list of sources could be read"
}

# source_of PACKAGE: unpacked and patched as $cache/src/PACKAGE. The newest version whose files are all there.
source_of() {
    local package=$1 version
    [ -d "$cache/src/$package" ] && return
    say "Source of $package"
    for version in $(apt-cache "${source_options[@]}" showsrc --only-source "$package" | sed -n 's/^Version: //p' | sort -rVu); do
        rm -f "$cache/src/$package"_* # of a version that was not all there
        (cd "$cache/src" && apt-get source "${source_options[@]}" --download-only "$package=$version") || continue
        (cd "$cache/src" && dpkg-source --no-check -x "$package"_*.dsc "$package.new" >/dev/null && rm -f "$package"_*) \
            || die "Unpacking $package failed."
        mv "$cache/src/$package.new" "$cache/src/$package"
        return
    done
    return 1
}
