# The Debian 12 packages that the project needs, by purpose. Sourced by the scripts beside it.
build_packages=(
  g++ cmake ninja-build ccache pkg-config git gettext
  libicu-dev libxcb1-dev libxcb-xtest0-dev libxcb-xinput-dev libxcb-xkb-dev libxcb-xfixes0-dev
  libxcb-res0-dev libxcb-ewmh-dev libxcb-icccm4-dev
  libxkbcommon-dev libxkbcommon-x11-dev uuid-dev
  qt6-base-dev qt6-svg-dev nlohmann-json3-dev libfmt-dev libsndfile1-dev libpulse-dev
  libsqlite3-dev libplist-dev libgtest-dev libgmock-dev jq
)
run_packages=(qt6-qpa-plugins libqt6svg6 xdg-utils xkb-data)
fuzz_packages=(clang-16 libclang-rt-16-dev)
lint_packages=(clang-format clang-tidy)
desktop_packages=(
  xserver-xorg-core xserver-xorg-video-dummy xserver-xorg-dev openbox x11-xserver-utils x11-utils
  x11-xkb-utils xinput dbus dbus-x11 fonts-dejavu-core xterm mousepad featherpad scrot xclip xdotool trayer dunst sqlite3 strace groff-base
)
