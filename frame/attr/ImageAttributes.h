#pragma once

#include "frame/imaproc/ImageAttributes.h"

// Whole images and sub-images, one line per role.

namespace orvik { namespace imaproc { namespace attr {

ORVIK_INPUT(InImg, (BaseInputImageAttribute), "image");
ORVIK_INPUT(InImg1, (BaseInputImageAttribute), "first image");
ORVIK_INPUT(InImg2, (BaseInputImageAttribute), "second image");
ORVIK_INPUT(InGreyImg2d, (BaseInputImageAttribute), "grey image");
ORVIK_INPUT(InGxGreyImg2d, (BaseInputImageAttribute), "gradient along x");
ORVIK_INPUT(InGyGreyImg2d, (BaseInputImageAttribute), "gradient along y");
ORVIK_INPUT(InBinLabImg, (BaseInputImageAttribute), "binary or label image");

ORVIK_INPUT(InSubImg2d, (BaseInputImageAttribute), "one plane");
ORVIK_INPUT(InSubImg2d1, (BaseInputImageAttribute), "one plane of the first image");
ORVIK_INPUT(InSubImg2d2, (BaseInputImageAttribute), "one plane of the second image");
ORVIK_INPUT(InSubGxImg2d, (BaseInputImageAttribute), "one plane of the gradient along x");
ORVIK_INPUT(InSubGyImg2d, (BaseInputImageAttribute), "one plane of the gradient along y");
ORVIK_INPUT(InSubLabelImg2d, (BaseInputImageAttribute), "one plane of labels");

ORVIK_OUTPUT(OutImg, (BaseOutputImageAttribute), "result");
ORVIK_OPTIONAL_OUTPUT(OutOptImg, (BaseOutputImageAttribute), "result that may be had as well");
ORVIK_OUTPUT(OutBinImg, (BaseOutputImageAttribute), "binary result");
ORVIK_OUTPUT(OutLabelImg, (BaseOutputImageAttribute), "labels");
ORVIK_OUTPUT(OutWk1Img, (BaseOutputImageAttribute), "first working image");
ORVIK_OUTPUT(OutWk2Img, (BaseOutputImageAttribute), "second working image");
ORVIK_OUTPUT(OutWk3Img, (BaseOutputImageAttribute), "third working image");
ORVIK_OUTPUT(OutGxGxImg, (BaseOutputImageAttribute), "squared gradient along x, smoothed");
ORVIK_OUTPUT(OutGyGyImg, (BaseOutputImageAttribute), "squared gradient along y, smoothed");
ORVIK_OUTPUT(OutGxGyImg, (BaseOutputImageAttribute), "product of both gradients, smoothed");
ORVIK_OUTPUT(OutSubImg2d, (BaseOutputImageAttribute), "one plane of the result");
ORVIK_OPTIONAL_OUTPUT(OutOptSubGradXImg2d, (BaseOutputImageAttribute), "one plane of the gradient along x");
ORVIK_OPTIONAL_OUTPUT(OutOptSubGradYImg2d, (BaseOutputImageAttribute), "one plane of the gradient along y");
ORVIK_OPTIONAL_OUTPUT(OutOptWk1BinImg, (BaseOutputImageAttribute), "working image: classes of pixels");
ORVIK_OPTIONAL_OUTPUT(OutOptWk2BinImg, (BaseOutputImageAttribute), "working image: mask of all edge pixels");
ORVIK_OPTIONAL_OUTPUT(OutOptWk1LabelImg, (BaseOutputImageAttribute), "working image: connected components");
ORVIK_OPTIONAL_OUTPUT(OutOptGradXImg, (BaseOutputImageAttribute), "gradient along x");
ORVIK_OPTIONAL_OUTPUT(OutOptGradYImg, (BaseOutputImageAttribute), "gradient along y");

}}}  // namespace orvik::imaproc::attr
