#!/usr/bin/env bash
# `setup` takes a libpd of this checkout only when it was built as it would be built now, and ends at the first step
# that fails.
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

shown=$(working "long work" log bash -euc 'echo the reason; false; echo further' 2>&1) && die "a failure is not told"
[[ $shown == *"the reason"* && $shown != *further* ]] || die "a failure shows: $shown"
shown=$(working "long work" log echo quiet 2>&1) || die "no failure is told as one"
[[ $shown == *done* && $shown != *quiet* && $(cat log) == quiet ]] || die "work shows: $shown"

dpkg-query() { printf '%s installed\n' "${APT_PACKAGES[@]:1}"; return 1; }
[ "$(missing_apt_packages)" = "${APT_PACKAGES[0]}" ] || die "missing: $(missing_apt_packages)"
