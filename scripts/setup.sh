#!/usr/bin/env bash
# Installs what the kit, its tests and its checks need on Debian 12; with `bench`, what the benchmarks need beyond that.
# Safe to run again: it does nothing once everything is there.
set -euo pipefail

packages=(
  # building
  g++ cmake ninja-build ccache pkg-config
  libboost1.81-dev libcurl4-openssl-dev libssl-dev libsimdjson-dev nlohmann-json3-dev libhowardhinnant-date-dev
  zlib1g-dev tzdata libcli11-dev libsecret-1-dev
  # tests
  libgtest-dev libgmock-dev nginx-light openssl dbus gnome-keyring
  # examples
  libspdlog-dev
  # the wider checks
  clang-19 libclang-rt-19-dev clang-format-14 clang-tidy-14 doxygen python3
)
[ "${1:-}" != bench ] || packages+=(curl libnginx-mod-http-echo rapidjson-dev valgrind)

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
