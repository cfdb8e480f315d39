#!/usr/bin/env bash
# Lays out all C and C++ files as .clang-format says. With --check it changes nothing: it names what it would change, and
# fails when there is anything.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

case ${1-} in
    "") mode=(-i) ;;
    --check) mode=(--dry-run --Werror) ;;
    *)
        echo "usage: ${0##*/} [--check]" >&2
        exit 2
        ;;
esac

command -v clang-format-14 >/dev/null || installMissing clang-format-14
git ls-files -z -- '*.h' '*.cpp' '*.c' | xargs -0 clang-format-14 "${mode[@]}"
