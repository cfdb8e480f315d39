#!/usr/bin/env bash
# Builds the library and finds edges, corners, maxima, lines and circles of some photographs, spheres of packed beads, and
# surfaces, corners, maxima and the eyes of a head; the results are in out/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

photographs=(coins.png moon.png camera.png astronaut.png chelsea.png page.png retina.jpg)
head=ch2.nii.gz  # by magnetic resonance, 181 x 217 x 181 voxels of 1 mm
folder=build/pictures

# Pictures come in data folders of Debian packages; nothing of these is installed.
unpack()
{
    local work=$1 package=$2 place=$3
    (cd "$work" && apt-get download -qq -o APT::Sandbox::User=root "$package") || return
    dpkg-deb --fsys-tarfile "$work/$package"_*.deb | tar -x -C "$work" "./$place"
}

haveAll()
{
    local file
    for file in "$@"; do
        [[ -f $folder/$file ]] || return
    done
}

# Gets files, unless they are there, from a folder of a package.
getFiles()
{
    local what=$1 package=$2 place=$3
    shift 3
    if haveAll "$@"; then
        return
    fi
    echo "Downloading $what to $folder"
    mkdir -p "$folder"
    local work
    work=$(mktemp -d build/pictures.XXXXXX)
    # The second time with fresh lists of packages: the first time there may be none.
    if unpack "$work" "$package" "$place" 2>"$work/errors" ||
        { asRoot apt-get update -qq && unpack "$work" "$package" "$place"; } 2>"$work/errors"; then
        (cd "$work/$place" && mv -t "$OLDPWD/$folder" "$@")
        rm -r "$work"
    else
        cat "$work/errors" >&2
        rm -r "$work"
        echo "demo.sh: cannot get the Debian package $package, which has $what: no network?" >&2
        return 1
    fi
}

installMissing "${orvikPackages[@]}"
cmake --preset release
cmake --build build/release --target edges corners extrema lines circles spheres surfaces
if ! getFiles "the photographs" python3-skimage usr/lib/python3/dist-packages/skimage/data "${photographs[@]}"; then
    echo "demo.sh: any picture of yours will do as well: build/release/bin/edges PICTURE -o out" >&2
    exit 1
fi

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
/usr/bin/python3 examples/beads.py make out
build/release/bin/spheres out/beads.raw --raw-size 160x140x120 --min-radius 6 --max-radius 15 --kind bright --ratio 0.4 \
    --quiet -o out
/usr/bin/python3 examples/beads.py compare out out/beads-spheres.csv
status=0
if getFiles "the head" mricron-data usr/share/mricron/templates "$head"; then
    echo
    build/release/bin/surfaces "$folder/$head" --sigma 1.5 --high 20 -o out
    echo
    build/release/bin/corners "$folder/$head" --sigma 1.5 --distance 8 --max 200 -o out
    echo
    build/release/bin/extrema "$folder/$head" --distance 10 --threshold 150 -o out
    echo
    build/release/bin/spheres "$folder/$head" --min-radius 9 --max-radius 16 --ratio 0.9 -o out
else
    echo "demo.sh: any volume of yours will do as well: build/release/bin/surfaces VOLUME -o out" >&2
    status=1
fi
echo
echo "Results in $PWD/out:"
ls out
exit $status
