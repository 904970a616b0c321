# shellcheck shell=bash disable=SC2034 # its variables are for those that source it
# What ./tarn, ./test and ./bench share: install what the machine lacks, build what is missing. To be sourced.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages=(cmake ninja-build ccache g++ libc6-dev nlohmann-json3-dev libcrypt-dev
                openjdk-17-jdk-headless libpicocli-java libgoogle-gson-java liblog4j2-java graphviz
                node-d3)
test_packages=(googletest clang libclang-rt-14-dev g++-sparc64-linux-gnu qemu-user python3
               libhbaapi2 libhbaapi-dev dpkg-dev lintian clang-format clang-tidy shellcheck
               chromium chromium-driver python3-selenium)
bench_packages=(libbenchmark-dev)

# What a virtual machine that runs the agent is to find, once it is built.
class_path=$root/build/release/tarn.jar
for jar in picocli gson log4j-1.2-api log4j-api log4j-core; do
    class_path+=:/usr/share/java/$jar.jar
done

say() {
    printf '%s\n' "$*" >&2
}

# Runs a long step quietly; when it fails, shows what it said and gives up.
run_quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        say "failed: $*"
        exit 2
    fi
    rm -f "$log"
}

install_packages() {
    local missing=() package as_root=()
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say "these packages are missing, and installing them takes root or sudo: ${missing[*]}"
            exit 2
        fi
        as_root=(sudo)
    fi
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    run_quietly "${as_root[@]}" apt-get update
    run_quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
        "${missing[@]}"
}

# build PRESET [CMAKE-OPTION...] -- TARGET...: says something only when there is something to build.
build() {
    local preset=$1 options=() tree
    shift
    while [ "$1" != -- ]; do
        options+=("$1")
        shift
    done
    shift
    tree=$root/build/$preset
    if [ ! -f "$tree/build.ninja" ] || [ ${#options[@]} -gt 0 ]; then
        run_quietly cmake -S "$root" --preset "$preset" "${options[@]}"
    fi
    if ! ninja -C "$tree" -n "$@" 2>/dev/null | grep -q 'no work to do'; then
        say "Building $preset: $*"
        run_quietly ninja -C "$tree" "$@"
    fi
}

# Prints where promtool is. It comes in a package whose installation would start a server, so it is only unpacked.
promtool() {
    local place=$root/build/promtool as_root=()
    if [ ! -x "$place/usr/bin/promtool" ]; then
        rm -rf "$place"
        mkdir -p "$place"
        [ "$(id -u)" -eq 0 ] || as_root=(sudo)
        apt-cache show prometheus >/dev/null 2>&1 || run_quietly "${as_root[@]}" apt-get update
        # Whoever runs the tests owns the folder, not apt's own user.
        (cd "$place" && run_quietly apt-get download -o APT::Sandbox::User=root prometheus)
        run_quietly dpkg -x "$place"/prometheus_*.deb "$place"
        rm "$place"/prometheus_*.deb
    fi
    printf '%s\n' "$place/usr/bin/promtool"
}
