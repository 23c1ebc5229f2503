#!/usr/bin/env bash
# Installs the Debian packages that a purpose needs, those that are missing only.
#
#   scripts/install-deps.sh [--check] run|test|bench|fuzz|style
#
# run    what building and running the controller needs
# test   that, and what ./test.sh needs
# bench  the first, and what the benchmarks need
# fuzz   the first, and the compiler of the fuzz targets
# style  clang-format and clang-tidy
#
# --check installs nothing: exit status 0 where all is there, 1 and their names where some are not.
# Needs root, or sudo.
set -eu -o pipefail

# g++ brings libbacktrace and the sanitizers' run-time libraries with it.
run_packages=(
  ca-certificates cmake g++ libcli11-dev libcurl4-openssl-dev libevent-dev libexpat1-dev libsqlite3-dev
  ninja-build nettle-dev nlohmann-json3-dev pkgconf tzdata)
test_packages=(
  binutils faketime groff-base libgmock-dev libgtest-dev libical-dev mandoc openssl python3
  python3-jsonschema shellcheck)
# The pages are tried in a browser. A machine may have these from elsewhere.
for pair in node:nodejs npm:npm chromium:chromium; do
  command -v "${pair%:*}" >/dev/null || test_packages+=("${pair#*:}")
done
bench_packages=(libbenchmark-dev libical-dev libpugixml-dev python3)
fuzz_packages=(clang libclang-rt-dev llvm)
style_packages=(clang-format clang-tidy)

# Packages that must not be older than so: libevent's reading of HTTP was mended there.
declare -A at_least=([libevent-dev]=2.1.12-stable-8+deb12u1)

usage() {
  sed -n '2,/^set /{/^set /d;s/^# \{0,1\}//;p}' "$0" >&2
  exit 2
}

check=no
if [ "${1:-}" = --check ]; then
  check=yes
  shift
fi
[ $# -eq 1 ] || usage
case $1 in
  run) wanted=("${run_packages[@]}") ;;
  test) wanted=("${run_packages[@]}" "${test_packages[@]}") ;;
  bench) wanted=("${run_packages[@]}" "${bench_packages[@]}") ;;
  fuzz) wanted=("${run_packages[@]}" "${fuzz_packages[@]}") ;;
  style) wanted=("${style_packages[@]}") ;;
  *) usage ;;
esac

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  echo "install-deps: no apt-get here; install by hand what these Debian packages hold:" \
    "${wanted[*]}" >&2
  exit 1
fi

# dpkg-query fails where it has never heard of one; what it prints of the others counts.
installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null || true)

# is_there PACKAGE: it is installed, and not too old.
is_there() {
  grep -qxF "installed $1" <<<"$installed" || return 1
  [ -n "${at_least[$1]-}" ] || return 0
  dpkg --compare-versions "$(dpkg-query -W -f '${Version}' "$1")" ge "${at_least[$1]}"
}

missing=()
for package in "${wanted[@]}"; do
  is_there "$package" || missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then
  [ $check = yes ] || echo "install-deps: nothing to install, all ${#wanted[@]} packages are there"
  exit 0
fi
if [ $check = yes ]; then
  echo "${missing[*]}"
  exit 1
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "install-deps: you are not root and there is no sudo; have root install:" \
      "${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT

# apt_get STEP ARGUMENT...: what apt-get says goes to the log, its progress to the terminal. Both
# come on one channel, because sudo passes on no other.
apt_get() {
  local step=$1
  shift
  if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -y -q \
    -o APT::Status-Fd=1 -o DPkg::Lock::Timeout=120 "$@" </dev/null 2>&1 |
    awk -F: -v step="$step" -v log_file="$log" '
      /^(dl|pm)status:/ {
        phase = /^dl/ ? "fetched" : "installed"
        tenth = int($3 / 20) * 20
        if (phase tenth != last && tenth > 0) { print step ": " tenth "% " phase; fflush() }
        last = phase tenth
        next
      }
      { print > log_file }'; then
    echo "install-deps: apt-get $1 failed; it said:" >&2
    tail -n 30 "$log" >&2
    exit 1
  fi
}

echo "install-deps: fetching the package lists"
apt_get "install-deps" update
echo "install-deps: installing ${missing[*]}"
apt_get "install-deps" install --no-install-recommends "${missing[@]}"
for package in "${missing[@]}"; do
  [ -n "${at_least[$package]-}" ] || continue
  dpkg --compare-versions "$(dpkg-query -W -f '${Version}' "$package")" ge "${at_least[$package]}" &&
    continue
  echo "install-deps: $package is older than ${at_least[$package]}, which has security updates;" \
    "add your distribution's security archive to apt's sources and run this again" >&2
  exit 1
done
echo "install-deps: all ${#wanted[@]} packages are there"
