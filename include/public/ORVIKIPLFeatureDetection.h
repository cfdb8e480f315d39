#pragma once

/// All public functions, and what it takes to call them: images, records, run control.

#include "Processor/CannyEdges2dImg/CannyEdges2dImgLvl1.h"
#include "Processor/CannySurfaces3dImg/CannySurfaces3dImgLvl1.h"
#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl1.h"
#include "Processor/ExtractLocalExtrema3d/ExtractLocalExtrema3dLvl1.h"
#include "Processor/HarrisCorner2d/HarrisCorner2dLvl1.h"
#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl1.h"
#include "Processor/HarrisCorner3d/HarrisCorner3dLvl1.h"
#include "Processor/HarrisCorner3dImg/HarrisCorner3dImgLvl1.h"
#include "Processor/HoughCircles2d/HoughCircles2dLvl1.h"
#include "Processor/HoughCircles2dImg/HoughCircles2dImgLvl1.h"
#include "Processor/HoughCirclesPhaseCoded2dImg/HoughCirclesPhaseCoded2dImgLvl1.h"
#include "Processor/HoughLines2d/HoughLines2dLvl1.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl1.h"
#include "Processor/HoughLinesGradient2d/HoughLinesGradient2dLvl1.h"
#include "Processor/HoughLinesGradient2dImg/HoughLinesGradient2dImgLvl1.h"
#include "Processor/HoughSpheres3d/HoughSpheres3dLvl1.h"
#include "Processor/HoughSpheres3dImg/HoughSpheres3dImgLvl1.h"

#include "frame/attr/Records.h"
#include "frame/core/Scheduler.h"
#include "frame/image/BaseImage.h"
#include "frame/serialization/PlanIndexedColl.h"
#include "frame/util/BaseException.h"
#include "siblings/Filtering/Processor/GaussianGradient2dImg/GaussianGradient2dImgLvl1.h"
#include "siblings/Filtering/Processor/GaussianGradient3dImg/GaussianGradient3dImgLvl1.h"
