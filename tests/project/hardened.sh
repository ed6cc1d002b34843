#!/usr/bin/env bash
# usage: hardened.sh FILE...
# Each built library or program: all that it is linked to is bound at load and read-only from then on, no page is both
# writable and executable, functions with buffers guard their stack, and libc's calls that write check their bounds.
set -euo pipefail

fail() {
  echo "$1: $2"
  exit 1
}
for file in "$@"; do
  headers=$("${READELF:-readelf}" --program-headers --wide "$file")
  dynamic=$("${READELF:-readelf}" --dynamic --wide "$file")
  undefined=$("${NM:-nm}" --dynamic --undefined-only "$file" | awk '{print $2}' | sed 's/@.*//')

  grep -q 'GNU_RELRO' <<<"$headers" || fail "$file" "is writable where it is relocated"
  grep -Eq '\(BIND_NOW\)|\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*NOW' <<<"$dynamic" || fail "$file" "binds at the first call"
  stack=$(grep 'GNU_STACK' <<<"$headers") || fail "$file" "does not say that its stack is not executable"
  grep -q 'RWE' <<<"$headers" && fail "$file" "has memory that is writable and executable: $stack"
  grep -q 'TEXTREL' <<<"$dynamic" && fail "$file" "relocates its code"
  grep -qx '__stack_chk_fail' <<<"$undefined" || fail "$file" "does not guard its stack"
  grep -q '_chk$' <<<"$undefined" || fail "$file" "calls libc without its checks"
  for call in vfprintf vsyslog; do
    grep -qx "$call" <<<"$undefined" && fail "$file" "calls $call, not __${call}_chk"
  done
done
exit 0
