#!/usr/bin/env bash
# usage: abi.sh LIBRARY PACKAGING_DIR [--update]
# The library's binary interface is the kept one: the names that it exports in libsai1.symbols, and the types with which
# they are used in libsai1.abi. With --update, the kept one becomes the library's, which needs debug information.
set -euo pipefail
library=$(realpath "$1") packaging=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# What changes without the interface is left out: line numbers, and the folders before src.
abidw --exported-interfaces-only --drop-undefined-syms --no-elf-needed --no-architecture --no-corpus-path \
  --no-comp-dir-path --no-show-locs --type-id-style hash "$library" | sed -E "s|path='[^']*/src/|path='src/|" >abi
functions=$(grep -c '<function-decl ' abi || true)
[ "$functions" -ge 200 ] || { echo "$library: $functions functions are described; has it debug information?"; exit 1; }

"${NM:-nm}" --dynamic --defined-only "$library" | awk '{print $3}' | sort >names

if [ "${3:-}" = --update ]; then
  cp abi "$packaging/libsai1.abi"
  mkdir debian
  cp "$packaging/control" "$packaging/changelog" debian
  dpkg-gensymbols -plibsai1 -P. -e"$library" -I"$packaging/libsai1.symbols" -t -Osymbols >/dev/null
  # A name that went before its first version was out leaves nothing behind; dpkg-gensymbols would keep it.
  awk 'NR == FNR {exported[$1]; next} !/^ / || substr($1, 1, index($1, "@") - 1) in exported' names symbols \
    >"$packaging/libsai1.symbols"
  exit 0
fi

# What lies in a FILE is the C library's own.
printf '[suppress_type]\n  name = _IO_FILE\n' >suppressions
same=yes
abidiff --suppressions suppressions "$packaging/libsai1.abi" abi || same=no
sed -n 's/^ \(.*\)@.*/\1/p' "$packaging/libsai1.symbols" | diff - names || same=no
[ $same = no ] || exit 0
echo "The binary interface of libsai.so is not the kept one. If that is meant, see CONTRIBUTING.md."
exit 1
