#!/usr/bin/env bash
# usage: hardware_build.sh SOURCE_DIR LIBSWSDK
# The library alone is built against headers and a library that are given, with nothing of the virtual chip's build.
set -euo pipefail
source=$1 library=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# In two folders, as vendors' trees often are.
mkdir "$work/vendor" "$work/system"
cp -r "$source"/swsdk/include/{bcm,shared} "$work/vendor"
cp -r "$source"/swsdk/include/{appl,soc} "$work/system"
cmake -S "$source" -B "$work/build" -DSWSDK_INCLUDE_DIR="$work/vendor;$work/system" -DSWSDK_LIBRARY="$library" >/dev/null
cmake --build "$work/build" >/dev/null
"${READELF:-readelf}" --dynamic "$work/build/src/libsai.so" | grep -q 'NEEDED.*libswsdk.so'
if cmake -S "$source" -B "$work/refused" -DSWSDK_INCLUDE_DIR="$work/vendor" >/dev/null 2>"$work/error"; then
  echo "headers without a library were accepted"
  exit 1
fi
grep -q SWSDK_LIBRARY "$work/error"
