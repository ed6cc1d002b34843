#!/usr/bin/env bash
# usage: load.sh LIBRARY
# The library is loaded by its plain name, needs libc and the Chip SDK alone, and leaves the choice of the SDK to
# LD_LIBRARY_PATH.
set -euo pipefail
dynamic=$("${READELF:-readelf}" --dynamic --wide "$1")

fail() {
  echo "$1: $2"
  exit 1
}
soname=$(sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p' <<<"$dynamic")
[ "$soname" = libsai.so ] || fail "$1" "is loaded as '$soname', not as libsai.so"
# libc's loader is where the guard of the stack is on 64-bit Arm.
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | { grep -v '^ld-linux-aarch64' || true; } | sort | xargs)
[ "$needed" = "libc.so.6 libswsdk.so" ] || fail "$1" "needs $needed, not libc.so.6 and libswsdk.so alone"
grep -q '(RPATH)' <<<"$dynamic" && fail "$1" "has a run path that overrules LD_LIBRARY_PATH"
grep -q '_GLOBAL__sub_I_' <<<"$("${NM:-nm}" "$1")" && fail "$1" "runs a static constructor"
exit 0
