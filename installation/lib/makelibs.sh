#!/bin/sh
# Assembles the installation's lib/ directory: for every library suffix, the libraries that a
# link names, made from the cross compiler's newlib, libgcc and librdimon multilibs and from
# our own sources. README.md beside this script says what each library holds and why.
#
# usage: makelibs.sh OUTPUT-DIR WORK-DIR SOURCE-DIR INCLUDE-DIR NEWLIB-DIR GCC-LIB-DIR TOOL-PREFIX
set -eu

output=$1 work=$2 sources=$3 include=$4 newlib=$5 gcclib=$6 prefix=$7

# Suffix, multilib directory, and the options that compile our own sources the same way.
sets="
v4t_a_le|.|-marm -march=armv4t -mthumb-interwork
v4t_t_le|thumb/nofp|-mthumb -march=armv4t -mthumb-interwork
v7m_t_le|thumb/v7-m/nofp|-mthumb -march=armv7-m
"
# Suffixes whose code is that of another: v4 is v4T without interworking, for which the
# interworking code serves, and v5TE runs v4T code.
aliases="
v4_a_le|v4t_a_le
v5te_a_le|v4t_a_le
v4_t_le|v4t_t_le
v5te_t_le|v4t_t_le
"

# The members of newlib's C library that format for printf and scanf; the printf and scanf
# libraries supply them, so that the link's choice of variant decides which formatter it gets.
formatters="lib_a-vfprintf.o lib_a-svfprintf.o lib_a-vfscanf.o lib_a-svfscanf.o"

ar=${prefix}ar
objcopy=${prefix}objcopy
gcc=${prefix}gcc

# archive NAME OBJECT...: a fresh archive of the objects.
archive() {
    name=$1
    shift
    rm -f "$name"
    "$ar" rcs "$name" "$@"
}

# link_library LINK TARGET: a link in lib/ to another library.
link_library() {
    ln -sfn "$2" "$output/$1"
}

# compile OBJECT SOURCE OPTIONS...
compile() {
    object=$1 source=$2
    shift 2
    "$gcc" "$@" -mfloat-abi=soft -Os -g -Wall -Wextra -Werror -ffunction-sections \
        -fdata-sections -I"$include" -c "$sources/$source" -o "$object"
}

mkdir -p "$output"
rm -rf "$work"
mkdir -p "$work"

echo "$sets" | while IFS='|' read -r suffix multilib options; do
    [ -n "$suffix" ] || continue
    dir=$work/$suffix
    mkdir -p "$dir"
    # shellcheck disable=SC2086 # the options are several words
    for source in crt semihosting debugio targetio_streams targetio_heap targetio_process \
        targetio_time targetio_console; do
        compile "$dir/$source.o" "$source.c" $options
    done

    # The debug interface libraries: the semihosting trap.
    archive "$output/libarmdi_$suffix.a" "$dir/semihosting.o"
    link_library "libadiv5_$suffix.a" "libarmdi_$suffix.a"
    link_library "libxscale_$suffix.a" "libarmdi_$suffix.a"

    # newlib's maths library and the C++ library as they are.
    link_library "libm_$suffix.a" "$newlib/$multilib/libm.a"
    link_library "libcpp_$suffix.a" "$newlib/$multilib/libstdc++.a"

    # The C library: newlib's without its formatters; libgcc, which the compiler's code needs
    # everywhere and which no library of the link names; and what the compiler's start files
    # would add, as the link runs without them.
    cp "$newlib/$multilib/libc.a" "$dir/newlib-libc.a"
    (cd "$dir" && "$ar" x newlib-libc.a $formatters lib_a-vfiprintf.o lib_a-svfiprintf.o \
        lib_a-vfiscanf.o lib_a-svfiscanf.o)
    # shellcheck disable=SC2086 # a list of member names
    "$ar" d "$dir/newlib-libc.a" $formatters
    rm -f "$output/libc_$suffix.a"
    printf 'CREATE %s\nADDLIB %s\nADDLIB %s\nADDMOD %s\nSAVE\nEND\n' "$output/libc_$suffix.a" \
        "$dir/newlib-libc.a" "$gcclib/$multilib/libgcc.a" "$dir/crt.o" | "$ar" -M

    # The printf and scanf formatters. The floating point variants are newlib's own; the others
    # are newlib's integer-only formatters under the names of the full ones. Their helpers are
    # renamed too, so that they don't clash with the originals, which stay in the C library for
    # the iprintf family. newlib has no formatter without long long, width and precision or
    # character classes, so those variants get the same integer formatter.
    archive "$output/lib_vfprintf_double_long_long_$suffix.a" "$dir/lib_a-vfprintf.o" \
        "$dir/lib_a-svfprintf.o"
    "$objcopy" --redefine-sym _vfiprintf_r=_vfprintf_r --redefine-sym vfiprintf=vfprintf \
        --redefine-sym __sprint_r=__sprint_integer_r "$dir/lib_a-vfiprintf.o" \
        "$dir/vfprintf_integer.o"
    "$objcopy" --redefine-sym _svfiprintf_r=_svfprintf_r \
        --redefine-sym __ssprint_r=__ssprint_integer_r "$dir/lib_a-svfiprintf.o" \
        "$dir/svfprintf_integer.o"
    archive "$output/lib_vfprintf_long_$suffix.a" "$dir/vfprintf_integer.o" \
        "$dir/svfprintf_integer.o"
    for variant in long_nwp long_long long_long_nwp; do
        link_library "lib_vfprintf_${variant}_$suffix.a" "lib_vfprintf_long_$suffix.a"
    done

    archive "$output/lib_vfscanf_double_long_long_$suffix.a" "$dir/lib_a-vfscanf.o" \
        "$dir/lib_a-svfscanf.o"
    link_library "lib_vfscanf_double_long_long_cc_$suffix.a" "lib_vfscanf_double_long_long_$suffix.a"
    "$objcopy" --redefine-sym __svfiscanf=__svfscanf --redefine-sym __svfiscanf_r=__svfscanf_r \
        --redefine-sym _vfiscanf_r=_vfscanf_r --redefine-sym vfiscanf=vfscanf \
        "$dir/lib_a-vfiscanf.o" "$dir/vfscanf_integer.o"
    "$objcopy" --redefine-sym __ssvfiscanf_r=__ssvfscanf_r \
        --redefine-sym __ssrefill_r=__ssrefill_integer_r \
        --redefine-sym _sfread_r=_sfread_integer_r --redefine-sym _sungetc_r=_sungetc_integer_r \
        "$dir/lib_a-svfiscanf.o" "$dir/svfscanf_integer.o"
    archive "$output/lib_vfscanf_long_$suffix.a" "$dir/vfscanf_integer.o" \
        "$dir/svfscanf_integer.o"
    for variant in long_cc long_long long_long_cc; do
        link_library "lib_vfscanf_${variant}_$suffix.a" "lib_vfscanf_long_$suffix.a"
    done

    # Console I/O through the debugger, for any program.
    archive "$output/libdebugio_$suffix.a" "$dir/debugio.o"

    # The C library's system calls: over the target's own character I/O, or over the
    # debugger's file system through newlib's semihosting library. That one takes the start of
    # its heap from the symbol "end", which the generated linker scripts call __heap_start__.
    archive "$output/libc_targetio_impl_$suffix.a" "$dir/targetio_streams.o" \
        "$dir/targetio_heap.o" "$dir/targetio_process.o" "$dir/targetio_time.o" \
        "$dir/targetio_console.o"
    mkdir -p "$dir/rdimon"
    cp "$newlib/$multilib/librdimon.a" "$dir/rdimon/librdimon.a"
    (cd "$dir/rdimon" && "$ar" x librdimon.a rdimon-syscalls.o &&
        "$objcopy" --redefine-sym end=__heap_start__ rdimon-syscalls.o &&
        "$ar" r librdimon.a rdimon-syscalls.o)
    cp "$dir/rdimon/librdimon.a" "$output/libc_debugio_impl_$suffix.a"

    # The exception and RTTI support is already in the C++ library and the C library's libgcc;
    # the link names this library when they are enabled, so it is there, empty.
    printf '!<arch>\n' > "$output/libgccxceptrtti_$suffix.a"
done

echo "$aliases" | while IFS='|' read -r suffix target; do
    [ -n "$suffix" ] || continue
    for library in "$output"/*_"$target".a; do
        name=$(basename "$library" "_$target.a")
        link_library "${name}_$suffix.a" "${name}_$target.a"
    done
done
rm -rf "$work"
