#!/usr/bin/env bash
# usage: packages.sh ARCHITECTURE [--twice]
# Builds the Debian packages of an architecture. Lintian finds nothing in them, they install, each alone where that is
# meant, they serve a program, and with --twice: a second build in another place gives the same bytes.
set -euo pipefail
cd "$(dirname "$0")/../.."
architecture=$1 twice=${2:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
eval "$(dpkg-architecture --host-arch "$architecture" --force --print-set 2>/dev/null)"
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
run=()
cmake=(cmake)
if [ "$architecture" != "$DEB_BUILD_ARCH" ]; then
  run=("qemu-$DEB_HOST_GNU_CPU")
  cmake+=(--toolchain "$PWD/cmake/$DEB_HOST_GNU_TYPE.cmake")
fi

fail() {
  echo "$1" >&2
  exit 1
}

scripts/package --arch "$architecture"
packages=$PWD/build/packages
deb() { echo "$packages/$1_"*"_$architecture.deb"; }
debs=("$packages"/*_"$architecture".deb)
[ ${#debs[@]} -eq 7 ] || fail "not seven packages: ${debs[*]}"

echo "== $architecture: lintian"
lintian --display-info --fail-on error,warning,info "${debs[@]}"
tests/project/abi.sh "build/package-$architecture/src/libsai.so" packaging

echo "== $architecture: install"
root=$work/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
# Of what ours depend on, there is what this machine has.
for package in "${debs[@]}"; do dpkg-deb --field "$package" Depends; done |
  tr ',' '\n' | awk '{print $1}' | grep -Ev '^(libsai|swsdk)' | sort -u |
  sed "/:any\$/! s/\$/:$architecture/; s/:any\$//" | xargs dpkg-query --status >"$root/var/lib/dpkg/status"
printf '%s\n' "$DEB_BUILD_ARCH" "$architecture" | uniq >"$root/var/lib/dpkg/arch"
as_root=(command)
[ "$(id -u)" -eq 0 ] || as_root=(fakeroot)
dpkg() {
  # The folder has no shell of its own for what packages do when they go.
  "${as_root[@]}" dpkg --root="$root" --force-script-chrootless "$@" >"$work/dpkg.log" 2>&1 ||
    fail "dpkg $*: $(cat "$work/dpkg.log")"
}
dpkg --install "$(deb libsai1)"
dpkg --install "$(deb swsdk-virtual)"
dpkg --install "$(deb swsdk-recorder)"
dpkg --install "$(deb libsai-dev)" "$(deb libsai1-dbgsym)" "$(deb swsdk-virtual-dbgsym)" "$(deb swsdk-recorder-dbgsym)"
libraries=$root/usr/lib/$DEB_HOST_MULTIARCH
examples=$root/usr/share/doc/libsai-dev/examples

while read -r package file; do
  owner=$(command dpkg --root="$root" --search "$file" 2>/dev/null) || fail "no package has $file"
  [[ "$owner" =~ ^$package(:.*)?:\  ]] || fail "$file should be in $package, not $owner"
done <<end
libsai1 /usr/lib/$DEB_HOST_MULTIARCH/libsai.so
libsai-dev /usr/include/sai.h
libsai-dev /usr/lib/$DEB_HOST_MULTIARCH/pkgconfig/sai.pc
libsai-dev /usr/lib/$DEB_HOST_MULTIARCH/cmake/sai/sai-config.cmake
libsai-dev /usr/share/doc/libsai-dev/README.md
libsai-dev /usr/share/doc/libsai-dev/libsai.html
libsai-dev /usr/share/doc/libsai-dev/docs/messages.md
libsai-dev /usr/share/doc/libsai-dev/docs/tasks/restart.md
libsai-dev /usr/share/man/man7/sai-restart.7.gz
libsai-dev /usr/share/doc/libsai-dev/examples/python/test_access_switch.py
libsai-dev /usr/share/man/man3/sai_vlan_create.3.gz
libsai-dev /usr/share/man/man7/sai.7.gz
libsai-dev /usr/share/man/man7/swsdk.7.gz
libsai-dev /usr/share/man/man1/sai-messages.1.gz
libsai-dev /usr/bin/sai-messages
swsdk-recorder /usr/lib/$DEB_HOST_MULTIARCH/libswsdk-recorder.so
swsdk-recorder /usr/share/man/man7/swsdk-recorder.7.gz
swsdk-virtual /usr/bin/saish
swsdk-virtual /usr/bin/swsdk-switch
swsdk-virtual /usr/bin/swsdk-run
swsdk-virtual /usr/bin/swsdk-sweep
swsdk-virtual /usr/include/bcm/vlan.h
swsdk-virtual /usr/include/swsdk/journal.h
swsdk-virtual /usr/lib/$DEB_HOST_MULTIARCH/libswsdk.so
swsdk-virtual /usr/lib/python3/dist-packages/sai_virtual/__init__.py
swsdk-virtual /usr/lib/python3/dist-packages/sai_virtual/__init__.pyi
swsdk-virtual /usr/lib/python3/dist-packages/sai_virtual/py.typed
swsdk-virtual /usr/share/man/man1/saish.1.gz
swsdk-virtual /usr/share/man/man1/swsdk-switch.1.gz
swsdk-virtual /usr/share/man/man1/swsdk-run.1.gz
swsdk-virtual /usr/share/man/man1/swsdk-sweep.1.gz
end
for file in "$libraries/libsai.so" "$libraries/libswsdk.so" "$root/usr/bin/saish" "$root/usr/bin/swsdk-switch"; do
  grep -qE ' \.(symtab|debug_info)' <<<"$(readelf --sections --wide "$file")" && fail "$file is not stripped"
  build_id=$(readelf --notes "$file" | sed -n 's/.*Build ID: //p')
  debug=$root/usr/lib/debug/.build-id/${build_id:0:2}/${build_id:2}.debug
  grep -q ' \.debug_info' <<<"$(readelf --sections --wide "$debug" 2>/dev/null)" ||
    fail "$file: its debug file has no debug information"
  readelf --dynamic "$file" | grep -E '\((RPATH|RUNPATH)\)' && fail "$file has a run path"
done
python3 -B docs/tools/links.py --installed "$root/usr/share/doc/libsai-dev" ||
  fail "the links above lead to files that no package has"
grep -rl "$PWD" "$root/usr" && fail "the files above name the folder that they were built in"

# build NAME FLAG...: the C example against the installed packages, by pkg-config and by the CMake package.
export PKG_CONFIG_LIBDIR=$libraries/pkgconfig PKG_CONFIG_SYSROOT_DIR=$root
export PKG_CONFIG_ALLOW_SYSTEM_CFLAGS=1 PKG_CONFIG_ALLOW_SYSTEM_LIBS=1
build() {
  local name=$1
  shift
  # shellcheck disable=SC2046  # words
  "$DEB_HOST_GNU_TYPE-gcc" -std=c99 -Wall -Wextra -Werror "$@" -o "$work/$name-pkg-config" "$examples/vlans.c" \
    $(pkg-config --cflags --libs sai)
  "${cmake[@]}" -S tests/project/consumer -B "$work/$name" -Dsai_DIR="$libraries/cmake/sai" \
    -DEXAMPLE="$examples/vlans.c" -DCMAKE_C_FLAGS="$*" -DCMAKE_SKIP_RPATH=ON >/dev/null
  cmake --build "$work/$name" >/dev/null
}

export LD_LIBRARY_PATH=$libraries
build virtual
for program in "$work/virtual-pkg-config" "$work/virtual/consumer"; do
  "${run[@]}" "$program" >"$work/out"
  grep -q 'bcm_vlan_create(0, 10) = 0' "$work/out" || fail "$program printed: $(cat "$work/out")"
done
"${run[@]}" "$root/usr/bin/saish" "$examples/vlans.sai" >/dev/null
SWSDK_RECORD=$work/run.rec LD_PRELOAD=$libraries/libswsdk-recorder.so "${run[@]}" "$work/virtual-pkg-config" >/dev/null
grep -q '^call bcm_vlan_create(0, 10) = 0 @' "$work/run.rec" || fail "recorded was: $(cat "$work/run.rec")"
"${run[@]}" "$root/usr/bin/swsdk-switch" "$examples/vlans.sai" --port "1=pcap::$work/sent.pcap" >/dev/null
[ -s "$work/sent.pcap" ] || fail "swsdk-switch wrote no file of frames"
"$root/usr/bin/sai-messages" find "Failed to create vlan 5000: Invalid parameter" >"$work/out"
if [ ${#run[@]} -eq 0 ]; then
  PYTHONPATH=$root/usr/lib/python3/dist-packages python3 -B -c '
import sai_virtual as sai
with sai.Chip(), sai.Journal() as journal:
    sai.sai_vlan_create(0, 10)
    assert journal.lines()[0] == "bcm_vlan_create(0, 10) = 0", journal.lines()'
  PYTHONPATH=$root/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1 pytest-3 -q -p no:cacheprovider \
    "$examples/python" >"$work/out" || fail "the tests of examples/python printed: $(cat "$work/out")"
  "$root/usr/bin/swsdk-run" -- "$work/virtual-pkg-config" >"$work/out"
  grep -q 'bcm_vlan_create(0, 10) = 0' "$work/out" || fail "swsdk-run printed: $(cat "$work/out")"
  "$root/usr/bin/swsdk-sweep" --only bcm_vlan_create -- "$work/virtual-pkg-config" >"$work/out" 2>&1 ||
    fail "swsdk-sweep printed: $(cat "$work/out")"
  status=0
  PATH=$root/usr/bin:$PATH "$examples/two-vlans/run" >"$work/out" 2>&1 || status=$?
  [ $status -eq 0 ] || [ $status -eq 77 ] || fail "examples/two-vlans/run printed: $(cat "$work/out")"
fi

# A vendor's SDK in place of the virtual chip, in folders of its own.
mkdir "$work/vendor"
cp -r "$root/usr/include" "$libraries/libswsdk.so" "$work/vendor"
rm "$work/vendor/include/sai.h"
module=$root/usr/lib/python3/dist-packages/sai_virtual
mkdir "$module/__pycache__"
touch "$module/__pycache__/__init__.cpython-311.pyc"  # as Python leaves it when root has used the module
dpkg --purge swsdk-virtual-dbgsym swsdk-virtual
[ ! -e "$module" ] || fail "purged, and still there: $(find "$module")"
"${run[@]}" "$work/virtual/consumer" >/dev/null 2>"$work/err" && fail "a program ran without any Chip SDK"
grep -q 'libswsdk.so: cannot open' "$work/err" || fail "without a Chip SDK, a program said: $(cat "$work/err")"
export LD_LIBRARY_PATH=$libraries:$work/vendor
build vendor -I"$work/vendor/include" -L"$work/vendor"
for program in "$work/vendor-pkg-config" "$work/vendor/consumer"; do "${run[@]}" "$program" >/dev/null; done

if [ "$twice" = --twice ]; then
  echo "== $architecture: the same again"
  unset LD_LIBRARY_PATH "${!PKG_CONFIG_@}"
  mkdir "$work/elsewhere"
  git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$work/elsewhere"
  (umask 077 && TZ=Pacific/Chatham LC_ALL=C HOME=$work CCACHE_DISABLE=1 "$work/elsewhere/scripts/package" \
    --arch "$architecture")
  for package in "${debs[@]}"; do
    cmp "$package" "$work/elsewhere/build/packages/$(basename "$package")"
  done
fi
echo "== $architecture: the packages are sound"
