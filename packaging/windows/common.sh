# Sourced by ./build and ./test: where everything lies. Expects `root`, the checkout's folder.
. "$root/packaging/build.sh"

cache=${KELVARA_WINDOWS_CACHE:-$HOME/.cache/kelvara-windows}
out=$root/out/windows

# prefixes PROCESSOR: where the libraries for it lie, as CMake takes them. Qt is used where it was built.
prefixes() { printf '%s;%s' "$cache/$1/build/qt" "$cache/$1"; }
# programs PROCESSOR: the folder that our own are built in.
programs() { printf '%s' "$root/build/windows-$1"; }
