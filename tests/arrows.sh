#!/bin/bash
# The arrows of docs/architecture.md: no file includes what lies above it. And a file's name says
# which one it is: no other has it, in whatever folder.
#   arrows.sh SOURCE_FOLDER
set -uo pipefail
cd "$1" || exit 1

status=0
while read -r files allowed; do
  [ -n "$files" ] || continue
  found=$(find . -path "./$files" -name '*.*' -not -name '*.txt')
  [ -n "$found" ] || { echo "There are no files $files"; status=1; }
  # Folder names have no blanks.
  # shellcheck disable=SC2086
  strays=$(grep -nE '^#include "' $found | grep -vE "#include \"(${allowed// /|})")
  [ -z "$strays" ] || { echo "$strays"; status=1; }
done <<'END'
vane/components/* vane/components/
vane/support/* vane/(components|support)/
vane/channels/*.h vane/(components|support|channels)/
vane/channels/*.cpp vane/(components|support|channels|instrument)/
vane/topology/*.h vane/(components|support|channels|topology)/
vane/topology/*.cpp vane/(components|support|channels|topology|instrument)/
vane/instrument/* vane/(components|support|channels|topology|instrument)/
vane/dialogs/* vane/(components|support|channels|topology|instrument|dialogs)/
vane/download/* vane/
protocol/* protocol/ vane/components/commands.h
physics/* physics/
adapters/posix/* vane/ adapters/posix/
adapters/serial/* vane/ protocol/ adapters/posix/ adapters/serial/
adapters/conversions/* vane/ adapters/conversions/
adapters/files/* vane/ adapters/posix/ adapters/files/
adapters/terminal/* vane/ adapters/posix/ adapters/terminal/
adapters/headless/* vane/ adapters/(posix|serial|conversions|files|headless)/
adapters/qt/* vane/ adapters/(posix|serial|conversions|files|headless|qt)/
apps/thermoscribe-desktop/plot/* apps/thermoscribe-desktop/(plot/|reading_store)
apps/snapshots/* vane/ physics/ adapters/(posix|files)/ apps/snapshots/
apps/recording/* vane/ recorder/ adapters/serial/ apps/(snapshots|recording)/
recorder/* vane/ recorder/
simulator/* protocol/ physics/ simulator/ vane/components/commands.h
END

twins=$(find . -path ./build -prune -o \( -name '*.h' -o -name '*.cpp' \) -not -name main.cpp \
        -printf '%f\n' | sort | uniq -d)
[ -z "$twins" ] || { echo "Several files have the name" $twins; status=1; }
exit $status
