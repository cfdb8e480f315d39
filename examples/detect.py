"""Edges, corners and lines of a picture, in one figure. Cells as notebooks have them; as a program:

    pip install . matplotlib pillow
    python examples/detect.py picture.png figure.png
"""

# %% A picture: grey levels, (y, x)
import pathlib
import sys
from typing import Any

import matplotlib.pyplot as plt
import numpy
from PIL import Image

import orvik_fd

source = sys.argv[1] if len(sys.argv) > 1 else "build/pictures/camera.png"
target = sys.argv[2] if len(sys.argv) > 2 else "out/figure.png"
picture = numpy.asarray(Image.open(source).convert("L"))
print(source, picture.shape, picture.dtype)

# %% Edges: a gradient smoothed over 1.5 pixels; the steepest tenth of all pixels may begin an edge
gx, gy = orvik_fd.gaussianGradient2dImg(picture, 1.5)
magnitude = numpy.hypot(gx, gy)
high = float(numpy.quantile(magnitude, 0.9))
edges = orvik_fd.cannyEdges2dImg(gx, gy, lowThreshold=0.4 * high, highThreshold=high)
print(f"thresholds {0.4 * high:.1f} and {high:.1f}: {edges.sum()} pixels are edges")

# %% Corners: the 100 strongest, none within 8 pixels of a stronger one
corners = orvik_fd.harrisCorner2d(picture, 1.5, 100, 8)
print("strongest corners:")
for corner in corners[:3]:
    print(f"  x {corner['X']:.0f}, y {corner['Y']:.0f}: {corner['Value']:.0f}")

# %% Lines: those with at least 40 percent of the votes of the longest one
lines, votes = orvik_fd.houghLines2d(edges, threshold=0.4)
for line in lines[:3]:
    print(f"  {line['AccumulatorValue']:.0f} votes at {line['Rho']:.0f} pixels, {numpy.degrees(line['Theta']):.0f} degrees")

# %% A long call in the background, with its progress
fractions: Any = []
handle = orvik_fd.harrisCorner2dImg_async(picture, 4.0, progress=fractions.append)
response = handle.result()
print(f"response from {response.min():.0f} to {response.max():.0f}, told in {len(fractions)} steps")

# %% The figure
figure, axes = plt.subplots(2, 2, figsize=(10, 10), layout="constrained")
height, width = picture.shape
for axis, title, image in zip(
    axes.flat, ("edges", "corners", "lines", "votes for lines"), (~edges, picture, picture, votes), strict=True
):
    axis.imshow(image, cmap="gray", aspect="auto" if image is votes else "equal")
    axis.set_title(title)
axes[0, 1].plot(corners["X"], corners["Y"], "r+")
for line in lines[:10]:
    # x * cos(Theta) + y * sin(Theta) = Rho, drawn from the foot of the normal both ways
    cosine, sine = numpy.cos(line["Theta"]), numpy.sin(line["Theta"])
    along = numpy.array([-1, 1]) * numpy.hypot(width, height)
    axes[1, 0].plot(line["Rho"] * cosine - along * sine, line["Rho"] * sine + along * cosine, "r", linewidth=1)
axes[1, 0].set(xlim=(-0.5, width - 0.5), ylim=(height - 0.5, -0.5))
axes[1, 1].set(xlabel="rho bin", ylabel="theta bin")
pathlib.Path(target).parent.mkdir(parents=True, exist_ok=True)
figure.savefig(target)
print("saved", target)
