#!/usr/bin/env bash
# Builds the benchmarks, runs ours and their peers in one run and prints one table. Nothing else should
# run on the machine meanwhile.
#
#   bench/run.sh [--min-time SECONDS]     how long each measurement takes at least (default 1)
set -eu -o pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/steps.sh
. scripts/steps.sh

min_time=1
if [ "${1:-}" = --min-time ]; then min_time=${2:?"--min-time takes a number of seconds"}; fi

step "packages"
scripts/install-deps.sh bench
step "build"
configure bench
build bench
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
step "measure"
build/bench/bin/vexalink_bench --benchmark_min_time="$min_time" \
  --benchmark_out="$out/times.json" --benchmark_out_format=json >"$out/times.txt"
build/bench/bin/vexalink_bench_memory >"$out/memory.txt"
python3 bench/year_scenario.py >"$out/year.jsonl"
begin=$(date +%s%N)
TZ=America/New_York build/bench/bin/vexalink play "$out/year.jsonl" >/dev/null
end=$(date +%s%N)
step "results"
python3 bench/report.py "$out/times.json" "$out/memory.txt" "$(((end - begin) / 1000000))"
