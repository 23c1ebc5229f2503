#!/usr/bin/env bash
# Installs what is needed, builds everything and runs all tests: as it is shipped, then with the
# address, undefined-behaviour and leak sanitizers. The last line says whether all passed.
#
#   ./test.sh           all of it
#   ./test.sh --quick   without the sanitizers
#
# Each test program runs in the time zones of cmake/Tests.cmake. With the sanitizers it runs in one,
# or in those that VEXALINK_ASAN_ZONES lists (separated by semicolons).
set -eu -o pipefail
cd "$(dirname "$0")"
# shellcheck source=scripts/steps.sh
. scripts/steps.sh

asan_zones=${VEXALINK_ASAN_ZONES:-America/New_York}
quick=no
case ${1:-} in
  '') ;;
  --quick) quick=yes ;;
  *)
    echo "usage: ./test.sh [--quick]" >&2
    exit 2
    ;;
esac

# What a failed test printed is shown, of the others the names.
run_tests() {
  ctest --preset "$1" --parallel "$(nproc)"
}

step "packages"
scripts/install-deps.sh test
step "build, as it is shipped"
configure release -DVEXALINK_TESTS=ON
build release
step "test, as it is shipped"
run_tests release
if [ $quick = yes ]; then
  step "all tests passed (without the sanitizers), after $SECONDS seconds"
  exit 0
fi
step "build, with the sanitizers"
configure asan -DVEXALINK_TESTS=ON "-DVEXALINK_TEST_ZONES=$asan_zones"
build asan
step "test, with the sanitizers, in $asan_zones"
run_tests asan
step "all tests passed, also with the sanitizers, after $SECONDS seconds"
