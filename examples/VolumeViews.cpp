#include "VolumeViews.h"

#include "PictureCodec.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvik::examples {
namespace {

using namespace codec;

constexpr long g_reach = 3;  ///< of crosses, in pixels

struct Side
{
    int right, down, along;  ///< axes
    bool isUpward;           ///< the second one
};

constexpr std::array<Side, 3> g_sides = {Side{0, 1, 2, false}, Side{0, 2, 1, true}, Side{1, 2, 0, true}};

std::array<unsigned long, 3> sizesOf(const Volume& volume)
{
    return {volume.sizeX, volume.sizeY, volume.sizeZ};
}

/// The number of a view's pixel.
std::size_t pixelOf(const Side& side, const View& view, unsigned long right, unsigned long down)
{
    return (side.isUpward ? view.sizeY - 1 - down : down) * view.sizeX + right;
}

/// Calls work(sample, right, down) for the samples of the plane through the middle.
template<class Sample, class Work>
void visitCut(const Volume& volume, const Side& side, Work&& work)
{
    const std::array<unsigned long, 3> sizes = sizesOf(volume);
    std::array<unsigned long, 3> at = {};
    at[side.along] = sizes[side.along] / 2;
    for (at[side.down] = 0; at[side.down] < sizes[side.down]; ++at[side.down]) {
        for (at[side.right] = 0; at[side.right] < sizes[side.right]; ++at[side.right]) {
            const std::size_t index = (at[2] * sizes[1] + at[1]) * sizes[0] + at[0];
            work(loadSample<Sample>(volume.samples.data() + index * sizeof(Sample)), at[side.right], at[side.down]);
        }
    }
}

template<class Sample>
void raise(Sample& largest, Sample sample)
{
    if (sample > largest)  // no NaN is
        largest = sample;
}

GreyScale scaleOf(const Volume& volume)
{
    return GreyScale(volume.sampleType, volume.samples.data(), volume.samples.size() / bytesPerSample(volume.sampleType));
}

void mark(const Side& side, View& view, long right, long down)
{
    if (right >= 0 && down >= 0 && right < static_cast<long>(view.sizeX) && down < static_cast<long>(view.sizeY))
        view.pixels[pixelOf(side, view, static_cast<unsigned long>(right), static_cast<unsigned long>(down))] = 255;
}

void markCross(const Side& side, View& view, std::array<long, 3> at, long reach)
{
    for (long step = -reach; step <= reach; ++step) {
        mark(side, view, at[side.right] + step, at[side.down]);
        mark(side, view, at[side.right], at[side.down] + step);
    }
}

void markCircle(const Side& side, View& view, std::array<double, 3> at, double radius)
{
    const long nbSteps = std::lround(8 * radius) + 8;  // no pixel is passed over
    for (long i = 0; i < nbSteps; ++i) {
        const double angle = 2 * M_PI * static_cast<double>(i) / static_cast<double>(nbSteps);
        mark(side, view, std::lround(at[side.right] + radius * std::cos(angle)),
             std::lround(at[side.down] + radius * std::sin(angle)));
    }
}

}  // namespace

Views blankViews(const Volume& volume)
{
    const std::array<unsigned long, 3> sizes = sizesOf(volume);
    Views views;
    for (std::size_t i = 0; i < views.size(); ++i) {
        const unsigned long sizeX = sizes[g_sides[i].right], sizeY = sizes[g_sides[i].down];
        views[i] = {sizeX, sizeY, std::vector<unsigned char>(sizeX * sizeY, 0)};
    }
    return views;
}

Views cutThroughMiddle(const Volume& volume)
{
    Views views = blankViews(volume);
    const GreyScale scale = scaleOf(volume);
    withSampleType(volume.sampleType, [&](auto type) {
        for (std::size_t i = 0; i < views.size(); ++i)
            visitCut<decltype(type)>(volume, g_sides[i], [&](auto sample, unsigned long right, unsigned long down) {
                views[i].pixels[pixelOf(g_sides[i], views[i], right, down)] = scale.levelOf(sample);
            });
    });
    return views;
}

Views projectMaxima(const Volume& volume)
{
    Views views = blankViews(volume);
    const GreyScale scale = scaleOf(volume);
    withSampleType(volume.sampleType, [&](auto type) {
        using Sample = decltype(type);
        const unsigned long sizeX = volume.sizeX, sizeY = volume.sizeY, sizeZ = volume.sizeZ;
        constexpr Sample lowest = std::numeric_limits<Sample>::lowest();
        std::vector<Sample> alongZ(sizeX * sizeY, lowest), alongY(sizeX * sizeZ, lowest), alongX(sizeY * sizeZ, lowest);
        const unsigned char* from = volume.samples.data();
        for (unsigned long z = 0; z < sizeZ; ++z) {
            for (unsigned long y = 0; y < sizeY; ++y) {
                for (unsigned long x = 0; x < sizeX; ++x, from += sizeof(Sample)) {
                    const auto sample = loadSample<Sample>(from);
                    raise(alongZ[y * sizeX + x], sample);
                    raise(alongY[z * sizeX + x], sample);
                    raise(alongX[z * sizeY + y], sample);
                }
            }
        }
        const std::vector<Sample>* const projections[] = {&alongZ, &alongY, &alongX};
        for (std::size_t i = 0; i < views.size(); ++i)
            for (unsigned long down = 0; down < views[i].sizeY; ++down)
                for (unsigned long right = 0; right < views[i].sizeX; ++right)
                    views[i].pixels[pixelOf(g_sides[i], views[i], right, down)] =
                        scale.levelOf((*projections[i])[down * views[i].sizeX + right]);
    });
    return views;
}

void markInProjections(Views& marks, double x, double y, double z)
{
    for (std::size_t i = 0; i < marks.size(); ++i)
        markCross(g_sides[i], marks[i], {std::lround(x), std::lround(y), std::lround(z)}, g_reach);
}

void markInCuts(Views& marks, const Volume& volume, double x, double y, double z)
{
    const std::array<long, 3> at = {std::lround(x), std::lround(y), std::lround(z)};
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const long distance = std::abs(at[g_sides[i].along] - static_cast<long>(sizesOf(volume)[g_sides[i].along] / 2));
        if (distance <= g_reach)
            markCross(g_sides[i], marks[i], at, distance == 0 ? g_reach : 0);
    }
}

void outlineInProjections(Views& marks, double x, double y, double z, double radius)
{
    const std::array<double, 3> at = {x, y, z};
    for (std::size_t i = 0; i < marks.size(); ++i)
        markCircle(g_sides[i], marks[i], at, radius);
}

void outlineInCuts(Views& marks, const Volume& volume, double x, double y, double z, double radius)
{
    const std::array<double, 3> at = {x, y, z};
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const double distance = at[g_sides[i].along] - static_cast<double>(sizesOf(volume)[g_sides[i].along] / 2);
        if (std::abs(distance) <= radius)
            markCircle(g_sides[i], marks[i], at, std::sqrt(radius * radius - distance * distance));
    }
}

void addViews(OutputFiles& files, const std::string& path, const Views& views, const Views& marks)
{
    constexpr unsigned long gap = 4;
    unsigned long sizeX = 2 * gap, sizeY = 0;
    for (const View& view : views) {
        sizeX += view.sizeX;
        sizeY = std::max(sizeY, view.sizeY);
    }
    std::vector<unsigned char> pixels(3 * sizeX * sizeY, 0);
    unsigned long left = 0;
    for (std::size_t i = 0; i < views.size(); ++i) {
        for (unsigned long y = 0; y < views[i].sizeY; ++y) {
            for (unsigned long x = 0; x < views[i].sizeX; ++x) {
                const unsigned char grey = views[i].pixels[y * views[i].sizeX + x];
                const bool isMarked = marks[i].pixels[y * views[i].sizeX + x] != 0;
                unsigned char* const pixel = pixels.data() + 3 * (y * sizeX + left + x);
                pixel[0] = isMarked ? 255 : grey;
                pixel[1] = pixel[2] = isMarked ? 0 : grey;
            }
        }
        left += views[i].sizeX + gap;
    }
    addRgbPng(files, path, sizeX, sizeY, pixels.data(), 3 * static_cast<long>(sizeX));
}

}  // namespace orvik::examples
