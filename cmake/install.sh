# Installs Debian packages that are missing; sourced by the scripts at the top of the tree.
install_Packages() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local as_root=()
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "missing packages: ${missing[*]}; install them, or run this as root" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  if ! command -v apt-get >/dev/null; then
    echo "missing packages: ${missing[*]}; this system has no apt-get, so install them by hand" >&2
    return 1
  fi
  echo "installing ${missing[*]}" >&2
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get update -qq >&2
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
}
