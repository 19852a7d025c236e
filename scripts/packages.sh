# Debian packages by what they are needed for, and the one way to install what is missing. Sourced by the scripts.

qs_build_packages=(g++ cmake ninja-build pkg-config
  libjpeg62-turbo-dev libpng-dev libtiff-dev libqpdf-dev libcli11-dev nlohmann-json3-dev libpoppler-cpp-dev
  libleptonica-dev liblcms2-dev libavahi-client-dev libusb-1.0-0-dev libtomlplusplus-dev)
qs_test_packages=(libgtest-dev libbenchmark-dev libumockdev-dev qpdf poppler-utils)
qs_check_packages=(clang clang-format clang-tidy libclang-rt-14-dev)

# Installs the packages that are not there yet; as root directly, otherwise with sudo.
qs_install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing ${missing[*]}"
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Please install as root: apt-get install ${missing[*]}" >&2; return 1; }
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update -q >/dev/null
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" \
    >/dev/null
}

# Configures and builds a preset, quietly unless something is wrong.
qs_build() {
  local preset=$1 log
  shift
  mkdir -p build
  log=build/$preset.log
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" "$@"; } >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "The $preset build failed; the whole of it is in $log." >&2
    return 1
  fi
}
