#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# One long 48 kHz stereo source through ondrilet-cli to M4A/AAC with a loudness target (the level is
# measured over the whole file first, then the file is converted): the resident size must stay flat,
# at most 64 MiB apart anywhere between the 10% and the 90% mark of the run's time.
#   bench/soak/long-audio.sh CLI [HOURS] [WORKDIR]   HOURS defaults to 3 (a whole number of sixths:
#   0.5 is half an hour); the source is the corpus's
#   10-minute WAV ($ONDRILET_CORPUS, default /tmp/ond-corpus, see bench/README.md) looped, kept in
#   WORKDIR for the next run when WORKDIR is given.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sampling.sh"

cli=$(realpath "${1:?usage: long-audio.sh CLI [HOURS] [WORKDIR]}")
hours=${2:-3}
corpus=${ONDRILET_CORPUS:-/tmp/ond-corpus}
soak_workdir "${3:-}" audio

source=$work/long_${hours}h_48k.wav
loop_source "$corpus/music_10min_48k24.wav" "$(awk -v h="$hours" 'BEGIN { printf "%d", h * 6 }')" \
    "$source"

table=$work/samples.txt
started=$EPOCHREALTIME
status=0
HOME=$work/home XDG_CONFIG_HOME=$work/home/.config run_sampled "$table" "$work/out/*.m4a" \
    "$cli" --format m4a --audio-codec aac --audio-bitrate 256 --loudness-target -16 \
    --no-settings-in-name --no-subfolders --overwrite --output-dir "$work/out" "$source" \
    >"$work/cli-output.txt" 2>&1 || status=$?
seconds=$(awk -v a="$started" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.1f", b - a }')
output=$work/out/$(basename "$source" .wav).m4a
duration=$(ffprobe -v error -show_entries format=duration -of csv=p=0 "$output" 2>/dev/null || echo 0)

read -r at10 at90 lowest highest < <(rss_between "$table" 0.1 0.9)
peak=$(awk 'END { printf "%.1f", $3 / 1024 }' "$table")
echo "source: $hours h 48 kHz stereo; output $duration s; exit status $status; $seconds s"
echo "RSS at 10%: $at10 MiB, at 90%: $at90 MiB; between them from $lowest to $highest MiB; peak $peak MiB"
awk -v s="$status" -v lo="$lowest" -v hi="$highest" -v d="$duration" -v h="$hours" 'BEGIN {
    ok = s == 0 && hi - lo <= 64 && d > h * 3600 - 1
    printf "spread %.1f MiB (limit 64): %s\n", hi - lo, ok ? "PASS" : "FAIL"
    exit ok ? 0 : 1 }'
