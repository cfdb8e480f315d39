#pragma once

#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseRule.h"

namespace orvik { namespace imaproc {

// Kinds of rules on images and strips; each adds the question that tells its sub-kind apart.
enum eImageProcessingRuleType : unsigned int
{
    eIPRT_Image = 0,
    eIPRT_Strip = 1
};

class ORVIK_API BaseImageProcessingRule : public processor::BaseAttributeRule
{
public:
    processor::eAttributeRuleType getAttributeRuleType() const override { return processor::eART_ImageProcessing; }
    virtual eImageProcessingRuleType getImageProcessingRuleType() const = 0;
};

enum eImageRuleType : unsigned int
{
    eIRT_Property = 0,
    eIRT_BinaryMixed = 1
};

class ORVIK_API BaseImageRule : public BaseImageProcessingRule
{
public:
    eImageProcessingRuleType getImageProcessingRuleType() const override { return eIPRT_Image; }
    virtual eImageRuleType getImageRuleType() const = 0;
};

class ORVIK_API BaseImagePropertyRule : public BaseImageRule
{
public:
    eImageRuleType getImageRuleType() const override { return eIRT_Property; }
};

enum eImageBinaryMixedRuleType : unsigned int
{
    eIBMRT_Range = 0,
    eIBMRT_ScalarToSize = 1
};

class ORVIK_API BaseImageBinaryMixedRule : public BaseImageRule
{
public:
    eImageRuleType getImageRuleType() const override { return eIRT_BinaryMixed; }
    virtual eImageBinaryMixedRuleType getImageBinaryMixedRuleType() const = 0;
};

class ORVIK_API BaseRuleMatchImageRange : public BaseImageBinaryMixedRule
{
public:
    eImageBinaryMixedRuleType getImageBinaryMixedRuleType() const override { return eIBMRT_Range; }
};

enum eStripRuleType : unsigned int
{
    eStRT_BinaryMixed = 0
};

class ORVIK_API BaseStripRule : public BaseImageProcessingRule
{
public:
    eImageProcessingRuleType getImageProcessingRuleType() const override { return eIPRT_Strip; }
    virtual eStripRuleType getStripRuleType() const = 0;
};

enum eStripBinaryMixedRuleType : unsigned int
{
    eSBMRT_Range = 0
};

class ORVIK_API BaseStripBinaryMixedRule : public BaseStripRule
{
public:
    eStripRuleType getStripRuleType() const override { return eStRT_BinaryMixed; }
    virtual eStripBinaryMixedRuleType getStripBinaryMixedRuleType() const = 0;
};

class ORVIK_API BaseRuleMatchStripRange : public BaseStripBinaryMixedRule
{
public:
    eStripBinaryMixedRuleType getStripBinaryMixedRuleType() const override { return eSBMRT_Range; }
};

}}  // namespace orvik::imaproc
