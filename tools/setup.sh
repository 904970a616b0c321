# shellcheck shell=bash disable=SC2034 # its variables are for those that source it
# What ./tarn, ./test and ./bench share: install what the machine lacks, build what is missing. To be sourced.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages=(cmake ninja-build ccache g++ libc6-dev nlohmann-json3-dev libcrypt-dev
                openjdk-17-jdk-headless libpicocli-java libgoogle-gson-java liblog4j2-java graphviz
                node-d3 libxerial-sqlite-jdbc-java libpostgresql-jdbc-java)
test_packages=(googletest clang libclang-rt-14-dev g++-sparc64-linux-gnu qemu-user python3
               libhbaapi2 libhbaapi-dev dpkg-dev lintian clang-format clang-tidy shellcheck pyflakes3 eslint
               librust-libc-dev golang-golang-x-sys-dev libjna-platform-java
               chromium chromium-driver python3-selenium sqlite3)
bench_packages=(libbenchmark-dev)

# What a virtual machine that runs the agent is to find, once it is built.
class_path=$root/build/release/tarn.jar
mapfile -t library_jars <"$root/tools/jars"
mapfile -t driver_jars <"$root/tools/drivers"
for jar in "${library_jars[@]}" "${driver_jars[@]}"; do
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

# locked FOLDER WHAT COMMAND...: runs it while no one else runs such a thing with that folder. Who has to wait says so.
locked() {
    local folder=$1 what=$2 lock
    shift 2
    exec {lock}<"$folder"
    if ! flock --nonblock "$lock"; then
        say "Waiting for another $what to end"
        flock "$lock"
    fi
    "$@"
    exec {lock}<&-
}

# Sets missing to those of the packages that are not installed.
find_missing() {
    local package
    missing=()
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
}

install_packages() {
    local missing
    find_missing "$@"
    [ ${#missing[@]} -eq 0 ] || locked /var/lib/dpkg installation install_missing "$@"
}

install_missing() {
    local as_root=()
    find_missing "$@" # another may have installed them meanwhile
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
        -o DPkg::Lock::Timeout=600 "${missing[@]}"
}

# build PRESET [CMAKE-OPTION...] -- TARGET...: says something only when there is something to build.
build() {
    mkdir -p "$root/build"
    locked "$root/build" build build_alone "$@"
}

build_alone() {
    local preset=$1 options=() tree
    shift
    while [ "$1" != -- ]; do
        options+=("$1")
        shift
    done
    shift
    tree=$root/build/$preset
    if [ ! -f "$tree/build.ninja" ]; then
        say "Building $preset for the first time, which takes a minute or more: $*"
        run_quietly cmake -S "$root" --preset "$preset" "${options[@]}"
        run_quietly ninja -C "$tree" "$@"
    else
        [ ${#options[@]} -eq 0 ] || run_quietly cmake -S "$root" --preset "$preset" "${options[@]}"
        run_quietly announced "Building $preset: $*" ninja -C "$tree" "$@" 3>&2
    fi
}

# announced TEXT NINJA...: says the text on descriptor 3 once something has been built.
announced() {
    local text=$1 line
    shift
    "$@" | while IFS= read -r line; do
        if [[ $line == \[[1-9]* ]] && [ -n "$text" ]; then
            say "$text" 2>&3
            text=
        fi
        printf '%s\n' "$line"
    done
}

# unpacked NAME PACKAGE...: prints the folder where packages are whose installation would start a server, and which are only
# unpacked therefore.
unpacked() {
    local place=$root/build/$1
    shift
    [ -d "$place" ] || locked "$root/build" build unpack "$place" "$@"
    printf '%s\n' "$place"
}

unpack() {
    local place=$1 as_root=() package
    shift
    if [ ! -d "$place" ]; then
        rm -rf "$place.new"
        mkdir -p "$place.new"
        [ "$(id -u)" -eq 0 ] || as_root=(sudo)
        apt-cache show "$1" >/dev/null 2>&1 || run_quietly "${as_root[@]}" apt-get update
        # Whoever runs the tests owns the folder, not apt's own user.
        (cd "$place.new" && run_quietly apt-get download -o APT::Sandbox::User=root "$@")
        for package in "$place.new"/*.deb; do
            run_quietly dpkg -x "$package" "$place.new"
            rm "$package"
        done
        mv "$place.new" "$place"
    fi
}
