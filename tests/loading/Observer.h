#pragma once

#include "frame/attr/Records.h"
#include "frame/image/BaseImage.h"

/// What a plugin leaves behind when its library is unloaded.
struct Leftovers
{
    boost::shared_ptr<orvik::image::BaseImage> image;
    boost::shared_ptr<orvik::imaproc::attr::CannyThresholds> record;
};

ORVIK_API Leftovers& accessLeftovers();
