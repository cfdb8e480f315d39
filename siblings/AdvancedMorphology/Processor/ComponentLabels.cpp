#include "siblings/AdvancedMorphology/Processor/ComponentLabels.h"

#include "frame/attr/Declarations.h"
#include "frame/image/ImageLines.h"
#include "frame/util/NumericLimits.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace advmorpho {

namespace {

/// Writes the labels of one part; its first component gets label `first`.
template<class Label>
void writeLabels(const ComponentRuns& runs, unsigned long first, image::BaseImage& labels)
{
    image::forEachLine(labels, [&](unsigned long y, unsigned long z, unsigned long c, unsigned long t) {
        std::fill_n(static_cast<Label*>(labels.accessLine(y, z, c, t)), labels.getSizeX(), Label(0));
    });
    runs.forEachRun([&](unsigned long y, unsigned long z, const Run& run) {
        Label* const line = static_cast<Label*>(labels.accessLine(y, z));
        std::fill(line + run.start, line + run.end, static_cast<Label>(first + run.component));
    });
}

/// The greatest whole number that samples of the type can tell apart from its neighbours.
unsigned long greatestLabel(eDataType type)
{
    unsigned long greatest = 0;
    image::withSampleType(type, [&](auto zero) {
        typedef decltype(zero) Label;
        greatest = std::is_same<Label, float>::value ? 1ul << 24 : static_cast<unsigned long>(NumericLimits<Label>::s_max);
    });
    return greatest;
}

}  // namespace

BoolResult writeLabels(const ComponentsOfParts& parts, unsigned long sizeZ, const char* name, image::BaseImage& labels,
                       unsigned int& maxLabel)
{
    const eDataType type = image::toDataType(labels.getBufferType());
    unsigned long nbLabels = 0;
    for (const auto& part : parts)
        nbLabels += part.second->runs.getNbComponents();
    const unsigned long greatest = std::min<unsigned long>(greatestLabel(type), NumericLimits<unsigned int>::s_max);
    if (nbLabels > greatest)
        return failure("there are " + std::to_string(nbLabels) + " connected components, but " + name + ", "
                       + toString(labels.getBufferType()) + ", can name only " + std::to_string(greatest)
                       + ": use the iterative optimization policy or wider labels");
    unsigned long next = 1;
    for (const auto& part : parts) {
        PlanIndex first = planAt(part.first, labels.getSizeZ() / sizeZ, labels.getSizeC());
        first.z *= sizeZ;
        const ImagePtr view = labels.getView(first, sizeZ);
        image::withSampleType(type, [&](auto zero) { writeLabels<decltype(zero)>(part.second->runs, next, *view); });
        next += part.second->runs.getNbComponents();
    }
    maxLabel = static_cast<unsigned int>(nbLabels);
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho
