# Installs Debian packages that are missing; sourced by the scripts at the top of the tree. All that
# is said goes to standard error. Fails with a message that says what to do; where there is no
# apt-get it only names the packages, since the tools may be there all the same.
install_Packages() {  # package...
  if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    echo "no apt-get here: install by hand what is missing of (names of Debian): $*" >&2
    return 0
  fi
  local package missing=() as_root=()
  for package in "$@"; do
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
      missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
      echo "packages are missing: run this as root: apt-get install ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "installing ${missing[*]}" >&2
  if ! "${as_root[@]}" apt-get update -qq >&2; then
    echo "apt-get update failed: check the network, then run this again" >&2
    return 1
  fi
  # sudo keeps no variables, so env sets this one behind it.
  if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -qq -y --no-install-recommends "${missing[@]}" >/dev/null; then
    echo "apt-get could not install ${missing[*]}: see its message above" >&2
    return 1
  fi
}
