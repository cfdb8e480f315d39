#!/usr/bin/python3
"""A volume of packed beads, blurred and noisy, whose truth is known; and how well a list of spheres tells them.

    beads.py make FOLDER          writes beads.raw, 160 x 140 x 120 voxels of uint8, and beads-truth.csv
    beads.py compare FOLDER LIST  prints how many of the beads the list has, and how far off they are
"""

import csv
import pathlib
import sys

import numpy

SIZE = (120, 140, 160)  # z, y, x
NB_BEADS = 40
CONTRAST, NOISE = 100, 20


def place(random):
    """Centres (x, y, z) and radii of beads that touch but do not overlap."""
    beads = []
    while len(beads) < NB_BEADS:
        radius = random.uniform(7, 14)
        centre = [random.uniform(radius, size - 1 - radius) for size in reversed(SIZE)]
        if all(numpy.linalg.norm(numpy.subtract(centre, other[:3])) > radius + other[3] for other in beads):
            beads.append([*centre, radius])
    return numpy.array(beads)


def draw(beads, random):
    z, y, x = numpy.ogrid[tuple(slice(size) for size in SIZE)]
    volume = numpy.full(SIZE, 60.0)
    for bx, by, bz, radius in beads:
        distance = numpy.sqrt((x - bx) ** 2 + (y - by) ** 2 + (z - bz) ** 2)
        volume += CONTRAST * numpy.clip(radius - distance + 0.5, 0, 1)  # the share of a voxel that is within
    return numpy.clip(numpy.rint(volume + random.normal(0, NOISE, SIZE)), 0, 255).astype(numpy.uint8)


def compare(beads, rows):
    """Each bead with the nearest sphere of the list whose centre is within two voxels."""
    found = [(numpy.linalg.norm(bead[:3] - row[:3]), row[3] - bead[3])
             for bead in beads for row in [min(rows, key=lambda r: numpy.linalg.norm(bead[:3] - r[:3]))]]
    near = [each for each in found if each[0] <= 2]
    print(f"beads       {len(near)} of {len(beads)} found, {len(rows)} spheres in the list")
    if near:
        print(f"            centres off by {numpy.median([n[0] for n in near]):.2f} voxels (median), "
              f"radii by {numpy.mean([n[1] for n in near]):+.2f} (mean)")


def main(command, folder, *rest):
    folder = pathlib.Path(folder)
    truth = folder / "beads-truth.csv"
    if command == "make":
        random = numpy.random.default_rng(1)
        beads = place(random)
        folder.mkdir(parents=True, exist_ok=True)
        draw(beads, random).tofile(folder / "beads.raw")
        numpy.savetxt(truth, beads, delimiter=",", header="x,y,z,radius", comments="", fmt="%.3f")
    else:
        with open(rest[0], newline="", encoding="utf-8") as file:
            rows = [[float(row[key]) for key in ("x", "y", "z", "radius")] for row in csv.DictReader(file)]
        compare(numpy.loadtxt(truth, delimiter=",", skiprows=1), numpy.array(rows))


if __name__ == "__main__":
    if len(sys.argv) not in (3, 4) or sys.argv[1] not in ("make", "compare"):
        sys.exit(__doc__)
    main(*sys.argv[1:])
