#!/bin/sh
# Compiles hosts with one line each, from what pkg-config says, and runs them: pkg-config.sh SOURCES PREFIX CXX FLAGS
set -eu
sources=$1 prefix=$2 compiler=$3 flags=$4
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name qvt-core-3.0.pc)")
export PKG_CONFIG_PATH

# build <standard> <source> <packages>
build() {
    # shellcheck disable=SC2046,SC2086
    "$compiler" $flags -std=c++"$1" "$sources/$2" -o "$made/host" $(pkg-config --cflags --libs $3) \
        -Wl,-rpath,"$(pkg-config --variable=libdir qvt-core-3.0)"
    LD_PRELOAD=${QVT_PRELOAD:-} "$made/host"
}

build 17 host.cpp qvt-data-3.0
build 20 host.cpp qvt-data-3.0
build 17 file.cpp qvt-file-3.0
build 20 comfort.cpp 'qvt-data-3.0 qvt-file-3.0'
