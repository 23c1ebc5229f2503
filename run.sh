#!/usr/bin/env bash
# Installs what is needed, builds the controller and runs it. The arguments are those of
# `vexalink serve`; ./run.sh --help shows them. Ctrl-C ends it cleanly.
set -eu -o pipefail
called_from=$PWD
cd "$(dirname "$0")"
# shellcheck source=scripts/steps.sh
. scripts/steps.sh

step "1/3 packages"
scripts/install-deps.sh run

step "2/3 build"
# The tests stay out where their packages are not installed: running needs none of them.
tests=OFF
if scripts/install-deps.sh --check test >/dev/null; then tests=ON; fi
configure release "-DVEXALINK_TESTS=$tests"
build release --target vexalink

program=$PWD/build/release/bin/vexalink
step "3/3 $program serve${*:+ $*}"
# Files named in the arguments are meant from where the caller stands.
cd "$called_from"
exec "$program" serve "$@"
