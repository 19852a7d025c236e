#!/usr/bin/env bash
# Installs a build into a folder of its own and uses it as strangers do: builds host programs against it with CMake and
# with pkg-config, scans with its programs, and does all of it again after the folder has been moved.
#
#   install_test.sh BUILD SOURCE LIBDIR VERSION CMAKE GENERATOR CXX
set -euo pipefail

build=$1 source=$2 libdir=$3 version=$4 cmake=$5 generator=$6 cxx=$7
hosts=$source/tests/install/host
warnings=(-std=c++20 -Wall -Wextra -Wconversion -Wpedantic -Wshadow -Werror)
modules=(QsDeviceAccs.so QsScanDecode.so QsJpegDecode.so QsImageEnhance.so)
documents=(./bin/qs-virtual-scanner ./bin/qsscan
  ./share/bash-completion/completions/qsscan
  ./share/doc/qsscan/LICENSE ./share/doc/qsscan/qsscan.md ./share/doc/qsscan/virtual-scanner.md
  ./share/man/man1/qs-virtual-scanner.1 ./share/man/man1/qsscan.1
  ./share/qs-virtual-scanner/profiles/classic.json ./share/qs-virtual-scanner/profiles/flatbed.json
  ./share/qs-virtual-scanner/profiles/office.json
  ./share/qsscan/70-qsscan-usb.rules.template)
unset LD_LIBRARY_PATH QSSCAN_LIBRARY QSSCAN_DEVICE DESTDIR PKG_CONFIG_PATH
export XDG_CONFIG_HOME=/dev/null/none XDG_STATE_HOME=/dev/null/none

work=$(mktemp -d)
scanner=
clean_up() {
  if [ -n "$scanner" ]; then
    kill "$scanner" 2>/dev/null || true
    wait "$scanner" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap clean_up EXIT

fail() {
  echo "FAILED: $*" >&2
  exit 1
}
quietly() { # quietly SENTENCE COMMAND...
  local sentence=$1
  shift
  "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2; fail "$sentence"; }
  echo "ok: $sentence"
}
expect() { # expect SENTENCE EXPECTED ACTUAL
  [ "$2" = "$3" ] || fail "$1"$'\n'"expected: $2"$'\n'"but got:  $3"
  echo "ok: $1"
}

files_in() { (cd "$1" && find . ! -type d | LC_ALL=C sort); }

# What both hosts print when the core has found its module in the folder.
told_from() { printf 'Initialize 0x0\nmodule %s\n' "$(realpath "$1")/$libdir/qsscan/QsDeviceAccs.so"; }

check_layout() { # check_layout PREFIX
  local prefix=$1 private=$1/$libdir/qsscan file link
  for file in "$build"/lib/*.so "$build"/lib/*.so.*; do
    cmp -s "$file" "$private/$(basename "$file")" || fail "$(basename "$file") is not installed as it was built"
  done
  echo "ok: core and modules lie together, byte for byte what the other tests examine"
  for link in libQsScanCoreApi.so libQsScanCoreApi.so.1; do
    expect "$link leads into the private folder" "qsscan/$link" "$(readlink "$prefix/$libdir/$link")"
    expect "$link leads to the core" "$(realpath "$private/$link")" "$(realpath "$prefix/$libdir/$link")"
  done
  quietly "the headers are those of include/" diff -r "$source/include" "$prefix/include/qsscan"
  expect "programs, documents and data are all there, and nothing else" "$(printf '%s\n' "${documents[@]}")" \
    "$(files_in "$prefix" | grep -v -e "^./$libdir/" -e '^./include/')"
  quietly "the licence is the project's" cmp "$source/LICENSE" "$prefix/share/doc/qsscan/LICENSE"
  quietly "the rules for USB are the template" cmp "$source/packaging/70-qsscan-usb.rules.template" \
    "$prefix/share/qsscan/70-qsscan-usb.rules.template"
  for file in "$prefix"/bin/* "$private/libQsScanCoreApi.so" "${modules[@]/#/$private/}"; do
    readelf -d "$file" >"$work/dynamic"
    ! grep -E 'RPATH|RUNPATH' "$work/dynamic" || fail "$(basename "$file") names folders to load from"
  done
  echo "ok: no program or library names folders to load from"
  ! grep -rIlF -e "$build" -e "$source" -e "$prefix" "$prefix" || fail "these files name the build tree or the prefix"
  echo "ok: no text file names the build tree or the prefix"
}

# Each header is the first one of a program of its own, and may be included twice.
check_headers() { # check_headers PREFIX
  local header
  while read -r header; do
    printf '#include <%s>\n#include <%s>\nint main() {}\n' "$header" "$header" >"$work/header.cpp"
    "$cxx" "${warnings[@]}" -fsyntax-only -I"$1/include/qsscan" "$work/header.cpp" ||
      fail "$header does not compile on its own"
  done < <(cd "$1/include/qsscan" && find . -name '*.h' -printf '%P\n' | sort)
  echo "ok: each header compiles on its own"
}

check_cmake_host() { # check_cmake_host PREFIX
  local built=$work/cmake_host
  rm -rf "$built"
  quietly "a CMake project finds the package" "$cmake" -S "$hosts" -B "$built" -G "$generator" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$1"
  expect "it is the one of this prefix" "$1/$libdir/cmake/QsScan" \
    "$(sed -n 's/^QsScan_DIR:[A-Z]*=//p' "$built/CMakeCache.txt")"
  quietly "a CMake project builds" "$cmake" --build "$built"
  expect "its linked host runs" "$(told_from "$1")" "$("$built/linked_host")"
  expect "its loading host runs" "$(told_from "$1")" "$("$built/loading_host" "$1/$libdir/libQsScanCoreApi.so")"
  expect "the linked host asks for the core by its own name" libQsScanCoreApi.so.1 \
    "$(readelf -d "$built/linked_host" | sed -n 's/.*NEEDED.*\[\(libQsScanCoreApi.*\)\]/\1/p')"
}

check_pkg_config_host() { # check_pkg_config_host PREFIX
  local flags
  export PKG_CONFIG_PATH=$1/$libdir/pkgconfig
  read -r -a flags < <(pkg-config --cflags --libs qsscan)
  quietly "a plain compiler line builds with pkg-config" \
    "$cxx" "${warnings[@]}" "$hosts/linked_host.cpp" -o "$work/plain_host" "${flags[@]}"
  expect "it runs" "$(told_from "$1")" "$(LD_LIBRARY_PATH=$1/$libdir "$work/plain_host")"
  expect "pkg-config knows the version" "$version" "$(pkg-config --modversion qsscan)"
  expect "pkg-config knows the modules' folder" "$(realpath "$1/$libdir/qsscan")" \
    "$(realpath "$(pkg-config --variable=moduledir qsscan)")"
}

# A whole scan: it needs every module but the one for enhancement, and the scanner's profile.
check_programs() { # check_programs PREFIX
  local device
  "$1/bin/qs-virtual-scanner" --listen 127.0.0.1:0 "$source/examples/form.png" >"$work/listening" 2>"$work/scanner.log" &
  scanner=$!
  for _ in $(seq 100); do
    ! grep -q listening "$work/listening" || break
    kill -0 "$scanner" 2>/dev/null || { cat "$work/scanner.log" >&2; fail "the virtual scanner starts"; }
    sleep 0.1
  done
  device=$(sed -n 's/^listening on \([0-9.:]*\).*/\1/p' "$work/listening")
  quietly "the installed programs scan a page" \
    "$1/bin/qsscan" scan -d "$device" --mode gray --resolution 100 -o "$work/page.png"
  expect "it is a picture" $'\x89PNG' "$(head -c 4 "$work/page.png")"
  mkdir -p "$1/etc/qsscan"
  printf '[device.desk]\nname = "%s"\n' "$device" >"$1/etc/qsscan/qsscan.conf"
  expect "the program reads the configuration of its own prefix" desk "$("$1/bin/qsscan" list --names --no-search)"
  quietly "a configured name is a device" "$1/bin/qsscan" info -d desk
  rm -r "$1/etc"
  kill "$scanner"
  wait "$scanner" 2>/dev/null || true
  scanner=
}

first=$work/first second=$work/elsewhere/second
quietly "the build installs" "$cmake" --install "$build" --prefix "$first"
check_layout "$first"
check_headers "$first"
check_cmake_host "$first"
check_pkg_config_host "$first"
check_programs "$first"

quietly "the build installs into a staging folder" \
  env DESTDIR="$work/stage" "$cmake" --install "$build" --prefix /opt/qsscan
expect "the staging folder holds the same files" "$(files_in "$first")" "$(files_in "$work/stage/opt/qsscan")"

mkdir -p "$(dirname "$second")"
mv "$first" "$second"
echo "moved"
expect "the linked host runs on" "$(told_from "$second")" "$(LD_LIBRARY_PATH=$second/$libdir "$work/cmake_host/linked_host")"
expect "the loading host runs on" "$(told_from "$second")" "$(LD_LIBRARY_PATH=$second/$libdir "$work/cmake_host/loading_host")"
check_cmake_host "$second"
check_pkg_config_host "$second"
check_programs "$second"
