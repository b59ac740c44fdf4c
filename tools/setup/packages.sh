# Which Debian packages each way of building needs, and one function that installs what is missing.
# Sourced by ./run and ./test from the root of the checkout.

# Checkouts share compiled objects wherever they lie.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=true

BUILD_PACKAGES="g++ cmake ninja-build ccache pkg-config libasound2-dev libfftw3-dev nlohmann-json3-dev libcli11-dev
  libsndfile1-dev libprotobuf-dev protobuf-compiler libgtest-dev libgmock-dev libbenchmark-dev"
RUN_PACKAGES="jq sox"
FUZZ_PACKAGES="clang-14 libclang-rt-14-dev"
ARM64_PACKAGES="g++-aarch64-linux-gnu qemu-user libne10-dev:arm64 libasound2-dev:arm64 libsndfile1-dev:arm64
  libprotobuf-dev:arm64 libgtest-dev:arm64 libgmock-dev:arm64 libbenchmark-dev:arm64"

# A name without an architecture means this machine's own, whatever other architectures are installed beside it.
missing_packages() {
  local package name architecture
  for package in "$@"; do
    name=${package%%:*}
    architecture=$(dpkg --print-architecture)
    [ "$name" = "$package" ] || architecture=${package#*:}
    dpkg-query -W -f='${Architecture} ${db:Status-Status}\n' "$name" 2>/dev/null |
      grep -qxE "(all|$architecture) installed" || printf '%s ' "$package"
  done
}

# install_packages PACKAGE...: nothing to do when all are there; status 2 where the right to install is lacking.
install_packages() {
  local missing sudo=
  missing=$(missing_packages "$@")
  [ -z "$missing" ] && return 0
  if [ "$(id -u)" != 0 ]; then
    if command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
      sudo=sudo
    elif command -v sudo >/dev/null && [ -t 0 ]; then
      sudo=sudo
    else
      echo "Packages are missing and installing them needs root or sudo. As root, run:" >&2
      echo "  apt-get update && apt-get install -y --no-install-recommends $missing" >&2
      return 2
    fi
  fi
  echo "Installing: $missing"
  $sudo apt-get update -qq && $sudo env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends $missing >/dev/null
}
