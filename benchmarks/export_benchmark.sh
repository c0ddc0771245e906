#!/usr/bin/env bash
# How long camtool takes to export a million records, beside a plain script (export_benchmark.py). Called by benchmarks/run.
source "$(dirname "$0")/../tools/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"; stop_wine' EXIT
quietly "configuring" cmake --preset release
quietly "building" cmake --build --preset release --target camtool
wine cmd /c rem >/dev/null 2>&1  # starts what every program would start first
python3 "$root/benchmarks/export_benchmark.py" "$work" wine "$build_dir/release/camtool/camtool.exe"
