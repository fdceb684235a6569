#!/usr/bin/env bash
# VelHal's two everyday commands on Debian 12 (installs what is missing first):
#   ./build.sh run [halinfo options]   build everything and print this machine's inventory
#   ./build.sh test                    build everything and run every test
set -euo pipefail
cd "$(dirname "$0")"

preset=mingw
build_dir=build/$preset
wine_run=$build_dir/wine-run

build() {
  scripts/bootstrap.sh
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
}

# The portable core natively: sanitized tests, offline halinfo and a short fuzzing run.
build_native() {
  cmake --preset native >/dev/null
  cmake --build --preset native
}

# Runs ctest in a warm Wine session; "display" selects the session with an X server.
ctest_session() {  # ctest_session nodisplay|display JUNIT_FILE
  local mode=$1 junit=$2 rc=0 filter=(-LE display) start=--start-session
  if [[ $mode == display ]]; then filter=(-L display); start=--start-session-display; fi
  "$wine_run" "$start"
  ctest --preset "$preset" "${filter[@]}" --output-junit "$PWD/$junit" || rc=$?
  "$wine_run" --stop-session
  return "$rc"
}

junit_count() {  # junit_count FILE ATTRIBUTE
  local value=""
  [[ -f $1 ]] && value=$(grep -m 1 -oE "[[:space:]]$2=\"[0-9]+\"" "$1" | tr -dc 0-9)
  echo "${value:-0}"
}

run_tests() {
  build
  trap '"$wine_run" --stop-session' EXIT
  local rc=0 tests=0 failed=0 skipped=0 phase file
  for phase in nodisplay display; do
    file=$build_dir/junit-$phase.xml
    rm -f "$file"
    # grep reads to the end: with -q, ctest could die of SIGPIPE and the phase be skipped.
    if [[ $phase == display ]] && ! ctest --preset "$preset" -N -L display | grep 'Test *#' >/dev/null; then
      continue  # no test needs a display
    fi
    ctest_session "$phase" "$file" || rc=1
    tests=$((tests + $(junit_count "$file" tests)))
    failed=$((failed + $(junit_count "$file" failures)))
    skipped=$((skipped + $(junit_count "$file" skipped) + $(junit_count "$file" disabled)))
  done
  build_native
  file=build/native/junit-native.xml
  rm -f "$file"
  ctest --preset native --output-junit "$PWD/$file" || rc=1
  tests=$((tests + $(junit_count "$file" tests)))
  failed=$((failed + $(junit_count "$file" failures)))
  skipped=$((skipped + $(junit_count "$file" skipped) + $(junit_count "$file" disabled)))
  echo
  echo "tests: $((tests - failed - skipped)) passed, $failed failed, $skipped skipped"
  return "$rc"
}

run_halinfo() {
  build >&2  # standard output is halinfo's alone, so that --json can be piped
  trap '"$wine_run" --stop-session' EXIT
  "$wine_run" --start-session
  # Wine's WMI complains on stderr about every logical-disk walk that meets Z: (the Unix root,
  # which it cannot read a label from); that line is Wine's, not halinfo's.
  "$wine_run" "$build_dir/bin/halinfo.exe" "$@" 2> >(grep -v 'Read access denied for device' >&2)
}

case "${1:-}" in
  run) shift; run_halinfo "$@" ;;
  test) run_tests ;;
  *) echo "usage: $0 run [halinfo options] | test" >&2; exit 2 ;;
esac
