#!/usr/bin/env bash
# usage: other_layout.sh SOURCE_DIR WORK_DIR TEST_PROGRAM...
# A vendor's records have fields in places that nobody here knows. The library alone, built against headers whose records
# are laid out otherwise and that are plain C, passes test programs on a virtual chip that is built with the same records.
# The recorder, built like the library, records what that chip records.
set -euo pipefail
source=$1 work=$2
shift 2

# headers DIR PLAIN_C: those of the virtual chip, changed. One that stays as it was keeps its time, so that a second run
# compiles only what it must.
headers() {
  local header from="$source/swsdk/include" to="$work/$1" plain_c=$2
  for header in $(cd "$from" && find appl bcm shared soc -name '*.h'); do
    mkdir -p "$to/$(dirname "$header")"
    awk -v plain_c="$plain_c" -f "$source/tests/project/other_layout.awk" "$from/$header" >"$work/changed.h"
    cmp --quiet "$work/changed.h" "$to/$header" || cp "$work/changed.h" "$to/$header"
  done
}
headers vendor 1
headers guarded 0
[ "$(grep --recursive 'added_0' "$work/vendor" | wc -l)" -ge 20 ] ||
  { echo "too few records found; are the headers still read rightly?"; exit 1; }

# Before the project's own headers, in every target. The chip is built with the compiler that takes less time.
echo "include_directories(\"$work/guarded\")" >"$work/guarded.cmake"
cmake -S "$source" -B "$work/chip" -G Ninja -DCMAKE_PROJECT_sai_INCLUDE="$work/guarded.cmake" \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_FLAGS=-O0 -DCMAKE_CXX_FLAGS=-O0 >/dev/null
cmake --build "$work/chip" --target example_bring-up "$@"
cmake -S "$source" -B "$work/library" -G Ninja -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
  -DSWSDK_INCLUDE_DIR="$work/vendor" -DSWSDK_LIBRARY="$work/chip/swsdk/libswsdk.so" >/dev/null
cmake --build "$work/library"
export LD_LIBRARY_PATH=$work/library/src
for program in "$@"; do
  grep --quiet --fixed-strings "$work/library/src/libsai.so" <<<"$(ldd "$work/chip/tests/$program")"
  "$work/chip/tests/$program" --gtest_brief=1
done

SWSDK_RECORD="$work/own.rec" "$work/chip/examples/example_bring-up" >/dev/null
SWSDK_RECORD="$work/before.rec" LD_PRELOAD="$work/library/recorder/libswsdk-recorder.so" \
  "$work/chip/examples/example_bring-up" >/dev/null
diff <(grep '^call ' "$work/own.rec") <(sed -n 's/^\(call .*\) @[0-9. ]*$/\1/p' "$work/before.rec")
[ "$(wc -l <"$work/own.rec")" -ge 100 ]
