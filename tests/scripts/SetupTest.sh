#!/usr/bin/env bash
# `setup` takes a libpd of this checkout only when it was built as it would be built now.
set -euo pipefail
# shellcheck source=scripts/setup
source "$(dirname "$0")/../../scripts/setup"

cd "$(mktemp -d)"
trap 'rm -rf "$PWD"' EXIT
unset LIBPD_ROOT
pkg-config() { return 1; } # the system has none
expect() { [ "$(have_libpd && echo yes || echo no)" = "$1" ] || die "$2: libpd should be there: $1"; }

expect no "nothing built"
mkdir -p .deps/libpd/lib .deps/libpd/include/libpd
touch .deps/libpd/lib/libpd.a .deps/libpd/include/libpd/z_ringbuffer.h
expect no "built by an unknown recipe"
libpd_recipe >.deps/libpd/recipe
expect yes "built by this recipe"
export LIBPD_CFLAGS="-O0"
expect no "built with other flags"
