#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy on what differs from a revision, committed or not: by default from where the
# branch left origin/main, and on main itself from half a day before its last commit. --all: on everything. --at-most N: on
# the first N units of that. Needs the release build, which tells how units are compiled and what they include.
#
# usage: tidy.sh [--at-most N] [--all | REVISION]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

atMost=100000
if [[ ${1-} == --at-most ]]; then
    atMost=$2
    shift 2
fi
if [[ ! -f build/release/compile_commands.json ]]; then
    echo "${0##*/}: there is no release build: cmake --preset release && cmake --build --preset release" >&2
    exit 1
fi
command -v clang-tidy-14 >/dev/null || installMissing clang-tidy-14

if [[ ${1-} == --all ]]; then
    units=$(scripts/tidyUnits.py)
else
    base=${1-}
    if [[ -z $base ]]; then
        base=$(git merge-base HEAD origin/main 2>/dev/null || true)
        [[ -n $base && $base != $(git rev-parse HEAD) ]] ||
            base=$(git rev-list -1 --before="$(($(git log -1 --format=%ct) - 12 * 3600))" HEAD)
        [[ -n $base ]] || base=$(git rev-list --max-parents=0 HEAD)
    fi
    mapfile -t changed < <(git diff --name-only --diff-filter=d "$base" -- '*.h' '*.cpp' '*.c')
    if [[ ${#changed[@]} -eq 0 ]]; then
        echo "No C or C++ file differs from $base"
        exit 0
    fi
    units=$(scripts/tidyUnits.py "${changed[@]}")
fi
mapfile -t units <<<"$units"
if [[ ${#units[@]} -gt $atMost ]]; then
    echo "Not looked at, being more than $atMost units: ${units[*]:$atMost}"
    units=("${units[@]:0:$atMost}")
fi
echo "clang-tidy on ${#units[@]} units"
# Warnings are errors; what it tells of headers that are not ours, a count alone, is left out.
printf '%s\0' "${units[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 -p build/tidy --quiet --warnings-as-errors='*' 2> >(grep -v 'warnings\? generated' >&2)
