# Sourced by the other scripts: what the project needs from Debian, and how it is installed.
# shellcheck shell=bash

# pytest, tqdm and pkg-config are for tests alone; all others are needed to build.
orvikPackages=(g++ cmake ninja-build libboost-dev libboost-filesystem-dev libboost-thread-dev libboost-system-dev
    liblog4cplus-dev libtbb-dev libgtest-dev libpng-dev libjpeg-dev libtiff-dev libcli11-dev zlib1g-dev
    python3 python3-dev python3-numpy python3-pytest python3-tqdm pybind11-dev pkg-config)

asRoot()
{
    if [[ $EUID -eq 0 ]]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "${0##*/}: only root can run '$*', and there is no sudo" >&2
        return 1
    fi
}

isInstalled()
{
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# Installs those of the named packages that are missing; needs neither root nor a network when none is.
installMissing()
{
    if ! command -v apt-get >/dev/null; then
        echo "${0##*/}: no apt-get here; going on in the hope that these are installed: $*" >&2
        return 0
    fi
    local missing=() package
    for package in "$@"; do
        isInstalled "$package" || missing+=("$package")
    done
    if [[ ${#missing[@]} -gt 0 ]]; then
        echo "Installing ${missing[*]}"
        asRoot apt-get update -qq
        asRoot env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
    fi
}
