#!/bin/sh
# usage: check_install_tree.sh BUILD_DIR
set -eu
build=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
status=0
for file in bin/skyvane bin/skyvane-cli \
        share/applications/org.skyvane.Skyvane.desktop share/metainfo/org.skyvane.Skyvane.metainfo.xml \
        share/icons/hicolor/scalable/apps/org.skyvane.Skyvane.svg \
        share/icons/hicolor/16x16/apps/org.skyvane.Skyvane.png share/icons/hicolor/48x48/apps/org.skyvane.Skyvane.png \
        share/icons/hicolor/256x256/apps/org.skyvane.Skyvane.png \
        share/man/man1/skyvane.1 share/man/man1/skyvane-cli.1 share/skyvane/sounds/skyvane-beep.wav; do
    [ -s "$prefix/$file" ] || { echo "missing after install: $file" >&2; status=1; }
done
grep -q 'simulate' "$prefix/share/man/man1/skyvane.1" || { echo "skyvane.1 lacks the options" >&2; status=1; }
grep -q 'sensor.*send' "$prefix/share/man/man1/skyvane-cli.1" || { echo "skyvane-cli.1 lacks the commands" >&2; status=1; }
[ $status -eq 0 ] && echo "install tree complete"
exit $status
