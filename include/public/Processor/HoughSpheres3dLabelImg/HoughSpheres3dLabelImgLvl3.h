#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ProcessingAlgorithm.h"

namespace orvik { namespace imaproc { namespace fd {

struct SphereSlice;

/// Level 3: one strip of slices. The spheres are drawn into a slice of labels, each where it can be, then its lines are
/// written.
class ORVIK_API HoughSpheres3dLabelImgLvl3
    : public ProcessingAlgorithm<HoughSpheres3dLabelImgLvl3, attr::InHoughSpheres3dPpties, attr::OutLabelZStrip3d>
{
    ORVIK_PROCESSOR(HoughSpheres3dLabelImgLvl3, 74)

    typedef attr::OutLabelZStrip3d KeyStrip;
    typedef LineStripParserMode ParserMode;

    /// None: the kernel goes over the strip slice by slice, and is called once for all of it.
    void initDataParserColl(processor::DataParserColl& coll) override { coll.clear(); }
    processor::StageResult preProcess() override;
    template<class Sample, core::eInstructionSet Set>
    BoolResult genericProcessFunction(const processor::ProcessingInfo& info);

private:
    Ptr<SphereSlice> m_slice;
};

}}}  // namespace orvik::imaproc::fd
