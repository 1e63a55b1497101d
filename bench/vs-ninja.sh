#!/usr/bin/env bash
# tidemake and Ninja side by side on one generated solution: 100 library projects of 100 C
# files, each file including 30 of its project's 50 headers, built by a fast fake tool chain so
# that the build tools' own costs show. Ninja builds the same objects and libraries from an
# equivalent build.ninja written by the same generator, into its own directories of the same
# tree. Prints the medians and ratios (tidemake / Ninja) as a Markdown table.
#
#   bash bench/vs-ninja.sh
#
# Everything goes to build-bench/: the Release build of tidemake and the generator, and in
# vs-ninja/ the fake installation, the solution and the measurements. The environment can
# shrink the run for a quick check: BENCH_PROJECTS, BENCH_FILES (the tree), BENCH_RUNS (no-op,
# rebuild and memory samples, default 7) and BENCH_FULL_RUNS (full build samples, default 1:
# a serial full build takes minutes).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

projects=${BENCH_PROJECTS:-100}
files=${BENCH_FILES:-100}
headers=50
includes=30
runs=${BENCH_RUNS:-7}
full_runs=${BENCH_FULL_RUNS:-1}

# --- What the benchmark needs --------------------------------------------------------------

packages=(cmake ninja-build g++ qt6-base-dev libmimalloc-dev hyperfine time)
missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update
  apt-get install -y "${missing[@]}"
fi

load_at_start=$(cut -d' ' -f1-3 /proc/loadavg)
build=$root/build-bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTIDEMAKE_TESTS=OFF >/dev/null
cmake --build "$build" -j "$(nproc)" --target tidemake gensolution

# --- The fake installation and the tree ----------------------------------------------------

# $(BenchDir) of the run: tidemake in bin/, the fake tools in gcc/bin under every name the ARM
# layer runs. A settings store of its own, so the user's tool chain root and macros stay out.
work=$build/vs-ninja
benchdir=$work/bench
tree=$work/tree
rm -rf "$work"
mkdir -p "$benchdir/bin" "$benchdir/gcc/bin" "$work/home"
cp "$build/bin/tidemake" "$benchdir/bin/"
cc -O2 -o "$benchdir/gcc/bin/faketool" bench/faketool.c
for tool in cc1 cc1plus as ar ld objcopy; do
  ln -s faketool "$benchdir/gcc/bin/$tool"
done
export HOME=$work/home XDG_CONFIG_HOME=$work/home
# A bare "tidemake" finds its installation along PATH.
export PATH=$benchdir/bin:$PATH

"$build/bin/gensolution" -projects "$projects" -files "$files" -headers "$headers" \
  -includes "$includes" -libraries -sources -ninja "$benchdir" "$tree" >/dev/null
cd "$tree"

tidemake=(tidemake -exitstatus -config Debug bench.hdp)
clean_tidemake="rm -rf P*/Debug"
clean_ninja="rm -rf P*/Ninja .ninja_log .ninja_deps"

# The header to touch: one included by 30 files of its project, or the nearest there is.
project=$(find . -maxdepth 1 -type d -name 'P*' | sort | sed -n "$(((projects + 1) / 2))s|^\./||p")
touched=
touched_count=0
for header in "$project"/include/*.h; do
  count=$(grep -l "\"$(basename "$header")\"" "$project"/src/*.c | wc -l || true)
  if [ -z "$touched" ] ||
     [ $(((count - 30) * (count - 30))) -lt $(((touched_count - 30) * (touched_count - 30))) ]; then
    touched=$header
    touched_count=$count
  fi
done

# --- Measuring -----------------------------------------------------------------------------

results=$work/results
mkdir -p "$results"

# measure NAME RUNS HYPERFINE-ARGUMENTS...: times a command RUNS times, CSV in results/NAME.csv.
measure() {
  local name=$1 count=$2
  shift 2
  echo "measuring $name, runs: $count" >&2
  hyperfine --style none --runs "$count" --export-csv "$results/$name.csv" "$@"
}

# field NAME COLUMN: a column of a measurement (mean, median, user, system), in seconds.
field() {
  awk -F, -v column="$2" '
    NR == 1 { for (i = 1; i <= NF; ++i) index_of[$i] = i }
    NR == 2 { print $(index_of[column]) }' "$results/$1.csv"
}

# compiled OUTPUT: how many files a build printed as compiled.
compiled() {
  grep -c "Compiling " <<<"$1" || true
}

# The full serial builds come first: they also make the trees the other measurements use.
measure full-tidemake "$full_runs" --prepare "$clean_tidemake" "${tidemake[*]}"
measure full-ninja "$full_runs" --prepare "$clean_ninja" "ninja -j1"

# Both built everything, and tidemake's compiles left their dependency files.
objects_tidemake=$(find . -path '*/Debug/*.o' | wc -l)
objects_ninja=$(find . -path '*/Ninja/*.o' | wc -l)
depfiles=$(find . -path '*/Debug/*.d' | wc -l)
libraries_tidemake=$(find . -path '*/Debug/*.a' | wc -l)
libraries_ninja=$(find . -path '*/Ninja/*.a' | wc -l)
expected=$((projects * files))
if [ "$objects_tidemake" -ne "$expected" ] || [ "$objects_ninja" -ne "$expected" ] ||
   [ "$depfiles" -ne "$expected" ] || [ "$libraries_tidemake" -ne "$projects" ] ||
   [ "$libraries_ninja" -ne "$projects" ]; then
  echo "incomplete builds: tidemake made $objects_tidemake objects, $depfiles .d files and" \
       "$libraries_tidemake libraries, Ninja $objects_ninja objects and $libraries_ninja" \
       "libraries, of $expected objects and $projects libraries" >&2
  exit 1
fi

# The same work after a header changes, and none when nothing did: else the timings below
# would compare different things.
touch "$touched"
echo "touching $touched: tidemake compiles $(compiled "$("${tidemake[@]}")") files," \
     "Ninja $(compiled "$(ninja)")" >&2
if [ "$(compiled "$("${tidemake[@]}")")" -ne 0 ] || [ "$(ninja -n)" != "ninja: no work to do." ]; then
  echo "a second build still has work to do" >&2
  exit 1
fi

# tidemake's -j, where it is there: a dry run of an up-to-date tree accepts it or not.
if tidemake -j 2 -show -config Debug bench.hdp >/dev/null 2>&1; then
  measure parallel-tidemake "$full_runs" --prepare "$clean_tidemake" \
    "tidemake -j 2 -exitstatus -config Debug bench.hdp"
fi
measure parallel-ninja "$full_runs" --prepare "$clean_ninja" "ninja -j2"

measure noop-tidemake "$runs" -N --warmup 1 "${tidemake[*]}"
measure noop-ninja "$runs" -N --warmup 1 "ninja"
measure touch-tidemake "$runs" -N --prepare "touch $touched" "${tidemake[*]}"
measure touch-ninja "$runs" -N --prepare "touch $touched" "ninja"

# peak NAME COMMAND...: the median of `runs` peak resident sizes of COMMAND, in kilobytes.
peak() {
  local name=$1
  shift
  echo "measuring $name, runs: $runs" >&2
  for _ in $(seq "$runs"); do
    /usr/bin/time -f %M -o "$results/$name.kb" "$@" >/dev/null
    cat "$results/$name.kb"
  done | sort -n | awk '{ value[NR] = $1 } END { print value[int((NR + 1) / 2)] }'
}
memory_tidemake=$(peak memory-tidemake "${tidemake[@]}")
memory_ninja=$(peak memory-ninja ninja)

# --- The table -----------------------------------------------------------------------------

# row LABEL TIDEMAKE NINJA UNIT: a line of the table; values in seconds for "ms" and "s", in
# kilobytes for "MB"; "n/a" where a value is missing.
row() {
  awk -v label="$1" -v a="$2" -v b="$3" -v unit="$4" 'BEGIN {
    scale = unit == "ms" ? 1000 : unit == "MB" ? 1 / 1024 : 1
    format = unit == "ms" ? "%.0f %s" : "%.1f %s"
    left = a == "n/a" ? "n/a" : sprintf(format, a * scale, unit)
    right = b == "n/a" ? "n/a" : sprintf(format, b * scale, unit)
    ratio = a == "n/a" || b == "n/a" || b + 0 == 0 ? "" : sprintf("%.2f", a / b)
    printf "| %s | %s | %s | %s |\n", label, left, right, ratio
  }'
}
cpu() { awk -v user="$(field "$1" user)" -v sys="$(field "$1" system)" 'BEGIN { print user + sys }'; }

if [ -f "$results/parallel-tidemake.csv" ]; then
  parallel_tidemake=$(field parallel-tidemake median)
else
  parallel_tidemake=n/a
fi

echo
echo "$projects library projects x $files C files, each including $includes of its project's" \
     "$headers headers; $(nproc) cores, load average $load_at_start at the start and" \
     "$(cut -d' ' -f1-3 /proc/loadavg) at the end;" \
     "$(ninja --version | sed 's/^/Ninja /'), tidemake $(git -C "$root" describe --always --dirty 2>/dev/null || echo '?')"
echo
echo "| | tidemake | Ninja | ratio |"
echo "|---|---|---|---|"
row "no-op build, wall (median of $runs)" "$(field noop-tidemake median)" \
  "$(field noop-ninja median)" ms
row "no-op build, CPU (mean of $runs)" "$(cpu noop-tidemake)" "$(cpu noop-ninja)" ms
row "rebuild after touching one header ($touched_count files), wall (median of $runs)" \
  "$(field touch-tidemake median)" "$(field touch-ninja median)" ms
row "full build, serial, wall (median of $full_runs)" "$(field full-tidemake median)" \
  "$(field full-ninja median)" s
row "full build, serial, system CPU (mean of $full_runs)" "$(field full-tidemake system)" \
  "$(field full-ninja system)" s
row "full build, \`-j 2\`, wall (median of $full_runs)" "$parallel_tidemake" \
  "$(field parallel-ninja median)" s
row "no-op build, peak memory (median of $runs)" "$memory_tidemake" "$memory_ninja" MB
