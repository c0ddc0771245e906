#!/usr/bin/env bash
# Compares the time that camtool takes to export a million records with a simple script's (export_benchmark.py). Called by
# benchmarks/run.
source "$(dirname "$0")/../tools/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"; stop_wine' EXIT
quietly "configuring" cmake --preset release
quietly "building" cmake --build --preset release --target camtool
wine cmd /c rem >/dev/null 2>&1  # starts the processes that the first program would start
python3 "$root/benchmarks/export_benchmark.py" "$work" wine "$build_dir/release/camtool/camtool.exe"
