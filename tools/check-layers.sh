#!/bin/sh
# Fails when a production file includes a header of a layer it may not depend on, so every
# arrow between folders points down. Tests, benchmarks and fuzz targets are not checked.
# usage: tools/check-layers.sh [SOURCE_ROOT]
set -eu
root=${1:-$(cd "$(dirname "$0")/.." && pwd)}
cd "$root"

# Each folder and the folders its production files may include from (besides its own).
allowed() {
    case $1 in
        core) echo "" ;;
        platform/api) echo "core" ;;
        platform/sound) echo "" ;;
        scan) echo "core platform/api" ;;
        platform/linux|platform/sim|platform/capture) echo "core platform/api scan" ;;
        scanning/view) echo "core platform/api scan scanning" ;;
        scanning|sensor) echo "core platform/api scan" ;;
        sensor/view) echo "core platform/api scan sensor" ;;
        graphs) echo "core platform/api scan scanning" ;;
        graphs/view) echo "core platform/api scan scanning graphs plot" ;;
        plot) echo "" ;;
        monitor) echo "core platform/api scan scanning" ;;
        monitor/view) echo "core platform/api scan scanning monitor plot" ;;
        interface) echo "core platform/api scan scanning" ;;
        interface/view) echo "core platform/api scan scanning interface plot" ;;
        testsupport) echo "core platform/api scan scanning" ;;
        app/*) echo "*" ;;
        *) echo "?" ;;
    esac
}

layer_of() {
    case $1 in
        platform/*/*|app/*/*|scanning/view/*|graphs/view/*|monitor/view/*|sensor/view/*|interface/view/*) echo "$1" | cut -d/ -f1-2 ;;
        */*) echo "$1" | cut -d/ -f1 ;;
        *) echo "" ;;
    esac
}

status=0
for file in $(find core platform plot scan scanning graphs monitor interface sensor testsupport app \
        \( -name tests -prune \) -o \( -name '*.h' -o -name '*.cpp' \) -print 2>/dev/null | sort); do
    own=$(layer_of "$file")
    rules=$(allowed "$own")
    [ "$rules" = "*" ] && continue
    if [ "$rules" = "?" ]; then
        echo "$file: folder $own has no place in the layer table" >&2
        status=1
        continue
    fi
    for header in $(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' "$file"); do
        target=$(layer_of "$header")
        [ -z "$target" ] || [ "$target" = "$own" ] && continue
        ok=0
        for layer in $rules; do
            [ "$layer" = "$target" ] && ok=1
        done
        if [ $ok -eq 0 ]; then
            echo "$file includes $header: $own may not depend on $target" >&2
            status=1
        fi
    done
done
[ $status -eq 0 ] && echo "layers: every include points down"
exit $status
