#!/usr/bin/env bash
# usage: format.sh SOURCE_DIR
# Every source is as .clang-format has it.
set -euo pipefail
cd "$1"
find include src swsdk recorder tools examples tests bench fuzz -name '*.h' -o -name '*.c' -o -name '*.cpp' |
  xargs clang-format --dry-run --Werror
