#!/usr/bin/env bash
# Each way in which a host gets the kit: a small program outside the tree is built in that way and run. One line a way.
# Objects of the kit come from ccache where it has them: flags and folder depths are those of the preset `dev`.
#   tests/package/run.sh            every way
#   tests/package/run.sh WAY ...    these, of:
ways=(static shared symbols incomplete pkg-config-static pkg-config-shared add_subdirectory FetchContent)
set -euo pipefail
cd "$(dirname "$0")/../.."

case "${1:-}" in -h | --help) sed -n '2,5s/^# \{0,1\}//p' "$0" && echo "  ${ways[*]}" && exit 0 ;; esac
[ $# -eq 0 ] || ways=("$@")

kit=$PWD
export CCACHE_BASEDIR=$kit CCACHE_NOHASHDIR=1 CMAKE_GENERATOR=Ninja
[ ! -d /usr/lib/ccache ] || PATH=/usr/lib/ccache:$PATH # no launcher in CMake, so that one that leaks is seen
outside=$(mktemp -d)
trap 'rm -rf "$outside"' EXIT
cp -r tests/package/consumer "$outside"
as_dev=(-DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE=Debug "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g1" -DCMAKE_CXX_EXTENSIONS=OFF
  -DCMAKE_COMPILE_WARNING_AS_ERROR=ON)

configure() { rm -rf "$2" && cmake -S "$1" -B "$2" "${@:3}"; }
build() { cmake --build "$1" -j 2; }

# Installs the kit, static or shared, and moves it away from where it was installed.
install_kit() {
  local kind=$1 shared=OFF prefix=$outside/$1
  [ ! -d "$prefix" ] || return 0
  [ "$kind" = static ] || shared=ON
  configure . "build/package-$kind" "${as_dev[@]}" -DBUILD_SHARED_LIBS=$shared \
    -DCMAKE_CXX_COMPILER_LAUNCHER= -DCMAKE_INSTALL_LIBDIR=lib -DZVAPIKIT_TESTS=OFF -DZVAPIKIT_TOOLS=OFF \
    -DZVAPIKIT_EXAMPLES=OFF
  build "build/package-$kind"
  DESTDIR=$outside/staged cmake --install "build/package-$kind" --prefix "/$kind"
  mv "$outside/staged/$kind" "$prefix"
}

find_package() {
  install_kit "$1"
  configure "$outside/consumer" "$outside/find-$1" -DCMAKE_CXX_COMPILER=g++ -DWAY=find_package \
    -DCMAKE_PREFIX_PATH="$outside/$1"
  CCACHE_BASEDIR=$outside build "$outside/find-$1"
  "$outside/find-$1/consumer"
}
static() { find_package static; }
shared() { find_package shared; }

# What the shared libraries show: their names, every public class, and nothing else of ours or of what they are built
# on. What the compiler makes of templates of the standard library and of Asio is weak, and shared with the host.
symbols() {
  install_kit shared
  local library file
  for library in zvapikit zvapikit_emulator; do
    file=$outside/shared/lib/lib$library.so
    readelf -d "$file" | grep -F "SONAME" | grep -F "[lib$library.so.1]"
    refuse "undefined symbol" < <(ldd -r "$file" 2>&1)
    nm -D --defined-only -C "$file" | cut -d ' ' -f 2- >"$outside/symbols"
    grep -q "^T ZAK::" "$outside/symbols"
    refuse -Ev '^([VWu] |. ZAK::)' <"$outside/symbols"
    refuse -E '(boost::urls|boost::beast|simdjson|date|nlohmann)::|curl_' <"$outside/symbols"
  done
  find include emulator/include -name '*.hpp' \
    -exec sed -nE 's/^(class|struct) (ZVAPIKIT_API )?(\w+).*[^;]$/ZAK::\3::/p' {} + >"$outside/classes"
  find build/package-shared -name '*.o' -exec readelf -sW {} + | awk '$5 == "GLOBAL" && $6 == "HIDDEN" { print $8 }' |
    c++filt | sed 's/(.*//' >"$outside/hidden"
  [ -s "$outside/classes" ]
  [ -s "$outside/hidden" ]
  refuse -F -f "$outside/classes" "$outside/hidden"
  sed -nE 's/^ZAK::(\w+)$/^[^ \/#].*\\b\1\\(/p' "$outside/hidden" | sort -u >"$outside/functions"
  [ -s "$outside/functions" ]
  refuse -rE -f "$outside/functions" include emulator/include
}
# Prints what grep finds, which is a failure.
refuse() {
  local status=0
  grep "$@" || status=$?
  [ $status -eq 1 ]
}

# What is asked for and not installed is missed by name.
incomplete() {
  install_kit static
  cmake --install build/package-static --component Kit --prefix "$outside/kit-only"
  ! configure "$outside/consumer" "$outside/incomplete" -DWAY=find_package \
    -DCMAKE_PREFIX_PATH="$outside/kit-only" >"$outside/answer" 2>&1
  grep -F "installed here without what was asked for: Emulator" "$outside/answer"
}

pkg-config-static() { use_pkg_config static g++; }
pkg-config-shared() { use_pkg_config shared clang++-19; }
use_pkg_config() {
  install_kit "$1"
  cd "$outside"
  export CCACHE_BASEDIR=$outside PKG_CONFIG_PATH=$outside/$1/lib/pkgconfig
  # shellcheck disable=SC2046 # they are words
  "$2" -std=c++20 -Wall -Wextra -Werror $(pkg-config --cflags zvapikit_emulator) -c consumer/main.cpp -o "$1.o"
  # shellcheck disable=SC2046
  "$2" "$1.o" $(pkg-config --libs zvapikit_emulator) -o "pkg-config-$1"
  LD_LIBRARY_PATH=$1/lib "./pkg-config-$1"
}

add_subdirectory() { as_subproject add_subdirectory; }
FetchContent() { as_subproject FetchContent; }
as_subproject() {
  configure "$outside/consumer" "build/package-$1" "${as_dev[@]}" -DWAY="$1" -DKIT="$kit"
  build "build/package-$1"
  "build/package-$1/consumer"
  cmake --install "build/package-$1" --prefix "$outside/$1"
  [ ! -e "$outside/$1" ]
}

failed=0
for way in "${ways[@]}"; do
  start=$SECONDS
  verdict=passed
  # not `if (...)`: that would switch off errexit inside
  set +e
  (set -e && "$way") >"$outside/$way.log" 2>&1
  [ $? -eq 0 ] || { verdict=FAILED && failed=1; }
  set -e
  echo "$verdict $way ($((SECONDS - start)) s)"
  [ $verdict = passed ] || tail -n 30 "$outside/$way.log" | sed 's/^/    /'
done
exit $failed
