#include "analysis/models/magick_options.h"

namespace brindlet {

namespace {

// clang-format off
constexpr std::string_view optionsWithTwoValues[] = {
    "limit", "statistic", "annotate", "evaluate", "floodfill", "morphology", "set",
};
constexpr std::string_view optionsWithOneValue[] = {
    "affine", "authenticate", "background", "alpha", "blue-primary", "bordercolor", "caption", "cdl", "colors",
    "colorspace", "comment", "compose", "compress", "crop", "decipher", "define", "delay", "density", "depth",
    "direction", "display", "dispose", "dither", "encipher", "encoding", "endian", "family", "fill", "filter", "font",
    "format", "fuzz", "gravity", "green-primary", "intent", "interlace", "interpolate", "kerning", "label", "loop",
    "mask", "mattecolor", "orient", "origin", "page", "pointsize", "preview", "quality", "red-primary", "repage",
    "sampling-factor", "scene", "seed", "size", "stretch", "stroke", "strokewidth", "style", "support", "texture",
    "tile-offset", "treedepth", "transparent-color", "undercolor", "units", "virtual-pixel", "weight", "white-point",
    "adaptive-blur", "adaptive-resize", "adaptive-sharpen", "bilateral-blur", "black-threshold", "blur", "border",
    "channel", "charcoal", "chop", "clip-mask", "clip-path", "colorize", "color-matrix", "contrast-stretch", "convolve",
    "cycle", "draw", "edge", "emboss", "extent", "extract", "frame", "function", "gamma", "gaussian-blur", "geometry",
    "implode", "lat", "layers", "level", "linear-stretch", "median", "mode", "modulate", "motion-blur", "noise",
    "opaque", "ordered-dither", "paint", "polaroid", "posterize", "print", "profile", "quantize", "radial-blur",
    "raise", "random-threshold", "range-threshold", "region", "resample", "resize", "roll", "rotate", "sample", "scale",
    "segment", "selective-blur", "sepia-tone", "shade", "shadow", "sharpen", "shave", "shear", "sigmoidal-contrast",
    "sketch", "solarize", "splice", "spread", "swirl", "threshold", "thumbnail", "tile", "tint", "transparent", "type",
    "unsharp", "vignette", "wave", "white-threshold", "channel-extract", "channel-inject", "channel-swap", "affinity",
    "evaluate-sequence", "fx", "morph", "process", "smush", "write", "clone", "delete", "duplicate", "insert", "swap",
    "debug", "log", "list",
};
// clang-format on

}  // namespace

const ArgExtractor::OptionArities& magickOptions() {
    static const ArgExtractor::OptionArities options = [] {
        ArgExtractor::OptionArities made;
        for (const auto name : optionsWithTwoValues) made.emplace_back(name, 2);
        for (const auto name : optionsWithOneValue) made.emplace_back(name, 1);
        return made;
    }();
    return options;
}

}  // namespace brindlet
