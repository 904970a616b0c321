# How the command line is started, from the source tree and from where it is installed. To be sourced, with the command
# line's arguments, by a script that has set here, the folder that it is in, and that sets before it calls launch
#   jar            the agent's jar
#   library_dir    the folder with the native library
#   recorder       the program that records a host
#   library_jars   the jars that the agent needs, without the ending
#   driver_jars    those that only stores need, each of its kind; there may be none
#   jar_dirs       where to look for them, first to last
#   archive_dir    where the class-data archive may be put; empty: none is used
#   training       the commands whose classes belong into the archive, each a word of the array

unusable=2 # the exit status without a usable Java
archives_kept=4
status_base=100

# What check finds is its exit status, and whatever else ends it is what a monitoring plugin calls unknown, be it that
# the virtual machine crashes.
if [[ " $* " == *" check "* ]]; then
    unusable=3
    found=$unusable
    trap 'exit "$found"' EXIT
    trap 'exit "$unusable"' HUP INT TERM
fi

complain() {
    printf 'tarn: %s\n' "$*" >&2
    exit "$unusable"
}

[[ $here != *:* ]] || complain "Java cannot use what lies in a folder with a colon in its name: $here"

# Sets java, java_home and java_major. The virtual machine's own release file tells its version; starting one to ask
# would take longer than the archive saves.
find_java() {
    local wanted="Java 11 or newer is needed" version='' key value
    if [ -n "${JAVA_HOME:-}" ]; then
        java=$(command -v -- "$JAVA_HOME/bin/java") || complain "$wanted; JAVA_HOME is $JAVA_HOME, which has no bin/java"
    else
        java=$(command -v java) || complain "$wanted; there is no java on the PATH"
    fi
    java_home=$(readlink -f "$java")
    java_home=${java_home%/bin/*}
    if [ -r "$java_home/release" ]; then
        while IFS='=' read -r key value || [ -n "$key" ]; do
            [ "$key" != JAVA_VERSION ] || version=${value//[\"$'\r']/}
        done <"$java_home/release"
    else
        version=$("$java" -version 2>&1 | sed -n 's/^[^"]* version "\([^"]*\)".*/\1/p') || true
    fi
    java_major=${version#1.} # up to 8, Java called itself 1.8
    java_major=${java_major%%[!0-9]*}
    [ -n "$java_major" ] || complain "$wanted; $java does not tell its version"
    [ "$java_major" -ge 11 ] || complain "$wanted; $java is Java $version"
}

# Sets class_path and jars.
find_jars() {
    local name dir found
    jars=("$jar")
    class_path=$jar
    for name in "${library_jars[@]}" "${driver_jars[@]}"; do
        found=
        for dir in "${jar_dirs[@]}"; do
            if [ -f "$dir/$name.jar" ]; then
                found=$dir/$name.jar
                break
            fi
        done
        if [ -z "$found" ]; then
            [[ " ${driver_jars[*]} " == *" $name "* ]] || complain "$name.jar is needed, and is not in ${jar_dirs[*]}"
            continue
        fi
        jars+=("$found")
        class_path+=:$found
    done
}

# Whether no one but this user, and root, can change what is named, by a path without links, or put something else in
# its place: no one else owns it or a folder above it or can write there, if only to remove what is their own.
is_safe() {
    local path=$1 paths=(/) lines line
    while [ -n "$path" ]; do
        paths+=("$path")
        path=${path%/*}
    done
    mapfile -t lines < <(ls -ldn -- "${paths[@]}" 2>/dev/null)
    [ ${#lines[@]} -eq ${#paths[@]} ] || return 1
    for line in "${lines[@]}"; do
        [[ $line =~ ^([^ ]+)\ +[0-9]+\ +([0-9]+)\  ]] || return 1
        [ "${BASH_REMATCH[2]}" = 0 ] || [ "${BASH_REMATCH[2]}" = "$EUID" ] || return 1
        case ${BASH_REMATCH[1]} in
            d????????[tT]*) ;;
            ?????w* | ????????w*) return 1 ;;
        esac
    done
}

# Takes the links out of archive_dir, and makes the folder where it is not there yet. Fails if it cannot be the user's
# own.
find_archive_dir() {
    local above
    [[ $archive_dir == /* ]] || archive_dir=$PWD/$archive_dir
    if [ ! -d "$archive_dir" ]; then
        above=$archive_dir
        while [ ! -d "$above/" ]; do
            above=${above%/*}
        done
        above=$(cd -P "$above/" && pwd) && is_safe "${above%/}" && (umask 077 && mkdir -p "$archive_dir") || return 1
    fi
    archive_dir=$(cd -P "$archive_dir" && pwd) || return 1
    # Java takes a colon for the end of a file's name.
    [[ $archive_dir != *:* ]] && [ -O "$archive_dir" ] && [ ! -k "$archive_dir" ]
} 2>/dev/null

# Makes the archive, whole or not at all, prints its name and removes those that it follows. An empty one says that this
# virtual machine cannot make any.
make_archive() {
    local sum size archives
    umask 077
    fresh=$(mktemp "$archive_dir/.tarn-XXXXXX") || return 1
    trap 'rm -f "$fresh"' EXIT
    trap 'exit 1' HUP INT TERM
    unset TARN_HOST
    if ! "${virtual_machine[@]}" -XX:ArchiveClassesAtExit="$fresh" "${classes[@]}" com.kelvo.tarn.cli.Training \
        "${training[@]}" </dev/null >/dev/null || [ ! -e "$fresh" ]; then
        rm -f "$fresh"
        : >"$fresh"
    fi
    sync "$fresh" || sync # where it takes no file
    read -r sum size _ < <(cksum <"$fresh")
    cd "$archive_dir" || return 1
    rm -f "tarn-$place"-*.jsa
    mv -f "$fresh" "tarn-$place-$state-$sum-$size.jsa" || return 1
    mapfile -t archives < <(ls -t tarn-*.jsa)
    rm -f "${archives[@]:archives_kept}"
    find . -name '.tarn-*' -mtime +0 -exec rm -f {} + # where the making was killed
    printf '%s\n' "$archive_dir/tarn-$place-$state-$sum-$size.jsa"
} 2>/dev/null

# Whether the archive is newer than the jars, and as it was made, which its name tells: a damaged one may end the
# virtual machine.
is_usable() {
    local file sum size
    for file in "${jars[@]}"; do # ls tells the time to the minute only
        [ ! "$file" -nt "$archive" ] || return 1
    done
    read -r sum size _ < <(cksum <"$archive")
    [[ $archive == *"-$sum-$size.jsa" ]]
} 2>/dev/null

# Sets archive to the class-data archive that suits this virtual machine and these jars, which is named after them, or
# to nothing. Java 13 is the first that makes one while it runs.
find_archive() {
    local place state archives
    archive=
    [ -n "$archive_dir" ] && [ "$java_major" -ge 13 ] && find_archive_dir || return 0
    place=$(cksum <<<"$java_home $class_path")
    state=$({ ls -lL "${jars[@]}" "$java_home/lib/modules" 2>/dev/null || true; } | cksum)
    place=${place%% *}
    state=${state%% *}
    archives=("$archive_dir/tarn-$place-$state"-*.jsa)
    if [ ! -e "${archives[0]}" ]; then
        is_safe "$archive_dir" || return 0
    elif [ -O "${archives[0]}" ] && is_safe "${archives[0]}"; then
        archive=${archives[0]}
    else
        return 0
    fi
    [ -n "$archive" ] && is_usable || archive=$(make_archive) || archive=
    [ -s "$archive" ] || archive=
}

# Runs the command line, and takes what check has found from its exit status: nothing else ends with such a one.
monitor() {
    local child status=0
    trap 'kill "$child"' HUP INT TERM
    "$@" <&0 &
    child=$!
    wait "$child" || status=$?
    while kill -0 "$child" 2>/dev/null; do # a signal has come between
        wait "$child" || status=$?
    done
    [ "$status" -lt "$status_base" ] || [ "$status" -gt $((status_base + unusable)) ] ||
        found=$((status - status_base))
    exit
}

# Sets height and width to the size of the terminal that standard input is.
terminal_size() {
    height=0 width=0
    read -r height width < <(stty size 2>/dev/null) || true
    [ "${height:-0}" -gt 0 ] || height=24
    [ "${width:-0}" -gt 0 ] || width=80
}

# Sets library_path to where native libraries are: ours, and those that the jars of the system need; and sqlite to where
# the one of SQLite's driver is, which would run other programs to find that out.
find_libraries() {
    local dir
    library_path=$library_dir sqlite=
    for dir in /usr/lib/jni /usr/lib/*/jni; do
        [ ! -d "$dir" ] || library_path+=:$dir
        [ ! -f "$dir/libsqlitejdbc.so" ] || sqlite=$dir
    done
}

# Ends this process with the command line.
launch() {
    export LC_ALL=C.UTF-8 # arguments and file names are UTF-8 whatever the terminal says
    local run=exec height width
    find_java
    find_jars
    # What the virtual machine itself would say of an archive it cannot use is no part of a result.
    virtual_machine=("$java" -XX:+UseSerialGC -XX:TieredStopAtLevel=1 -Xlog:disable)
    # One host after the other leaves garbage only, for which the room need not grow with their number.
    [[ " $* " != *" san "* || " $* " != *" load "* ]] || virtual_machine+=(-Xms64m -Xmn24m)
    [ "$java_major" -lt 22 ] || virtual_machine+=(--enable-native-access=ALL-UNNAMED)
    find_libraries
    classes=("-Djava.library.path=$library_path" ${sqlite:+"-Dorg.sqlite.lib.path=$sqlite"} "-Dtarn.recorder=$recorder"
        -cp "$class_path")
    find_archive
    if [ -t 1 ]; then # what Java cannot find out: how wide the terminal is
        terminal_size <&1
        virtual_machine+=("-Dtarn.lines=$height" "-Dtarn.columns=$width")
    fi
    if [ -t 2 ]; then
        terminal_size <&2
        virtual_machine+=("-Dtarn.errorColumns=$width")
    fi
    if [ -n "${found:-}" ]; then
        run=monitor
        virtual_machine+=("-Dtarn.statusBase=$status_base")
    fi
    "$run" "${virtual_machine[@]}" ${archive:+-XX:SharedArchiveFile="$archive"} "${classes[@]}" \
        com.kelvo.tarn.cli.Tarn "$@"
}
