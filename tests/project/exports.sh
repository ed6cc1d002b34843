#!/usr/bin/env bash
# usage: exports.sh LIBRARY HEADER
# The library exports exactly what its header declares.
set -euo pipefail
library=$1 header=$2

declared=$(sed -n '/^#define/d; s/^\(extern \)\{0,1\}SAI_API //p' "$header" |
  sed -E 's/[[(;].*$//; s/^.*[ *]//' | sort)
exported=$("${NM:-nm}" --dynamic --defined-only "$library" | awk '{print $3}' | sed 's/@.*//' | sort)
[ "$(wc -w <<<"$declared")" -ge 20 ] || { echo "$header: too few declarations found; is it still read rightly?"; exit 1; }
diff <(echo "$declared") <(echo "$exported") && exit 0
echo "< declared in $header but not exported; > exported by $library but not declared"
exit 1
