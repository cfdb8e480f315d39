#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.h"

#include "siblings/AdvancedMorphology/Processor/ConnectedComponent2dImg/ConnectedComponent2dImgLvl2.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/ImageInitializers.h"
#include "frame/imaproc/ImageRules.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/util/NumericLimits.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace advmorpho {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(ConnectedComponent2dImgLvl1)

namespace {

/// Writes the labels of one plane; its first component gets label `first`.
template<class Label>
void writeLabels(const PlaneRuns& runs, unsigned long first, image::BaseImage& labels)
{
    for (unsigned long y = 0; y < labels.getSizeY(); ++y)
        std::fill_n(static_cast<Label*>(labels.accessLine(y)), labels.getSizeX(), Label(0));
    for (const Run& run : runs.getRuns()) {
        Label* const line = static_cast<Label*>(labels.accessLine(run.y));
        std::fill(line + run.start, line + run.end, static_cast<Label>(first + run.component));
    }
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

processor::RulePtr ConnectedComponent2dImgLvl1::createRule() const
{
    return matchSize(attribute<InBinLabImg>(), attribute<OutLabelImg>());
}

void ConnectedComponent2dImgLvl1::initInitializers(processor::InitializerMap& initializers)
{
    addInitializer<OutLabelImg>(
        initializers, duplicateInOut(attribute<OutLabelImg>(), attribute<InBinLabImg>(), image::eIBT_Label32));
}

processor::RetrievalResult ConnectedComponent2dImgLvl1::retrieveProvider(const core::BasePriority& priority,
                                                                         processor::ProviderPtr& provider)
{
    return dispatch<ConnectedComponent2dImgLvl2>(priority, provider, eachPlane<InSubImg2d>(value<InBinLabImg>()),
                                                 same<InNeighborhood2d>(value<InOptNeighborhood2d>()),
                                                 resultOfEach<OutPlaneComponents>(m_components));
}

processor::StageResult ConnectedComponent2dImgLvl1::postProcess()
{
    const boost::shared_ptr<image::BaseImage>& labels = value<OutLabelImg>();
    const eDataType type = image::toDataType(labels->getBufferType());
    unsigned long nbLabels = 0;
    for (const auto& plane : *m_components)
        nbLabels += plane.second->runs.getNbComponents();
    const unsigned long greatest = std::min<unsigned long>(greatestLabel(type), NumericLimits<unsigned int>::s_max);
    if (nbLabels > greatest)
        return processor::StageResult(processor::eSRT_Failed,
                                      "there are " + std::to_string(nbLabels) + " connected components, but OutLabelImg, "
                                          + toString(labels->getBufferType()) + ", can name only "
                                          + std::to_string(greatest)
                                          + ": use the iterative optimization policy or wider labels");
    SubImageSplit<ConnectedComponent2dImgLvl1, OutLabelImg> planes;
    planes.initBase(eSIST_Plane, eVPT_Slices, eCPT_Channels, eTPT_Times, labels);
    unsigned long next = 1;
    for (const auto& plane : *m_components) {
        boost::shared_ptr<image::BaseImage> subLabels;
        planes.getSubImage(plane.first, subLabels);
        image::withSampleType(type, [&](auto zero) {
            writeLabels<decltype(zero)>(plane.second->runs, next, *subLabels);
        });
        next += plane.second->runs.getNbComponents();
    }
    attribute<OutMaxLabel>()->accessValue() = static_cast<unsigned int>(nbLabels);
    return processor::eSRT_Done;
}

void ConnectedComponent2dImgLvl1::clearIntermediateData() noexcept
{
    m_components->clear();
}

}}}  // namespace orvik::imaproc::advmorpho
