# How the command line is started, from the source tree and from where it is installed. To be sourced by a script that
# has set
#   jar            the agent's jar
#   library_dir    the folder with the native library
#   recorder       the program that records a host
#   jar_dirs       where to look for the jars that the agent needs, first to last
#   archive_dir    where the class-data archive may be put; empty: none is used
#   training       the commands whose classes belong into the archive, each a word of the array

unusable=2 # the exit status without a usable Java

complain() {
    printf 'tarn: %s\n' "$*" >&2
    exit "$unusable"
}

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
    for name in picocli gson log4j-1.2-api log4j-api log4j-core; do
        found=
        for dir in "${jar_dirs[@]}"; do
            if [ -f "$dir/$name.jar" ]; then
                found=$dir/$name.jar
                break
            fi
        done
        [ -n "$found" ] || complain "$name.jar is needed, and is not in ${jar_dirs[*]}"
        jars+=("$found")
        class_path+=:$found
    done
}

# Makes the archive, whole or not at all. An empty one says that this virtual machine cannot make any.
make_archive() (
    umask 077
    mkdir -p "$archive_dir" && fresh=$(mktemp "$archive_dir/.tarn-XXXXXX") || exit 0
    trap 'rm -f "$fresh"' EXIT
    trap 'exit 1' HUP INT TERM
    unset TARN_HOST
    if ! "${virtual_machine[@]}" -XX:ArchiveClassesAtExit="$fresh" "${classes[@]}" com.kelvo.tarn.cli.Training \
        "${training[@]}" </dev/null ||
        [ ! -e "$fresh" ]; then
        : >"$fresh"
    fi
    rm -f "$archive_dir/tarn-$place"-*.jsa
    mv -f "$fresh" "$archive"
) >/dev/null 2>&1

# Sets archive to the class-data archive that suits this virtual machine and these jars, which is named after them, or
# to nothing. Java 13 is the first that makes one while it runs.
find_archive() {
    local place state file
    archive=
    [ -n "$archive_dir" ] && [ "$java_major" -ge 13 ] || return 0
    place=$(cksum <<<"$java_home $class_path")
    state=$({ ls -lL "${jars[@]}" "$java_home/lib/modules" 2>/dev/null || true; } | cksum)
    place=${place%% *}
    archive=$archive_dir/tarn-$place-${state%% *}.jsa
    for file in "${jars[@]}"; do # ls tells the time to the minute only
        [ ! "$file" -nt "$archive" ] || rm -f "$archive" 2>/dev/null || true
    done
    [ -e "$archive" ] || make_archive || true
    [ -s "$archive" ] || archive=
}

# Replaces this process by the command line.
launch() {
    export LC_ALL=C.UTF-8 # arguments and file names are UTF-8 whatever the terminal says
    [[ " $* " != *" check "* ]] || unusable=3 # what a monitoring plugin calls unknown
    find_java
    find_jars
    # What the virtual machine itself would say of an archive it cannot use is no part of a result.
    virtual_machine=("$java" -XX:+UseSerialGC -XX:TieredStopAtLevel=1 -Xlog:disable)
    [ "$java_major" -lt 22 ] || virtual_machine+=(--enable-native-access=ALL-UNNAMED)
    classes=("-Djava.library.path=$library_dir" "-Dtarn.recorder=$recorder" -cp "$class_path")
    find_archive
    if [ -t 1 ]; then # what Java cannot find out: how wide the terminal is
        local columns=0
        read -r _ columns 3<&1 < <(stty size <&3 2>/dev/null) || true
        [ "${columns:-0}" -gt 0 ] || columns=80
        virtual_machine+=("-Dtarn.columns=$columns")
    fi
    exec "${virtual_machine[@]}" ${archive:+-XX:SharedArchiveFile="$archive"} "${classes[@]}" \
        com.kelvo.tarn.cli.Tarn "$@"
}
