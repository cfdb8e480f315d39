#pragma once

// What a kernel unit includes before it opens its set: everything that a kernel uses from elsewhere, so that none of it
// is compiled for the set.

#include "frame/core/InstructionSet.h"
#include "frame/image/Buffers.h"
#include "frame/imaproc/ProcessingAlgorithm.h"
#include "frame/processor/KernelRegistrator.h"

#include "frame/util/NumericLimits.h"

#include <immintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
