#!/bin/sh
# Measures audio tracking's beep rate from a recording, without a sound card: a private
# PulseAudio with a null sink plays skyvane-cli monitor --beep, parecord records the sink's
# monitor, and sox gives the samples whose onsets are timed here. Prints the monitor's lines
# (signal, noise (SNR)) and the mean gap between beeps for each rescan period.
# usage: bench/measure_beep_rate.sh SKYVANE_CLI [monitor arguments, e.g. --simulate --seed 14 monitor 00:E0:FC:9E:12:00 --interval 5 --count 2]
# Needs pulseaudio, pulseaudio-utils and sox.
set -eu
cli=$1
shift
work=$(mktemp -d)
export XDG_RUNTIME_DIR="$work"
export PULSE_SERVER="unix:$work/pulse/native"
pulseaudio -n --daemonize=yes --exit-idle-time=-1 --load=module-native-protocol-unix \
    --load="module-null-sink sink_name=beepsink rate=44100" --load=module-always-sink
trap 'pulseaudio --kill >/dev/null 2>&1 || true; rm -rf "$work"' EXIT
sleep 1
pactl set-default-sink beepsink
parecord --latency-msec=20 --device=beepsink.monitor --channels=1 --rate=44100 --format=s16le "$work/rec.wav" &
recorder=$!
# parecord loses its first second or so.
sleep 2
start=$(date +%s.%N)
"$cli" "$@" --beep | while IFS= read -r line; do
    printf '%7.3f  %s\n' "$(echo "$(date +%s.%N) - $start" | bc)" "$line"
done
sleep 0.5
kill -INT "$recorder"
wait "$recorder" || true
# Onsets: the first loud sample after at least 150 ms of quiet; gaps are printed in order.
sox "$work/rec.wav" -c 1 -t dat - | awk 'NR>2 { a = ($2 < 0 ? -$2 : $2); if (a > 0.05) { if (n == 0 || $1 - l > 0.15) on[++n] = $1; l = $1 } }
    END { for (i = 2; i <= n; i++) printf "gap %2d  %.3f s\n", i - 1, on[i] - on[i-1];
          if (n > 1) printf "beeps=%d mean=%.3f s\n", n, (on[n] - on[1]) / (n - 1) }'
