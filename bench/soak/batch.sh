#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# A batch of many short files through ondrilet-cli in one run (WAV to M4A/AAC): the peak resident
# size must grow by at most 50 MiB from the 10th finished file to the last, and the number of open
# file descriptors must not grow. Readings come from /proc while the run goes on.
#   bench/soak/batch.sh CLI [FILES] [WORKDIR]   FILES defaults to 1000, WORKDIR to a new temporary
#   directory (removed afterwards unless given). The settings file goes to WORKDIR/home.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sampling.sh"

cli=$(realpath "${1:?usage: batch.sh CLI [FILES] [WORKDIR]}")
count=${2:-1000}
soak_workdir "${3:-}" batch
mkdir -p "$work/in"

# One second of 48 kHz stereo, copied under as many names as the batch needs.
fixture=$work/fixture.wav
[ -s "$fixture" ] || ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi \
    -i "sine=f=440:r=48000:d=1" -ac 2 -c:a pcm_s16le "$fixture"
inputs=()
for ((i = 1; i <= count; i++)); do
    name=$(printf '%s/in/take_%04d.wav' "$work" "$i")
    [ -e "$name" ] || cp "$fixture" "$name"
    inputs+=("$name")
done

table=$work/samples.txt
started=$EPOCHREALTIME
status=0
HOME=$work/home XDG_CONFIG_HOME=$work/home/.config run_sampled "$table" "$work/out/*.m4a" \
    "$cli" --format m4a --audio-codec aac --no-settings-in-name --no-subfolders --overwrite \
    --no-level --output-dir "$work/out" "${inputs[@]}" >"$work/cli-output.txt" 2>&1 || status=$?
seconds=$(awk -v a="$started" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.1f", b - a }')
made=$(find "$work/out" -maxdepth 1 -name '*.m4a' | wc -l)

# The 10th file is finished once the 11th output exists. Descriptors open for the file in hand
# come and go, so the highest count after file 10 is held against the highest count up to it, with
# room for the two (input and output) a sample can catch open.
awk -v count="$count" -v made="$made" -v status="$status" -v seconds="$seconds" '
    !seen && $4 > fdsBefore { fdsBefore = $4 }
    $5 > 10 && !seen { seen = 1; hwm10 = $3; fdsAfter = $4 }
    seen { if ($4 > fdsAfter) fdsAfter = $4; hwmEnd = $3 }
    END {
        growth = (hwmEnd - hwm10) / 1024
        printf "files: %d given, %d written, exit status %d, %.1f s, %d samples\n", count, made, status, seconds, NR
        printf "peak RSS after file 10: %.1f MiB, at the end: %.1f MiB, growth %.1f MiB (limit 50)\n", hwm10 / 1024, hwmEnd / 1024, growth
        printf "open fds, highest up to file 10: %d, highest after it: %d\n", fdsBefore, fdsAfter
        ok = status == 0 && made == count && seen && growth <= 50 && fdsAfter <= fdsBefore + 2
        print ok ? "PASS" : "FAIL"
        exit ok ? 0 : 1
    }' "$table"
