// The options of ImageMagick that take values.
//
//     args.extractFlagsAndOptions(magickOptions());
#pragma once

#include "analysis/arg_extractor.h"

namespace brindlet {

// Names without their hyphen. What isn't listed is taken for a flag.
const ArgExtractor::OptionArities& magickOptions();

}  // namespace brindlet
