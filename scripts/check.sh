#!/usr/bin/env bash
# The wider checks: the tests under sanitizers on both compilers, formatting, static analysis, and what a host sees of
# the public headers. One line a step; the last line is "N passed, N failed".
#   scripts/check.sh            every step
#   scripts/check.sh STEP ...   these, of:
steps=(asan clang tsan format tidy words snippets layers headers header-cost header-includes macros must-not-compile
  packages reference fuzz)
set -u
cd "$(dirname "$0")/.." || exit

case "${1:-}" in -h | --help) sed -n '2,5s/^# \{0,1\}//p' "$0" && echo "  ${steps[*]}" && exit 0 ;; esac
[ $# -eq 0 ] || steps=("$@")

scripts/setup.sh check || exit
out=build/check
jobs=2
mkdir -p "$out/headers"

# Configures, builds and tests one preset.
preset() { cmake --preset "$1" && cmake --build --preset "$1" -j $jobs && ctest --preset "$1" --no-tests=error; }
asan() { preset asan; }
clang() { preset clang; }
tsan() { preset tsan; }

format() { git ls-files -z -- '*.hpp' '*.cpp' | xargs -0 clang-format-14 --dry-run -Werror; }

tidy() {
  cmake --preset dev >/dev/null || return
  git ls-files -z -- 'src/*.cpp' 'emulator/*.cpp' 'tools/*.cpp' |
    xargs -0 -n 1 -P $jobs clang-tidy-14 --quiet -p build/dev 2>/dev/null
}

# The project explains itself: no reference to papers outside of it, no path of anybody's machine.
words() {
  local papers='\b(the|this) (spec|specification)\b|\bspec\.md\b|\bPart [1-4]\.[1-7]\b' found=0
  git grep -nIiE "$papers" -- . && found=1
  git log --format='%h %s%n%b' | grep -iE "$papers" && found=1
  git grep -nIE '(^|[^A-Za-z0-9_.])/(work|farm)/' -- . && found=1
  return $found
}

# The code in README and guides is compiled elsewhere, and links lead somewhere.
snippets() { scripts/snippets.py; }

# Which modules may include which, as docs/architecture.md draws it. The composition root alone looks upwards.
layers() {
  git grep -nE '#include [<"](zvapikit/)?[a-z]+/[A-Z]' -- 'include/zvapikit/*' 'src/*' ':!src/core/MobileApiClient.cpp' |
    awk -F'[:/<"]' '
      BEGIN {
        allowed["http"] = " json platform "
        allowed["keychain"] = " platform "
        allowed["core"] = " http json keychain platform "
        allowed["model"] = allowed["core"] "core "
        allowed["auth"] = allowed["core"] "core "
        allowed["domains"] = allowed["model"] "model auth "
      }
      /<zvapikit\/Export.hpp>/ { next }
      {
        from = $1 == "include" ? $3 : $2
        match($0, /#include [<"]/)
        to = substr($0, RSTART + RLENGTH)
        sub(/^zvapikit\//, "", to)
        sub(/\/.*/, "", to)
        if (to != from && index(allowed[from], " " to " ") == 0) { print from " includes " to ": " $0; found = 1 }
      }
      END { exit found }'
}

public_headers() { git ls-files -- 'include/*.hpp' 'emulator/include/*.hpp'; }
public_includes=(-Iinclude -Iemulator/include)
name_of() { echo "${1##*include/}"; }

# Compiles each public header alone, once a run: prints what fails, and leaves CPU seconds and files included behind.
compiled=""
compile_headers() {
  [ -z "$compiled" ] || return "$compiled"
  compiled=0
  local header seconds
  : >"$out/headers/cost"
  for header in $(public_headers); do
    if seconds=$(header_cost "$header"); then
      echo "$seconds $header" >>"$out/headers/cost"
    else
      echo "does not compile alone: $header"
      compiled=1
    fi
  done
  return $compiled
}

# CPU seconds of g++ -O0 for a source that includes nothing else.
header_cost() {
  local dependencies=$out/headers/${1//\//_}.d
  local TIMEFORMAT='%U %S'
  { time g++ -std=c++20 -O0 -Wall -Wextra -Wpedantic -Wshadow -Werror "${public_includes[@]}" -MD -MF "$dependencies" \
    -x c++ -c -o "$out/headers/object.o" - <<<"#include <$(name_of "$1")>" 2>"$out/headers/errors"; } 2>"$out/headers/time" ||
    { cat "$out/headers/errors" >&2 && return 1; }
  awk '{ printf "%.2f", $1 + $2 }' "$out/headers/time"
}

headers() { compile_headers; }

# The goal is 2.5 s; the limit leaves room for a slower or busier machine.
header-cost() {
  local limit=5 seconds header failed=0
  compile_headers || return
  while read -r seconds header; do
    awk "BEGIN { exit !($seconds > $limit) }" || continue
    seconds=$({ echo "$seconds" && header_cost "$header" && echo && header_cost "$header"; } | sort -n | sed -n 2p)
    awk "BEGIN { exit !($seconds > $limit) }" && echo "more than $limit s: $seconds $header" && failed=1
  done <"$out/headers/cost"
  sort -rn "$out/headers/cost" | sed -n '1s|^\([0-9.]*\) \(.*\)$|worst: \1 s, \2|p' | tee "$out/note"
  return $failed
}

header-includes() {
  compile_headers || return
  ! grep -lE '/(curl|simdjson|libsecret|libsecret-1|openssl|boost/url)(\.h|/)' "$out"/headers/*.d
}

# A host may have included anything before: its macros must not reach into our declarations.
macros() {
  {
    public_headers | xargs grep -hE '^#include <' | grep -v zvapikit | sort -u
    for macro in 'min(a, b)' 'max(a, b)' 'major(d)' 'minor(d)' 'check(x)' 'verify(x)' 'require(x)' 'assert(x)'; do
      echo "#undef ${macro%%(*}"
      echo "#define $macro clash"
    done
    for macro in ERROR DELETE IN OUT interface small near far nil linux unix None Status Success Always Bool True False \
      DEBUG INFO WARNING TRUE FALSE EOF errno stdin stdout stderr; do
      echo "#undef $macro"
      echo "#define $macro clash !"
    done
    for header in $(public_headers); do echo "#include <$(name_of "$header")>"; done
  } >"$out/macros.cpp"
  g++ -std=c++20 -fsyntax-only -Wall -Wextra -Werror "${public_includes[@]}" "$out/macros.cpp"
}

# Every public symbol is described, and nothing in the descriptions or the pages leads nowhere.
reference() {
  local page
  rm -rf build/reference && mkdir -p build/reference && doxygen docs/Doxyfile || return
  for page in index namespaceZAK classZAK_1_1ContentDomain structZAK_1_1PostDto classZAK_1_1Emulator; do
    [ -s "build/reference/html/$page.html" ] || { echo "no page $page" && return 1; }
  done
}

# Mistakes that the public interface refuses.
must-not-compile() { scripts/must_not_compile.py; }

# The ways in which a host gets the kit.
packages() { tests/package/run.sh; }

# Each fuzzer for a while, from its corpus and from what earlier runs here have learnt.
fuzz() {
  cmake --preset fuzz && cmake --build --preset fuzz -j $jobs || return
  local folder name failed=0
  mkdir -p build/fuzz/findings
  for folder in tests/fuzz/corpus/*; do
    name=${folder##*/}
    mkdir -p "build/fuzz/learnt/$name"
    ASAN_SYMBOLIZER_PATH=$(command -v llvm-symbolizer) "build/fuzz/tests/fuzz/fuzz_$name" -max_total_time=15 \
      -max_len=4096 -timeout=10 -rss_limit_mb=2048 -verbosity=0 -print_final_stats=0 \
      -artifact_prefix="build/fuzz/findings/$name-" "build/fuzz/learnt/$name" "$folder" || failed=1
  done
  return $failed
}

passed=0
failed=0
for step in "${steps[@]}"; do
  declare -F "$step" >/dev/null || { echo "check: no step $step" >&2 && exit 2; }
  rm -f "$out/note"
  start=$SECONDS
  if "$step" >"$out/$step.log" 2>&1; then
    passed=$((passed + 1))
    verdict=passed
  else
    failed=$((failed + 1))
    verdict=FAILED
  fi
  echo "$verdict $step ($((SECONDS - start)) s)$([ -f "$out/note" ] && echo " $(cat "$out/note")")"
  [ $verdict = passed ] || tail -n 60 "$out/$step.log" | sed 's/^/    /'
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
