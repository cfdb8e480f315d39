#!/usr/bin/env bash
# Installs what is missing, builds, runs all tests.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh

installMissing "${orvikPackages[@]}"
cmake --preset release
cmake --build --preset release
ctest --preset release
