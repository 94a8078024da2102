# Sourced by the entry points at the top of the repository, with that as the working directory.
. scripts/packages.sh

say() { printf '%s\n' "$*" >&2; }
die() { say "$*"; exit 1; }

# Installs those of the given Debian packages that are missing. Asks for nothing when all are there.
ensure_packages() {
  local missing=() package
  command -v dpkg-query >/dev/null || die "This is not a Debian system. Quorlo needs what these Debian 12 packages hold: $*"
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "Missing packages, and neither root nor sudo to install them. As root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  say "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -q >&2 || die "The package lists could not be fetched (apt-get update)."
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" >&2 ||
    die "Packages could not be installed. Try: apt-get install ${missing[*]}"
}

# build <preset> [target...]: configures and builds below build/<preset>; all targets when none is named.
build() {
  local preset=$1
  shift
  cmake --preset "$preset" >&2 || die "The build could not be configured (preset $preset)."
  cmake --build --preset "$preset" ${1:+--target "$@"} >&2 || die "The build failed (preset $preset)."
}
