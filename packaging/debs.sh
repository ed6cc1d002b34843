#!/usr/bin/env bash
# usage: debs.sh STAGING VERSION OUTPUT
# Makes a Debian package of each folder in STAGING, and one with the debug symbols of its files. The architecture is
# DEB_HOST_ARCH, or this machine's. Packed files have the time SOURCE_DATE_EPOCH, which scripts/package sets.
set -euo pipefail
staging=$1 version=$2 output=$(realpath "$3")
packaging=$(cd "$(dirname "$0")" && pwd)
export LC_ALL=C.UTF-8
eval "$(dpkg-architecture --print-set 2>/dev/null)"
umask 022

cd "$staging"
packages=(libsai1 libsai-dev swsdk-virtual swsdk-recorder)
mkdir debian
cp "$packaging/control" "$packaging/changelog" debian
[ "$(dpkg-parsechangelog --show-field Version)" = "$version" ] ||
  { echo "packaging/changelog does not begin with version $version" >&2; exit 1; }

# make_deb FOLDER ARGUMENT...: the package in FOLDER, with what dpkg-gencontrol makes of the arguments.
make_deb() {
  local folder=$1
  shift
  chmod -R u=rwX,go=rX "$folder"
  (cd "$folder" && find usr -type f -print0 | sort -z | xargs -0 md5sum >DEBIAN/md5sums)
  dpkg-gencontrol -P"$folder" "$@"
  # dpkg-deb sets newer files to that time, and leaves older ones with the time of the checkout.
  find "$folder" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
  dpkg-deb --root-owner-group --threads-max=1 -Zxz --build "$folder" "$output" >/dev/null
}

for package in "${packages[@]}"; do
  documents=$package/usr/share/doc/$package
  mkdir -p "$package/DEBIAN" "$documents"
  cp "$packaging/copyright" "$documents"
  gzip -9n <"$packaging/changelog" >"$documents/changelog.gz"
  find "$package" -path '*/man/*' -type f -exec gzip -9n {} +
  if [ -e "$packaging/$package.lintian-overrides" ]; then
    install -D -m 644 "$packaging/$package.lintian-overrides" "$package/usr/share/lintian/overrides/$package"
  fi
  if [ -e "$packaging/$package.doc-base" ]; then
    install -D -m 644 "$packaging/$package.doc-base" "$package/usr/share/doc-base/$package.libsai"
  fi
  if [ -e "$packaging/$package.prerm" ]; then
    install -m 755 "$packaging/$package.prerm" "$package/DEBIAN/prerm"
  fi
done

# A change of the exported names fails here until the symbols file has it.
dpkg-gensymbols -plibsai1 -Plibsai1 -c4 -I"$packaging/libsai1.symbols" -Olibsai1/DEBIAN/symbols \
  -e"$(echo libsai1/usr/lib/*/libsai.so)" >symbols.diff || { cat symbols.diff >&2; exit 1; }

for package in "${packages[@]}"; do
  # Scripts have neither symbols nor libraries.
  mapfile -t files < <(find "$package/usr" -type f \( -path '*/bin/*' -o -name '*.so' \) \
    -exec sh -c '[ "$(head -c 4 "$1")" = "$(printf "\177ELF")" ]' - {} \; -print | sort)
  build_ids=()
  for file in "${files[@]}"; do
    build_id=$(readelf --notes "$file" | sed -n 's/.*Build ID: //p')
    debug=$package-dbgsym/usr/lib/debug/.build-id/${build_id:0:2}/${build_id:2}.debug
    mkdir -p "$(dirname "$debug")"
    "$DEB_HOST_GNU_TYPE-objcopy" --only-keep-debug "$file" "$debug"
    "$DEB_HOST_GNU_TYPE-strip" --strip-unneeded --remove-section=.comment --remove-section=.note "$file"
    chmod a-x "$debug"
    "$DEB_HOST_GNU_TYPE-objcopy" --add-gnu-debuglink="$debug" "$file"
    build_ids+=("$build_id")
  done

  if [ ${#files[@]} -gt 0 ]; then
    # No package may depend on the virtual chip for its libswsdk.so, which has no version to depend on.
    dpkg-shlibdeps -Slibsai1 -Sswsdk-virtual --ignore-missing-info -T"$package.substvars" "${files[@]}" 2>shlibdeps.log ||
      { cat shlibdeps.log >&2; exit 1; }
    echo "activate-noawait ldconfig" >"$package/DEBIAN/triggers"
    # In debhelper's form, which Debian's tools know.
    mkdir -p "$package-dbgsym/DEBIAN" "$package-dbgsym/usr/share/doc"
    ln -s "$package" "$package-dbgsym/usr/share/doc/$package-dbgsym"
    make_deb "$package-dbgsym" -p"$package" -T"$package.substvars" -UPre-Depends -URecommends -USuggests -UProvides \
      -UConflicts -DPackage="$package-dbgsym" -DDepends="$package (= $version)" -DSection=debug \
      -DDescription="debug symbols for $package" -DAuto-Built-Package=debug-symbols -DBuild-Ids="${build_ids[*]}"
  fi
  make_deb "$package" -p"$package" -T"$package.substvars"
done
