#!/usr/bin/env bash
# Installs on Debian 12 what is missing. Safe to run again: it does nothing once everything is there.
#   scripts/setup.sh [GROUP]    one of these, each with those before it; the default is check
#     kit      the library and the emulator, to build and to link them
#     build    zvkit, the tests and the examples
#     test     what the tests run against; Debian starts nginx's service when it is installed
#     check    the wider checks
#     bench    the benchmarks
set -euo pipefail

kit=(
  g++ cmake ninja-build pkg-config
  libboost1.81-dev libcurl4-openssl-dev libssl-dev libsimdjson-dev nlohmann-json3-dev libhowardhinnant-date-dev
  zlib1g-dev tzdata libsecret-1-dev
)
build=(ccache libcli11-dev libgtest-dev libgmock-dev libspdlog-dev)
test=(nginx-light openssl dbus gnome-keyring)
check=(clang-19 libclang-rt-19-dev clang-format-14 clang-tidy-14 doxygen git python3)
bench=(curl libnginx-mod-http-echo rapidjson-dev valgrind)

packages=()
for group in kit build test check bench; do
  declare -n members=$group
  packages+=("${members[@]}")
  [ $group != "${1:-check}" ] || found=$group
  [ -z "${found:-}" ] || break
done
[ -n "${found:-}" ] || {
  echo "setup: no group $1" >&2
  exit 2
}

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "setup: these packages are missing and there is no sudo to install them: ${missing[*]}" >&2
    exit 1
  }
  as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
