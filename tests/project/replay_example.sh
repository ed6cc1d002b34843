#!/usr/bin/env bash
# usage: replay_example.sh SAISH EXAMPLE
# A recorded run of an example replays without a difference and without a notice.
set -euo pipefail
saish=$1 example=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$saish" --record "$work/run.rec" "$example" >/dev/null
[ "$(wc -l <"$work/run.rec")" -gt 10 ] || {
  echo "$example: the recording has $(wc -l <"$work/run.rec") lines" >&2
  exit 1
}
"$saish" --replay "$work/run.rec" >"$work/out" 2>&1
[ ! -s "$work/out" ] || {
  echo "$example: the replay said: $(cat "$work/out")" >&2
  exit 1
}
