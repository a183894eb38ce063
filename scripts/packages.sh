# The Debian packages that each command needs. Sourced by ./run, ./test and scripts.
# shellcheck shell=bash

build_packages=(g++ cmake ninja-build pkg-config qt6-base-dev qt6-svg-dev libutf8proc-dev
  libplist-dev libcurl4-openssl-dev nlohmann-json3-dev libsqlite3-dev libxcb1-dev
  libcpp-httplib-dev libssl-dev libcli11-dev libglib2.0-dev zlib1g-dev
  libmpdclient-dev libtag1-dev)
# Debian 12 has LayerShellQt for Qt 5 only.
if [[ $(. /etc/os-release && echo "${VERSION_ID-}") != 12 ]]; then
  build_packages+=(liblayershellqtinterface-dev libwayland-bin libwayland-dev wayland-protocols)
fi
run_packages=(qt6-wayland xdg-utils ca-certificates dbus fonts-dejavu-core fonts-vlgothic)
test_packages=(libgtest-dev libgmock-dev mpv mpv-mpris playerctl xvfb xdotool x11-utils x11-xserver-utils thunar
  ffmpeg lld)
thorough_packages=(mpc mpd mpdris2 quodlibet gstreamer1.0-plugins-base gstreamer1.0-plugins-good python3-dbus
  qt6-wayland sway at-spi2-core python3-pyatspi pcmanfm firefox-esr)
bench_packages=(libbenchmark-dev lld mpv mpv-mpris xvfb xauth ffmpeg python3-dbus python3-gi python3-pil)
fuzz_packages=(clang libclang-rt-dev)
# debian/control has one list for both releases.
package_packages=(appstream debhelper desktop-file-utils dpkg-dev lintian mandoc
  liblayershellqtinterface-dev libwayland-bin libwayland-dev wayland-protocols)
release_packages=(debootstrap)
lint_packages=(clang clang-format clang-tidy)

# Installs those of the named packages that are missing. Ends the program with one message that
# names them when that is not possible.
install_missing() {
  local missing=() name
  for name in "$@"; do
    dpkg-query -W -f='${db:Status-Abbrev}' "$name" 2>/dev/null | grep -q '^ii' || missing+=("$name")
  done
  ((${#missing[@]} == 0)) && return

  local apt=()
  if ((EUID == 0)); then
    apt=(env)
  elif command -v sudo >/dev/null && { [[ -t 0 ]] || sudo -n true 2>/dev/null; }; then
    apt=(sudo env)
  fi
  if ! command -v apt-get >/dev/null || ((${#apt[@]} == 0)); then
    echo "Please install these packages first: ${missing[*]}" >&2
    exit 1
  fi
  echo "Installing ${missing[*]}" >&2
  apt+=(DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300)
  if ! { "${apt[@]}" install -y --no-install-recommends "${missing[@]}" ||
    { "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; }; } \
    >/dev/null 2>"${TMPDIR:-/tmp}/virelune-install.$$"; then
    cat "${TMPDIR:-/tmp}/virelune-install.$$" >&2
    rm -f "${TMPDIR:-/tmp}/virelune-install.$$"
    echo "Could not install these packages; please install them by hand: ${missing[*]}" >&2
    exit 1
  fi
  rm -f "${TMPDIR:-/tmp}/virelune-install.$$"
}

# Configures a preset and builds the named targets, quietly unless something fails. What ccache, where
# it is installed, has compiled before is not compiled again.
build_preset() {
  local preset=$1 log status=0
  shift
  if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  log=$(mktemp)
  { cmake --preset "$preset" && cmake --build "build/$preset" --target "$@"; } >"$log" 2>&1 || status=$?
  if ((status != 0)); then
    cat "$log" >&2
  fi
  rm -f "$log"
  return "$status"
}
