# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by the soak scripts: prepares their work folder and long sources, runs a command in the
# background and reads its resident size, its
# peak resident size and its open file descriptors from /proc every SAMPLE_SECONDS, with a count of
# finished outputs, into a table the scripts then read with awk. Bash only; no other tools.

SAMPLE_SECONDS=${SAMPLE_SECONDS:-0.2}

# run_sampled TABLE OUTPUT_GLOB COMMAND...: runs COMMAND, writes one line per sample to TABLE:
#   seconds-since-start  VmRSS-KiB  VmHWM-KiB  open-fds  outputs-matching-OUTPUT_GLOB
# and returns COMMAND's exit status.
run_sampled() {
    local table=$1 glob=$2
    shift 2
    : >"$table"
    "$@" &
    local pid=$!
    local start=${EPOCHREALTIME/./}
    while kill -0 "$pid" 2>/dev/null; do
        local rss="" hwm="" key value unit
        while read -r key value unit; do
            case $key in
            VmRSS:) rss=$value ;;
            VmHWM:) hwm=$value ;;
            esac
        done 2>/dev/null <"/proc/$pid/status" || true
        local fds=(/proc/"$pid"/fd/*)
        local outputs=()
        # shellcheck disable=SC2206 # the glob is meant to expand here
        outputs=($glob)
        [ -e "${outputs[0]:-}" ] || outputs=()
        # A sample taken while the process exits reads nothing: leave it out.
        if [ -n "$rss" ] && [ -n "$hwm" ]; then
            local now=${EPOCHREALTIME/./}
            printf '%d.%06d %s %s %s %s\n' $(((now - start) / 1000000)) $(((now - start) % 1000000)) \
                "$rss" "$hwm" "${#fds[@]}" "${#outputs[@]}" >>"$table"
        fi
        sleep "$SAMPLE_SECONDS"
    done
    wait "$pid"
}

# rss_between TABLE FROM TO: "rss-at-FROM rss-at-TO lowest highest" in MiB over the samples whose
# time lies between the fractions FROM and TO of the run's length (0.1 and 0.9 for the 10% and 90%
# marks).
rss_between() {
    awk -v from="$2" -v to="$3" '
        { t[NR] = $1; r[NR] = $2 }
        END {
            last = t[NR]; lo = -1; hi = -1; a = -1; b = -1
            for (i = 1; i <= NR; i++) {
                if (t[i] < from * last || t[i] > to * last) continue
                if (a < 0) a = r[i]
                b = r[i]
                if (lo < 0 || r[i] < lo) lo = r[i]
                if (r[i] > hi) hi = r[i]
            }
            printf "%.1f %.1f %.1f %.1f\n", a / 1024, b / 1024, lo / 1024, hi / 1024
        }' "$1"
}

# soak_workdir DIR KIND: sets `work` to DIR (made when missing) or, when DIR is empty, to a new
# folder under /tmp removed on exit; makes its out/ and home/ folders and empties out/.
soak_workdir() {
    if [ -n "$1" ]; then
        work=$1
        mkdir -p "$work"
    else
        work=$(mktemp -d "/tmp/ondrilet-soak-$2-XXXXXX")
        trap 'rm -rf "$work"' EXIT
    fi
    mkdir -p "$work/out" "$work/home"
    rm -f "$work"/out/*
}

# loop_source CLIP TIMES TARGET: makes TARGET, CLIP played TIMES times over without re-encoding,
# unless TARGET is there already from an earlier run.
loop_source() {
    [ -s "$3" ] && return 0
    ffmpeg -nostdin -hide_banner -loglevel error -y -stream_loop "$(($2 - 1))" -i "$1" -c copy "$3"
}
