#pragma once

#include "frame/imaproc/ImageAttributes.h"

// Strips of lines and of slices, one line per role.

namespace orvik { namespace imaproc { namespace attr {

ORVIK_INPUT(InYStrip2d, (BaseInputYStrip2dAttribute), "strip");
ORVIK_INPUT(InYStrip2d1, (BaseInputYStrip2dAttribute), "strip of the first image");
ORVIK_INPUT(InYStrip2d2, (BaseInputYStrip2dAttribute), "strip of the second image");
ORVIK_INPUT(InLabelYStrip2d, (BaseInputYStrip2dAttribute), "strip of labels");
ORVIK_INPUT(InKnlYStrip2d, (BaseInputYStrip2dWithKernelAttribute), "strip with margins");
ORVIK_INPUT(InGxKnlYStrip2d, (BaseInputYStrip2dWithKernelAttribute), "strip with margins of the gradient along x");
ORVIK_INPUT(InGyKnlYStrip2d, (BaseInputYStrip2dWithKernelAttribute), "strip with margins of the gradient along y");
ORVIK_INPUT(InXXYStrip2d, (BaseInputYStrip2dAttribute), "strip of the squared gradient along x, smoothed");
ORVIK_INPUT(InXYYStrip2d, (BaseInputYStrip2dAttribute), "strip of the product of both gradients, smoothed");
ORVIK_INPUT(InYYYStrip2d, (BaseInputYStrip2dAttribute), "strip of the squared gradient along y, smoothed");

ORVIK_OUTPUT(OutYStrip2d, (BaseOutputYStrip2dAttribute), "strip of the result");
ORVIK_OUTPUT(OutGxGxYStrip2d, (BaseOutputYStrip2dAttribute), "strip of the squared gradient along x, smoothed");
ORVIK_OUTPUT(OutGyGyYStrip2d, (BaseOutputYStrip2dAttribute), "strip of the squared gradient along y, smoothed");
ORVIK_OUTPUT(OutGxGyYStrip2d, (BaseOutputYStrip2dAttribute), "strip of the product of both gradients, smoothed");
ORVIK_OPTIONAL_OUTPUT(OutOptGradXYStrip2d, (BaseOutputYStrip2dAttribute), "strip of the gradient along x");
ORVIK_OPTIONAL_OUTPUT(OutOptGradYYStrip2d, (BaseOutputYStrip2dAttribute), "strip of the gradient along y");

}}}  // namespace orvik::imaproc::attr
