#!/bin/sh
# make-oui-mapping.sh OUI_TXT OUTPUT
# Turns the IEEE MA-L registry ("00-22-72   (hex)\t\tVendor") into "00:22:72\tVendor" lines.
set -eu
LC_ALL=C awk '
  /^[0-9A-Fa-f][0-9A-Fa-f]-[0-9A-Fa-f][0-9A-Fa-f]-[0-9A-Fa-f][0-9A-Fa-f][ \t]+\(hex\)/ {
    key = toupper(substr($0, 1, 8)); gsub("-", ":", key)
    vendor = $0; sub(/^[^)]*\)[ \t]*/, "", vendor); sub(/[ \t\r]+$/, "", vendor)
    print key "\t" vendor
  }' "$1" > "$2.tmp"
mv "$2.tmp" "$2"
