#!/usr/bin/env bash
# usage: install.sh BUILD_DIR EXAMPLES_DIR
# An installed copy serves a program by pkg-config and by its CMake package, and a reader by its manual.
set -euo pipefail
build=$1 examples=$2 emulator=${EMULATOR-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/usr" >/dev/null
libraries=$(dirname "$(find "$work/usr" -name libsai.so)")
export PKG_CONFIG_PATH=$libraries/pkgconfig LD_LIBRARY_PATH=$libraries
for file in "$libraries/libsai.so" "$libraries/libswsdk.so" "$work/usr/bin/saish"; do
  if "${READELF:-readelf}" --dynamic "$file" | grep -E '\((RPATH|RUNPATH)\)'; then
    echo "$file: an installed file has no run path"
    exit 1
  fi
done

page=$work/usr/share/man/man3/sai_vlan_create.3
index=$(grep -Eo '[a-z/]+/messages\.md' "$page")
[ -f "$work/usr/$index" ] || { echo "$page names $index, which is not installed"; exit 1; }

# The .pc file names the prefix that the build was configured for; the copy is elsewhere.
pkg_config=(pkg-config --define-variable=prefix="$work/usr")
"${CC:-cc}" -std=c99 -Wall -Wextra -Werror -o "$work/vlans" "$examples/vlans.c" $("${pkg_config[@]}" --cflags --libs sai)
$emulator "$work/vlans" >"$work/vlans.out"
$emulator "$work/usr/bin/saish" "$examples/vlans.sai" >"$work/saish.out"

# This machine's Python loads this machine's libraries.
[ -n "$emulator" ] || PYTHONPATH=$work/usr/lib/python3/dist-packages python3 -B -c '
import sai_virtual
assert sai_virtual.sai_level_match("debugging") == sai_virtual.SAI_LOG_DEBUGGING'

cmake -S "$(dirname "$0")/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/usr" \
  -DEXAMPLE="$examples/vlans.c" >/dev/null
cmake --build "$work/consumer" >/dev/null
$emulator "$work/consumer/consumer" >/dev/null
