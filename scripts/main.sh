#!/usr/bin/env bash
# The main job: install what is missing, build tidemake and its installation tree, install
# both to a prefix, build the example firmware with the installed tidemake in every
# configuration, and run each image under QEMU, whose semihosting shows its output here; do
# the same for the firmware made from the project templates; last, list the package that the
# example's staging project keeps.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTIDEMAKE_TESTS=OFF

prefix=$PWD/build/install
rm -rf "$prefix"
cmake --install build --prefix "$prefix" >/dev/null

# The examples are built in a copy, so that the source tree stays clean.
work=$PWD/build/examples
rm -rf "$work"
cp -r examples "$work"
cd "$work"
for board in versatilepb lm3s6965evb; do
  case $board in
    # The sound chip gets a silent back end, or QEMU probes for audio modules and
    # complains where its GUI package is not installed.
    versatilepb) machine=(-M versatilepb -cpu arm926 -audiodev none,id=snd0
                          -global pl041.audiodev=snd0) ;;
    lm3s6965evb) machine=(-M lm3s6965evb) ;;
  esac
  for build_type in Debug Release; do
    "$prefix/bin/tidemake" -config "$board $build_type" examples.hdp
    # tidemake's exit status doesn't tell a failed build; the missing image does.
    image=app/$board/$build_type/app.elf
    test -f "$image" || { echo "$image was not built" >&2; exit 1; }
    echo "Running $image"
    # The firmware ends itself through semihosting, its exit status being main's result;
    # QEMU's note about the board's idle timer is left out.
    timeout 20 qemu-system-arm "${machine[@]}" -nographic -semihosting \
      -kernel "$image" </dev/null 2>&1 | sed '/^Timer with period zero/d'
  done
done

# The same firmware from the installation's project templates (templated.hdp), in a copy of
# its own so that neither solution's outputs stand in the other's way.
(
  templated=$(dirname "$work")/templated
  rm -rf "$templated"
  cp -r "$(dirname "$work")/../examples" "$templated"
  cd "$templated"
  for configuration in "versatilepb Debug" "versatilepb Release" "lm3s6965evb Debug" \
                       "lm3s6965evb Release"; do
    "$prefix/bin/tidemake" -config "$configuration" templated.hdp
    image=app/${configuration/ //}/app.elf
    test -f "$image" || { echo "$image was not built" >&2; exit 1; }
    echo "Running $image"
    case $configuration in
      # The options of the loop above, board by board.
      versatilepb*) machine=(-M versatilepb -cpu arm926 -audiodev none,id=snd0
                             -global pl041.audiodev=snd0) ;;
      lm3s6965evb*) machine=(-M lm3s6965evb) ;;
    esac
    timeout 20 qemu-system-arm "${machine[@]}" -nographic -semihosting \
      -kernel "$image" </dev/null 2>&1 | sed '/^Timer with period zero/d'
  done
)

# The staging project kept one package of every configuration's images and memory maps.
echo "Members of dist/firmware.hdq"
"$prefix/bin/tidefile" package dist/firmware.hdq
