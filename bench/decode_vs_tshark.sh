#!/usr/bin/env bash
# Times `skyvane-cli decode` against tshark extracting the same fields from the same frames, on
# two inputs: every frame of the shared captures, and their beacons alone (the decoder's own work,
# without the frames both tools merely skip).
# usage: decode_vs_tshark.sh SKYVANE_CLI
#   SKYVANE_SHARED_DIR  folder holding captures/ (default: ../shared beside the source tree)
#   TARGET_FRAMES       size of the generated all-frames capture (default 300000)
#   TARGET_BEACONS      size of the generated beacons-only capture (default 240000)
set -euo pipefail

cli=${1:?usage: decode_vs_tshark.sh SKYVANE_CLI}
shared=${SKYVANE_SHARED_DIR:-$(cd "$(dirname "$0")/../../shared" && pwd)}
target=${TARGET_FRAMES:-300000}
target_beacons=${TARGET_BEACONS:-240000}
for tool in mergecap editcap capinfos tshark; do
    command -v "$tool" >/dev/null || { echo "decode_vs_tshark: $tool is not installed" >&2; exit 1; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The truncated scapy capture ends in a read error, which would end every copy after it.
inputs=()
for file in "$shared"/captures/*.pcap "$shared"/captures/*.pcapng "$shared"/captures/*.cap; do
    [[ -e $file && $file != *scapy_bad_rsn_parsing_overrides_ssid* ]] && inputs+=("$file")
done
(( ${#inputs[@]} > 0 )) || { echo "decode_vs_tshark: no captures under $shared/captures" >&2; exit 1; }

# libpcap reads a pcapng file only when all its interfaces share one link type and one snapshot
# length, so the frames are concatenated into one file per link type, passed through pcap to
# collapse them onto a single interface; both tools then read the same set of files.
declare -A members
while IFS=$'\t' read -r file encapsulation count; do
    members[$encapsulation]+="$file"$'\n'
done < <(capinfos -T -r -E -c "${inputs[@]}")

frame_count() { capinfos -T -r -c "$1" | cut -f2; }

filter='wlan.fc.type_subtype == 8 || wlan.fc.type_subtype == 5'
fields=(frame.number wlan.bssid wlan.ssid wlan.supported_rates wlan.extended_supported_rates
        wlan.ht.capabilities.short20 wlan.ht.capabilities.short40 wlan.rsn.gcs.type wlan.rsn.pcs.type
        wlan.qbss.scount wlan.qbss.cu wlan.ht.info.secchanoffset wlan.wfa.ie.type wlan.tag.vendor.oui.type
        wlan.country_info.code radiotap.dbm_antsignal radiotap.dbm_antnoise wlan.ds.current_channel)
tshark_args=(-Y "$filter" -T fields)
for field in "${fields[@]}"; do tshark_args+=(-e "$field"); done

seconds() { date +%s.%N; }

# Builds one pcapng per link type from the "-once" files named by suffix, each repeated so that
# all of them together hold about target frames, then times both tools over them.
measure() {
    local label=$1 suffix=$2 target=$3 once_frames=0 file encapsulation
    local -a onces=() files=()
    for encapsulation in "${!members[@]}"; do
        file="$work/$encapsulation-$suffix.pcapng"
        [[ $(frame_count "$file") -gt 0 ]] || continue
        onces+=("$file")
        once_frames=$((once_frames + $(frame_count "$file")))
    done
    local copies=$(( (target + once_frames - 1) / once_frames ))
    for file in "${onces[@]}"; do
        local -a repeated=()
        for ((i = 0; i < copies; i++)); do repeated+=("$file"); done
        mergecap -a -F pcapng -I all -w "${file%.pcapng}-repeated.pcapng" "${repeated[@]}"
        files+=("${file%.pcapng}-repeated.pcapng")
    done
    local frames=$((once_frames * copies)) records=0
    for file in "${files[@]}"; do
        records=$((records + $("$cli" decode "$file" | wc -l)))
    done

    local start skyvane wireshark
    start=$(seconds)
    for file in "${files[@]}"; do "$cli" decode "$file" >/dev/null; done
    skyvane=$(awk -v a="$start" -v b="$(seconds)" 'BEGIN { print b - a }')

    start=$(seconds)
    for file in "${files[@]}"; do tshark -r "$file" "${tshark_args[@]}" >/dev/null 2>&1; done
    wireshark=$(awk -v a="$start" -v b="$(seconds)" 'BEGIN { print b - a }')

    awk -v label="$label" -v files="${#files[@]}" -v frames="$frames" -v records="$records" -v s="$skyvane" -v t="$wireshark" 'BEGIN {
        printf "%s: %d frames in %d files (%d beacons and probe responses)\n", label, frames, files, records
        printf "  skyvane-cli decode  %7.3f s  %10.0f frames/s\n", s, frames / s
        printf "  tshark -T fields    %7.3f s  %10.0f frames/s\n", t, frames / t
        printf "  skyvane-cli is %.1fx tshark\n", t / s
    }'
}

# libpcap reads a pcapng file only when all its interfaces share one link type and one snapshot
# length, so the frames are concatenated into one file per link type, passed through pcap to
# collapse them onto a single interface; both tools then read the same set of files.
for encapsulation in "${!members[@]}"; do
    mapfile -t group < <(printf '%s' "${members[$encapsulation]}")
    mergecap -a -F pcap -w "$work/$encapsulation-once.pcap" "${group[@]}"
    editcap -F pcapng "$work/$encapsulation-once.pcap" "$work/$encapsulation-all.pcapng"
    tshark -r "$work/$encapsulation-all.pcapng" -Y 'wlan.fc.type_subtype == 8' -F pcapng \
        -w "$work/$encapsulation-beacons.pcapng" 2>/dev/null
done

measure "all frames" all "$target"
measure "beacons only" beacons "$target_beacons"
