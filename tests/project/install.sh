#!/usr/bin/env bash
# usage: install.sh BUILD_DIR EXAMPLES_DIR
# An installed copy serves a program by pkg-config and by its CMake package, and a reader by its manual, wherever it is
# installed, and yields to the Chip SDK that LD_LIBRARY_PATH names.
set -euo pipefail
build=$1 examples=$2 emulator=${EMULATOR-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH PYTHONPATH "${!PKG_CONFIG_@}"

fail() {
  echo "$1" >&2
  exit 1
}
run_path() { "${READELF:-readelf}" --dynamic "$1" | sed -nE 's/.*\((RPATH|RUNPATH)\).*\[(.*)\]/\1 \2/p'; }

prefix=$work/prefix
(cd "$work" && cmake --install "$build" --prefix prefix >/dev/null)
libraries=$(dirname "$(find "$prefix" -name libsai.so)")

# The program that pkg-config builds is told where its libraries are; libsai.so finds libswsdk.so by itself.
export PKG_CONFIG_PATH=$libraries/pkgconfig
[ "$(pkg-config --variable=prefix sai)" = "$prefix" ] || fail "sai.pc names $(pkg-config --variable=prefix sai)"
# shellcheck disable=SC2046  # words
"${CC:-cc}" -std=c99 -Wall -Wextra -Werror -o "$work/vlans" "$examples/vlans.c" $(pkg-config --cflags --libs sai) \
  "-Wl,-rpath,$(pkg-config --variable=libdir sai)"
$emulator "$work/vlans" >"$work/vlans.out"

cmake -S "$(dirname "$0")/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLE="$examples/vlans.c" \
  >/dev/null
cmake --build "$work/consumer" >/dev/null
$emulator "$work/consumer/consumer" >/dev/null
# One that needs libsai.so alone.
cat >"$work/unit.c" <<'end'
#include <sai.h>
int main(void) { return sai_unit_get(); }
end
cmake -S "$(dirname "$0")/consumer" -B "$work/unit" -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLE="$work/unit.c" \
  -DCMAKE_EXE_LINKER_FLAGS=-Wl,--as-needed >/dev/null
cmake --build "$work/unit" >/dev/null
$emulator "$work/unit/consumer"

$emulator "$prefix/bin/saish" "$examples/vlans.sai" >"$work/saish.out"
$emulator "$prefix/bin/swsdk-switch" --version >/dev/null
[ -n "$emulator" ] || "$prefix/bin/swsdk-sweep" --only bcm_vlan_create -- "$work/vlans" >"$work/out" 2>&1 ||
  fail "swsdk-sweep printed: $(cat "$work/out")"

# What LD_LIBRARY_PATH names comes first, even when it is no library.
mkdir "$work/named"
echo "no library" >"$work/named/libswsdk.so"
for program in "$work/unit/consumer" "$prefix/bin/saish"; do
  LD_LIBRARY_PATH=$work/named $emulator "$program" --version >"$work/out" 2>&1 &&
    fail "$program took another libswsdk.so"
  grep -q "$work/named/libswsdk.so" "$work/out" || fail "$program said: $(cat "$work/out")"
done

page=$prefix/share/man/man3/sai_vlan_create.3
index=$(tr -d '\\' <"$page" | grep -Eo 'share/doc/[a-z/-]+/messages\.md')
[ -f "$prefix/$index" ] || fail "$page names $index, which is not installed"
documents=$(dirname "$(dirname "$prefix/$index")")
for file in README.md docs/first-day.md docs/tasks/restart.md examples/vlans.c; do
  [ -f "$documents/$file" ] || fail "$file is not installed"
done
python3 -B "$(dirname "$0")/../../docs/tools/links.py" --installed "$documents" ||
  fail "the links above lead to files that are not installed"
"$prefix/bin/sai-messages" find "Failed to create vlan 5000: Invalid parameter" >/dev/null

# This machine's Python loads this machine's libraries.
modules=$(dirname "$(find "$prefix/lib" -path '*/python3.*/site-packages/sai_virtual')")
[ -n "$emulator" ] || LD_LIBRARY_PATH=$libraries PYTHONPATH=$modules python3 -B -c '
import sai_virtual
assert sai_virtual.sai_level_match("debugging") == sai_virtual.SAI_LOG_DEBUGGING'

# In the system's own prefixes the module lies where Debian's Python looks, and files in /usr have no run path.
for system in /usr /usr/local; do
  DESTDIR=$work/system cmake --install "$build" --prefix "$system" >/dev/null
  modules=$(dirname "$(find "$work/system$system" -path '*/dist-packages/sai_virtual')")
  [ ! -x /usr/bin/python3 ] || /usr/bin/python3 -I -c 'import sys; sys.exit(sys.argv[1] not in sys.path)' \
    "${modules#"$work/system"}" || fail "Debian's Python does not look into ${modules#"$work/system"}"
  [ "$(head -n 1 "$(find "$work/system$system" -name sai.pc)")" = "prefix=$system" ] ||
    fail "sai.pc does not name $system"
  for file in bin/saish bin/swsdk-switch "${libraries#"$prefix/"}/libsai.so"; do
    case "$system $(run_path "$work/system$system/$file")" in
      '/usr ' | "/usr/local RUNPATH \$ORIGIN/"*) ;;
      *) fail "$system/$file has the run path \"$(run_path "$work/system$system/$file")\"" ;;
    esac
  done
  rm -r "$work/system"
done
