#!/usr/bin/env bash
# usage: hardware_build.sh SOURCE_DIR LIBSWSDK
# The library alone is built against headers and a library that are given, with nothing of the virtual chip's build. What
# it installs serves a program that knows where these are.
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
grep -q 'NEEDED.*libswsdk.so' <<<"$("${READELF:-readelf}" --dynamic "$work/build/src/libsai.so")"
cmake --install "$work/build" --prefix "$work/usr" >/dev/null
printf '#include <sai.h>\nint main(void) { return sai_unit_get(); }\n' >"$work/program.c"
cmake -S "$(dirname "$0")/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/usr" \
  -DEXAMPLE="$work/program.c" -DCMAKE_C_FLAGS="-I$work/vendor -L$(dirname "$library")" >/dev/null
cmake --build "$work/consumer" >/dev/null
LD_LIBRARY_PATH="$(dirname "$library"):$(dirname "$(find "$work/usr" -name libsai.so)")" ${EMULATOR:-} "$work/consumer/consumer"
if cmake -S "$source" -B "$work/refused" -DSWSDK_INCLUDE_DIR="$work/vendor" >/dev/null 2>"$work/error"; then
  echo "headers without a library were accepted"
  exit 1
fi
grep -q SWSDK_LIBRARY "$work/error"
