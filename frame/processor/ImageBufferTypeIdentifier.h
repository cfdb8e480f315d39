#pragma once

#include "frame/image/BufferType.h"
#include "frame/processor/AlgorithmFunctionSelector.h"

namespace orvik { namespace imaproc {

/// The type of an image's samples, as what a kernel is chosen by. It lies beside the selector, since the registration of
/// kernels needs nothing else of images.
class ImageBufferTypeIdentifier : public processor::BaseDataTypeIdentifier
{
public:
    void init(image::eImageBufferType type) { m_type = type; }
};

}}  // namespace orvik::imaproc
