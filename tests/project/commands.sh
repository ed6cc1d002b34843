#!/usr/bin/env bash
# usage: commands.sh SAISH LIBRARY
# Every function that the library exports is a command of the shell, with its signature and a sentence about it.
set -euo pipefail
saish=$1 library=$2

functions=$("${NM:-nm}" --dynamic --defined-only "$library" | awk '$2 == "T" {print $3}' | sed 's/@.*//' | sort)
[ "$(wc -w <<<"$functions")" -ge 20 ] || { echo "$library: too few functions found; is it still read rightly?"; exit 1; }
commands=$("$saish" -c "help all" | sed '1,/^Functions of the library/d' | awk '{print $1}' | sort)
diff <(echo "$functions") <(echo "$commands") || { echo "< exported but no command; > command but not exported"; exit 1; }

for function in $functions; do
  help=$("$saish" -c "help $function")
  [[ "$help" =~ ^[a-z].*' '$function\(.*\)$'\n'[A-Z].*\.$'\n'"Here: $function" ]] ||
    { echo "$function: has the help text '$help'"; exit 1; }
done
