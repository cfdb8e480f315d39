#!/usr/bin/env bash
# Builds the library and finds edges, corners, maxima, lines and circles of some photographs; the results are in out/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

photographs=(coins.png moon.png camera.png astronaut.png chelsea.png page.png retina.jpg)
folder=build/pictures

# The photographs come in the data folder of a Debian package; nothing of it is installed.
downloadPhotographs()
{
    local work=$1
    (cd "$work" && apt-get download -qq -o APT::Sandbox::User=root python3-skimage) || return
    dpkg-deb --fsys-tarfile "$work"/python3-skimage_*.deb |
        tar -x -C "$work" --strip-components=6 ./usr/lib/python3/dist-packages/skimage/data/
}

havePhotographs()
{
    local photograph
    for photograph in "${photographs[@]}"; do
        [[ -f $folder/$photograph ]] || return
    done
}

getPhotographs()
{
    echo "Downloading photographs to $folder"
    mkdir -p build
    local work
    work=$(mktemp -d build/pictures.XXXXXX)
    # The second time with fresh lists of packages: the first time there may be none.
    if downloadPhotographs "$work" 2>"$work/errors" ||
        { asRoot apt-get update -qq && downloadPhotographs "$work"; } 2>"$work/errors"; then
        rm -rf "$folder"
        mv "$work/data" "$folder"
        rm -r "$work"
    else
        cat "$work/errors" >&2
        rm -r "$work"
        echo "demo.sh: cannot get the Debian package python3-skimage, which has the photographs: no network?" >&2
        echo "demo.sh: any picture of yours will do as well: build/release/bin/edges PICTURE -o out" >&2
        return 1
    fi
}

installMissing "${orvikPackages[@]}"
cmake --preset release
cmake --build build/release --target edges corners extrema lines circles
havePhotographs || getPhotographs

for photograph in "${photographs[@]}"; do
    echo
    build/release/bin/edges "$folder/$photograph" -o out
done
echo
build/release/bin/corners "$folder/camera.png" --max 200 -o out
echo
build/release/bin/extrema "$folder/coins.png" --distance 15 --threshold 150 -o out
echo
build/release/bin/lines "$folder/camera.png" --sigma 1.5 --low 15 --high 30 --threshold 0.4 -o out
echo
build/release/bin/circles "$folder/coins.png" --min-radius 12 --max-radius 35 --kind bright --ratio 0.25 -o out
echo
build/release/bin/circles "$folder/moon.png" --min-radius 4 --max-radius 30 -o out
echo
echo "Results in $PWD/out:"
ls out
