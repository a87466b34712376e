#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The long fuzzing run: every libFuzzer target of a "fuzz" build for SECONDS each (default one
# hour), one after the other, new inputs kept in the build's corpus folders. A crash stops the
# target and leaves its input as crash-* in the current folder: add it to
# tests/fuzz/regressions/<target>/ once fixed.
set -euo pipefail
build=${1:?usage: run-long.sh BUILD_DIR [SECONDS]}
seconds=${2:-3600}
source_dir="$(cd "$(dirname "$0")/../.." && pwd)"
for binary in "$build"/tests/fuzz/fuzz_*; do
    name=$(basename "$binary")
    name=${name#fuzz_}
    corpora=("$build/tests/fuzz/corpus/$name" "$source_dir/tests/fuzz/seeds/$name")
    [ -d "$source_dir/tests/fuzz/regressions/$name" ] &&
        corpora+=("$source_dir/tests/fuzz/regressions/$name")
    mkdir -p "$build/tests/fuzz/corpus/$name"
    echo "== $name for $seconds s"
    "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        "${corpora[@]}"
done
