#pragma once

#include "siblings/AdvancedMorphology/Neighborhood.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/ElementsRange.h"
#include "frame/util/ProcessingResult.h"

namespace orvik { namespace imaproc { namespace advmorpho {

typedef processor::ResultsOfStrips<attr::StatsResult>::Map StatsOfStrips;

/// Each sample of a plane or volume that is not 0 takes the largest value (or the smallest, for minima) that can be reached
/// from it through samples that are not 0, in place. Any sample type; time linear in the image, memory for its runs.
void spreadExtrema(image::BaseImage& image, const Neighborhood& neighborhood, attr::eLocalExtremumType type);

/// The same for largest values of unsigned bytes when Level 3 has spread them within each strip: from strip to strip.
/// False, with nothing done, when a value is above 2.
bool spreadAcrossStrips(image::BaseImage& image, const Neighborhood& neighborhood, const StatsOfStrips& strips);

/// Each labelled sample of a plane or volume takes the largest value (or the smallest) of its label; what has no label
/// becomes 0. All values are looked at before one is written: `values` and `out` may be one image. Fails, before it has
/// written anything, for labels above `nbLabels`.
BoolResult spreadExtremaOfLabels(const image::BaseImage& values, const image::BaseImage& labels, unsigned long nbLabels,
                                 attr::eLocalExtremumType type, image::BaseImage& out);

}}}  // namespace orvik::imaproc::advmorpho
