#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgLvl3.h"

#include "Processor/HoughSpheres3dLabelImg/HoughSpheres3dLabelImgKernel.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_ALGORITHM(HoughSpheres3dLabelImgLvl3)

processor::StageResult HoughSpheres3dLabelImgLvl3::preProcess()
{
    const image::OutputImageZStrip3d& strip = *value<OutLabelZStrip3d>();
    if (!m_slice)
        m_slice = boost::make_shared<SphereSlice>();
    SphereSlice& slice = *m_slice;
    slice.sizeX = strip.getSizeX();
    slice.sizeY = strip.getSizeY();
    const unsigned long widestVector = 16;  // of floats, which may begin at any column
    slice.rowSize = slice.sizeX + widestVector;
    slice.labels.init(slice.rowSize * slice.sizeY, eDT_UInt32);
    slice.drawn.assign(slice.sizeY, {0, 0});

    const unsigned long firstSlice = strip.getStripStartOffsetZ();
    const unsigned long endSlice = firstSlice + strip.getNbLines() / slice.sizeY;
    slice.spheres.clear();
    slice.reaching.clear();
    for (const auto& sphere : value<InHoughSpheres3dPpties>()->get<HoughSpheres3dPpties::Coll>().getNodes()) {
        const unsigned int place = static_cast<unsigned int>(slice.spheres.size());
        slice.spheres.emplace_back();
        if (!sphere)
            continue;
        const auto leaf = [](double value) { return static_cast<float>(value); };
        DrawnSphere& drawn = slice.spheres.back();
        drawn = {leaf(sphere->get<HoughSphere3dPpties::X>()), leaf(sphere->get<HoughSphere3dPpties::Y>()),
                 leaf(sphere->get<HoughSphere3dPpties::Z>()), leaf(sphere->get<HoughSphere3dPpties::Radius>()), 0.0f};
        if (!(drawn.radius >= 0))
            continue;
        drawn.squareWithin = squareWithin(drawn.radius);
        const Reach reach(static_cast<double>(drawn.z), drawn.reach(), endSlice);
        const unsigned long first = std::max(reach.first, firstSlice);
        if (first < reach.end)
            slice.reaching.push_back({place, first, reach.end});
    }
    return processor::eSRT_Done;
}

}}}  // namespace orvik::imaproc::fd
