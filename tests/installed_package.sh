#!/bin/bash
# Installs the build into an empty place, moves it, and builds the example host against it: as a
# CMake package and with pkg-config alone. Both programs must read the simulated readout,
# and the host with a list of its own must set what is chosen from it.
#   installed_package.sh SOURCE_FOLDER BUILD_FOLDER CXX_COMPILER
set -euo pipefail
source=$1 build=$2 compiler=$3

work=$(mktemp -d)
simulator=
finish() {
  [ -z "$simulator" ] || { kill "$simulator" && wait "$simulator"; } || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 1' INT TERM
export XDG_CONFIG_HOME=$work/config

cmake --install "$build" --prefix "$work/installed" > "$work/install.log"
mv "$work/installed" "$work/moved"
prefix=$work/moved

stray=$(find "$prefix/include" -type f ! -name '*.h')
[ -z "$stray" ] || { echo "Installed beside the headers: $stray" >&2; exit 1; }
for file in man/man1/thermoscribe.1 VaneT312B/schema/output.schema.json \
            VaneT312B/schema/snapshot.schema.json bash-completion/completions/thermoscribe \
            zsh/site-functions/_thermoscribe fish/vendor_completions.d/thermoscribe.fish; do
  [ -s "$prefix/share/$file" ] || { echo "No share/$file" >&2; exit 1; }
done
if [ -x "$prefix/bin/thermoscribe-desktop" ]; then
  for file in VaneT312B/help/index.html man/man1/thermoscribe-desktop.1 \
              applications/thermoscribe-desktop.desktop metainfo/thermoscribe-desktop.metainfo.xml \
              icons/hicolor/scalable/apps/thermoscribe-desktop.svg; do
    [ -s "$prefix/share/$file" ] || { echo "No share/$file" >&2; exit 1; }
  done
fi
grep -q '^ExecStart=/.*/bin/thermoscribe ' "$prefix/lib/systemd/system/thermoscribe-record@.service"
[ -s "$prefix/lib/udev/rules.d/70-thermoscribe.rules" ]
"$prefix/bin/thermoscribe" --version

cmake -S "$source/examples/minimal_host" -B "$work/by-cmake" -G Ninja \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$compiler"
cmake --build "$work/by-cmake"

PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name VaneT312B.pc)")
export PKG_CONFIG_PATH
# The flags are words of a command line.
# shellcheck disable=SC2046
"$compiler" -std=c++20 "$source/examples/minimal_host/main.cpp" -o "$work/by-pkg-config" \
  $(pkg-config --cflags --libs VaneT312B)
# shellcheck disable=SC2046
"$compiler" -std=c++20 "$source/examples/own_lists/main.cpp" -o "$work/own-lists" \
  $(pkg-config --cflags --libs VaneT312B)

"$prefix/bin/thermoscribe-sim" --firmware 5.03 --link "$work/readout" > "$work/device" &
simulator=$!
for ((tries = 0; tries < 100; ++tries)); do
  [ ! -s "$work/device" ] || break
  sleep 0.1
done

for program in "$work/by-cmake/minimal_host" "$work/by-pkg-config"; do
  "$program" "$work/readout" | tee "$work/output"
  for line in 'T312B, firmware 5\.03' 'Channel 2: Input 2' 'Channel 12: Scanner 10' \
              'Input 2 reads -?[0-9.]+'; do
    grep -Eqx -- "$line" "$work/output" || { echo "No line \"$line\"" >&2; exit 1; }
  done
done

"$work/own-lists" "$work/readout" 3
"$work/own-lists" "$work/readout" | tee "$work/output"
for line in '  1  Input 2\) Probe [0-9]+' '  3  K' '  6  W'; do
  grep -Eqx -- "$line" "$work/output" || { echo "No line \"$line\"" >&2; exit 1; }
done
"$prefix/bin/thermoscribe" --port "$work/readout" settings show --json | grep -q '"Units":"K"'

for choice in 0 7 K; do
  ! "$work/own-lists" "$work/readout" "$choice" 2> "$work/output" || exit 1
  grep -Fqx "The list has no unit $choice." "$work/output"
done

if "$work/by-pkg-config" "$work/nothing" 2> "$work/output"; then
  echo "The example succeeds without a readout" >&2
  exit 1
fi
