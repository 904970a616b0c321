#!/usr/bin/env bash
# Makes a jar whose bytes say neither when nor where it was made: make-jar.sh JAR-TOOL JAR MANIFEST CLASSES
# The tool can be told a time only from Java 17 on: here the files have it. A manifest of the tool's own making would
# have the present.
set -euo pipefail
export LC_ALL=C TZ=UTC

tool=$1 jar=$2 manifest=$3 classes=$4
cd "$classes"
mkdir -p META-INF
cp "$manifest" META-INF/MANIFEST.MF
find . -type f -exec touch -t 198002010000 {} + # the least that has no time zone in it
mapfile -t files < <(find . -type f ! -name MANIFEST.MF | sed 's,^./,,' | sort)
exec "$tool" -J-Duser.timezone=UTC --create --no-manifest --file "$jar" META-INF/MANIFEST.MF "${files[@]}"
