#include "siblings/AdvancedMorphology/Processor/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/processor/ProcessorFactory.h"

#include <limits>

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(LabelExtremumPropagation2dImgLutBuildPassLvl2)

namespace {

/// Reads line `y` of a plane into whole numbers or doubles, whatever its type.
template<class T>
void readLine(const image::BaseImage& plane, unsigned long y, std::vector<T>& line)
{
    image::withSampleType(image::toDataType(plane.getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        const Sample* const samples = static_cast<const Sample*>(plane.getLine(y));
        for (unsigned long x = 0; x < line.size(); ++x)
            line[x] = static_cast<T>(samples[x]);
    });
}

}  // namespace

processor::RulePtr LabelExtremumPropagation2dImgLutBuildPassLvl2::createRule() const
{
    return matchSize(attribute<InSubImg2d>(), attribute<InSubLabelImg2d>())
           && matchSize(attribute<InSubImg2d>(), attribute<OutImg>());
}

BoolResult LabelExtremumPropagation2dImgLutBuildPassLvl2::runDerived()
{
    const image::BaseImage& values = *value<InSubImg2d>();
    const image::BaseImage& labels = *value<InSubLabelImg2d>();
    image::BaseImage& out = *value<OutImg>();
    const unsigned long sizeX = out.getSizeX(), sizeY = out.getSizeY(), nbLabels = value<InNbLabels>();
    const bool minima = isMinima(value<InLocalExtremumType>());

    // Doubles hold the values of every sample type exactly.
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> extrema(nbLabels + 1, minima ? infinity : -infinity);
    std::vector<double> valueLine(sizeX);
    std::vector<unsigned long> labelLine(sizeX);
    for (unsigned long y = 0; y < sizeY; ++y) {
        readLine(values, y, valueLine);
        readLine(labels, y, labelLine);
        for (unsigned long x = 0; x < sizeX; ++x) {
            if (labelLine[x] > nbLabels)
                return failure("label " + std::to_string(labelLine[x]) + " is above the number of labels, "
                               + std::to_string(nbLabels));
            double& extremum = extrema[labelLine[x]];
            if (minima ? valueLine[x] < extremum : valueLine[x] > extremum)
                extremum = valueLine[x];
        }
    }
    extrema[0] = 0.0;
    for (unsigned long y = 0; y < sizeY; ++y) {
        readLine(labels, y, labelLine);
        image::withSampleType(image::toDataType(out.getBufferType()), [&](auto zero) {
            typedef decltype(zero) Sample;
            Sample* const line = static_cast<Sample*>(out.accessLine(y));
            for (unsigned long x = 0; x < sizeX; ++x)
                line[x] = static_cast<Sample>(extrema[labelLine[x]]);
        });
    }
    return success();
}

}}}  // namespace orvik::imaproc::advmorpho
