#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# One long 1080p30 source through ondrilet-cli to MP4/H.264 CRF 23 (or another codec): the resident
# size must stay flat, at most 64 MiB apart anywhere between the 10% and the 90% mark of the run's
# time.
#   bench/soak/long-video.sh CLI [MINUTES] [WORKDIR] [CODEC]   MINUTES defaults to 30 (a whole
#   number of half minutes); the source is the corpus's 30 s 1080p30 clip ($ONDRILET_CORPUS,
#   default /tmp/ond-corpus) looped without re-encoding, kept in WORKDIR for the next run when
#   WORKDIR is given. CODEC is one of the CLI's video codecs, h264 by default; the ProRes codecs
#   write MOV, the others MP4.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sampling.sh"

cli=$(realpath "${1:?usage: long-video.sh CLI [MINUTES] [WORKDIR] [CODEC]}")
minutes=${2:-30}
codec=${4:-h264}
case $codec in
prores*) container=mov ;;
*) container=mp4 ;;
esac
corpus=${ONDRILET_CORPUS:-/tmp/ond-corpus}
soak_workdir "${3:-}" video

source=$work/long_${minutes}min_1080p30.mp4
loop_source "$corpus/clip_1080p30_30s.mp4" "$(awk -v m="$minutes" 'BEGIN { printf "%d", m * 2 }')" \
    "$source"

table=$work/samples.txt
started=$EPOCHREALTIME
status=0
HOME=$work/home XDG_CONFIG_HOME=$work/home/.config run_sampled "$table" "$work/out/*.$container" \
    "$cli" --format "$container" --video-codec "$codec" --resolution source --frame-rate source --crf 23 \
    --no-settings-in-name --no-subfolders --overwrite --output-dir "$work/out" "$source" \
    >"$work/cli-output.txt" 2>&1 || status=$?
seconds=$(awk -v a="$started" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.1f", b - a }')
output=$work/out/$(basename "$source" .mp4).$container
duration=$(ffprobe -v error -show_entries format=duration -of csv=p=0 "$output" 2>/dev/null || echo 0)

read -r at10 at90 lowest highest < <(rss_between "$table" 0.1 0.9)
peak=$(awk 'END { printf "%.1f", $3 / 1024 }' "$table")
echo "source: $minutes min 1080p30 to $codec; output $duration s; exit status $status; $seconds s"
echo "RSS at 10%: $at10 MiB, at 90%: $at90 MiB; between them from $lowest to $highest MiB; peak $peak MiB"
awk -v s="$status" -v lo="$lowest" -v hi="$highest" -v d="$duration" -v m="$minutes" 'BEGIN {
    ok = s == 0 && hi - lo <= 64 && d > m * 60 - 1
    printf "spread %.1f MiB (limit 64): %s\n", hi - lo, ok ? "PASS" : "FAIL"
    exit ok ? 0 : 1 }'
