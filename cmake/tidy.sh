#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Holds program and tests against .clang-tidy, which names what is left out and why. Builds them first, for what is
# generated.
#   cmake/tidy.sh [FOLDER...]   some folders alone

source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

need "${build_packages[@]}" clang clazy clang-tidy
set -- "${@%/}"
build clang build-clang "${@/%//all}"
[ $# -gt 0 ] || set -- '(?!build)[^/]+'
files=("${@/#/^$project/}")
files=("${files[@]/%//}")
run-clang-tidy -quiet -p build-clang "${files[@]}" || fail "clang-tidy has found something."
