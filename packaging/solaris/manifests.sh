#!/usr/bin/env bash
# Says of an install tree what Solaris' package systems want to know: manifests.sh FOLDER VERSION VERSION-FILE ARCHITECTURE
# FOLDER/proto is the tree. Beside it come, for pkgmk, pkginfo, depend, copyright and prototype, and, for pkgsend,
# tarnsolaris.p5m. A folder of the system's keeps the attributes it has there. The tree gets what SMF reads, too.
set -euo pipefail
export LC_ALL=C

folder=$1 version=$2 full_version=$(<"$3") architecture=$4
tree=$folder/proto
summary="Solaris providers of a storage-management agent"
[[ $tree != *[[:space:]]* ]] || { echo "a prototype cannot name a path with blanks: $tree" >&2; exit 1; }

service=lib/svc/manifest/application/tarn-serve.xml
mkdir -p "$tree/${service%/*}"
cp "${BASH_SOURCE[0]%/*}/tarn-serve.xml" "$tree/$service"
chmod 644 "$tree/$service"

cat >"$folder/pkginfo" <<END
PKG=KELVtarn
NAME=$summary
DESC=The native library, the agent's Java classes and the command line tarn
ARCH=$architecture
VERSION=$version
PSTAMP=$full_version
CATEGORY=system
VENDOR=tarnsolaris developers
BASEDIR=/
CLASSES=none
END

# Java 11 is no package of this kind; the command line says what it found instead.
cat >"$folder/depend" <<END
P SUNWcsl Core Solaris, (Shared Libs)
P SUNWcfcl Common Fibre Channel HBA API Library (Usr)
P SUNWbash GNU Bourne-Again shell (bash)
P SUNWgccruntime GCC Runtime libraries
END

document=usr/share/doc/tarnsolaris
cp "$tree/$document/copyright" "$folder/copyright"
printf 'i %s\n' "pkginfo=$folder/pkginfo" "depend=$folder/depend" "copyright=$folder/copyright" >"$folder/prototype"

cat >"$folder/tarnsolaris.p5m" <<END
set name=pkg.fmri value=pkg:/system/storage/tarnsolaris@$version
set name=pkg.summary value="$summary"
set name=pkg.human-version value=$full_version
set name=info.classification value="org.opensolaris.category.2008:System/Administration and Configuration"
set name=variant.arch value=$architecture
license $document/copyright license="all rights reserved"
depend type=require fmri=pkg:/system/library
depend type=require fmri=pkg:/system/library/storage/fibre-channel/hbaapi
depend type=require fmri=pkg:/system/library/gcc/gcc-c++-runtime
depend type=require fmri=pkg:/shell/bash
depend type=require-any fmri=pkg:/runtime/java/jre-11 fmri=pkg:/developer/java/jdk-11
depend type=optional fmri=pkg:/image/graphviz
END

# entry PATH: its line in both manifests.
entry() {
    local path=$1 mode=0644 target refresh=
    if [ -h "$tree/$path" ]; then
        target=$(readlink "$tree/$path")
        echo "s none $path=$target" >&3
        echo "link path=$path target=$target" >&4
    elif [ -d "$tree/$path" ]; then
        case $path/ in
            */tarnsolaris/*)
                echo "d none $path 0755 root bin" >&3
                echo "dir path=$path owner=root group=bin mode=0755" >&4 ;;
            *)
                echo "d none $path ? ? ?" >&3 ;;
        esac
    else
        [ ! -x "$tree/$path" ] || mode=0755
        [ "$path" != "$service" ] || refresh=" restart_fmri=svc:/system/manifest-import:default"
        echo "f none $path=$tree/$path $mode root bin" >&3
        echo "file $path path=$path owner=root group=bin mode=$mode$refresh" >&4
    fi
}

while read -r path; do
    entry "${path#./}"
done < <(cd "$tree" && find . ! -name . | sort) 3>>"$folder/prototype" 4>>"$folder/tarnsolaris.p5m"
