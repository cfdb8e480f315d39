#!/usr/bin/env python3
"""How many sides of drawn bars are among the strongest lines, by noise: of edges, and of gradients within some tolerances.

usage: PYTHONPATH=build/release/python /usr/bin/python3 benchmarks/LinesTruths.py"""

import math

import numpy
import orvik_fd

SIZE, CONTRAST, NB_PICTURES = 512, 30, 10
TOLERANCES = 0.03, 0.1, 0.4


def bars(rng):
    """A picture with two bright bars and two dark ones, and rho and theta of their sides; theta points to what is brighter."""
    y, x = numpy.mgrid[:SIZE, :SIZE].astype(float)
    picture, sides, angles = numpy.full((SIZE, SIZE), 100.0), [], []
    while len(angles) < 4:
        angle = rng.uniform(0, math.pi)
        if any(abs((angle - other + math.pi / 2) % math.pi - math.pi / 2) < 0.25 for other in angles):
            continue
        angles.append(angle)
        cosine, sine = math.cos(angle), math.sin(angle)
        rho, width = rng.uniform(-120, 120) + (SIZE - 1) / 2 * (cosine + sine), rng.uniform(14, 40)
        inside = x * cosine + y * sine - rho
        sign = 1 if len(angles) % 2 else -1
        picture += sign * CONTRAST * numpy.clip(inside + 0.5, 0, 1) * numpy.clip(width - inside + 0.5, 0, 1)
        for at, direction in (rho, sign), (rho + width, -sign):
            sides.append((at, angle) if direction > 0 else (-at, angle + math.pi))
    return picture, sides


def share(lines, sides, haveDirections):
    """Of the sides, those that one of as many lines lies within 2.5 pixels and 1.5 degrees of."""
    left = list(sides)
    for line in lines[:len(sides)]:
        for side in left:
            turns = [(side[0], side[1])] + ([] if haveDirections else [(-side[0], side[1] + math.pi)])
            if any(abs(rho - line["Rho"]) <= 2.5 and abs((line["Theta"] - theta + math.pi) % (2 * math.pi) - math.pi)
                   <= math.radians(1.5) for rho, theta in turns):
                left.remove(side)
                break
    return 1 - len(left) / len(sides)


def main():
    rng = numpy.random.default_rng(7)
    print("sigma noise  edges  " + "  ".join(f"tolerance {tolerance}" for tolerance in TOLERANCES))
    for sigma in 1, 2:
        for noise in 0, 10, 20, 35:
            shares = numpy.zeros(1 + len(TOLERANCES))
            for _ in range(NB_PICTURES):
                picture, sides = bars(rng)
                gx, gy = orvik_fd.gaussianGradient2dImg((picture + rng.normal(0, noise, picture.shape)).astype("float32"), sigma)
                high = float(numpy.quantile(numpy.hypot(gx, gy), 0.95))
                edges = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=0.4 * high, highThreshold=high)
                shares[0] += share(orvik_fd.houghLines2d(edges, threshold=0)[0], sides, False)
                for i, tolerance in enumerate(TOLERANCES):
                    lines = orvik_fd.houghLinesGradient2d(gx, gy, pixelThreshold=0.4 * high, threshold=0, tolerance=tolerance)[0]
                    shares[i + 1] += share(lines, sides, True)
            print(f"{sigma:5} {noise:5}  " + "  ".join(f"{value:5.2f}" for value in shares / NB_PICTURES), flush=True)


if __name__ == "__main__":
    main()
