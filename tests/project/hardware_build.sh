#!/usr/bin/env bash
# usage: hardware_build.sh SOURCE_DIR LIBSWSDK
# The library alone is built against headers and a library that are given, with nothing of the virtual chip's build. What
# it installs serves a program that knows where these are. The project's own headers stand in for a vendor's, so they must
# not have what a vendor's lack.
set -euo pipefail
source=$1 library=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# In two folders, as vendors' trees often are.
mkdir "$work/vendor" "$work/system"
cp -r "$source"/swsdk/include/{bcm,shared} "$work/vendor"
cp -r "$source"/swsdk/include/{appl,soc} "$work/system"

# The macros of port bitmaps that the SDK's release has: a source that uses another one compiles here alone.
macros='CLEAR|PORT_ADD|PORT_REMOVE|MEMBER|ITER|ASSIGN|IS_NULL|PORT_MAX'
macros+='|NOT_NULL|EQ|NEQ|AND|OR|XOR|REMOVE|NEGATE|COUNT|PORT_SET|PORT_FLIP'
own=$(grep -Eho '#define BCM_PBMP_\w+' -r "$work/vendor" "$work/system")
[ "$(wc -l <<<"$own")" -ge 5 ] || { echo "too few macros found; are the headers still read rightly?"; exit 1; }
if grep -Evx "#define BCM_PBMP_($macros)" <<<"$own"; then
  echo "the SDK's release does not have these"
  exit 1
fi

cmake -S "$source" -B "$work/build" -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
  -DSWSDK_INCLUDE_DIR="$work/vendor;$work/system" -DSWSDK_LIBRARY="$library" >/dev/null
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
