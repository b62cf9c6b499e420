// The names of all options of ImageMagick 6.9, without their hyphen or plus sign (`convert -list command`).
#pragma once

#include <string_view>

namespace brindlet::tools {

// With a blank before and behind each.
constexpr std::string_view imageMagickOptions =
    " "
    "adaptive-blur adaptive-resize adaptive-sharpen adjoin affine affinity alpha annotate antialias append "
    "attenuate authenticate auto-gamma auto-level auto-orient average backdrop background bench bias "
    "black-point-compensation black-threshold blend blue-primary blue-shift blur border bordercolor borderwidth "
    "box brightness-contrast cache canny caption cdl channel charcoal chop clamp clip clip-mask clip-path clone "
    "clut coalesce color-matrix colorize colormap colors colorspace combine comment compare complex compose "
    "composite compress connected-components contrast contrast-stretch convolve copy crop cycle debug decipher "
    "deconstruct define delay delete density depth descend deskew despeckle direction displace display dispose "
    "dissimilarity-threshold dissolve distort distribute-cache dither draw duplicate duration edge emboss "
    "encipher encoding endian enhance epsilon equalize evaluate evaluate-sequence extent extract family features "
    "fft fill filter flatten flip floodfill flop font foreground format frame function fuzz fx gamma gaussian "
    "gaussian-blur geometry gravity grayscale green-primary hald-clut help highlight-color hough-lines iconic "
    "identify ift immutable implode insert intensity intent interlace interline-spacing interpolate "
    "interpolative-resize interword-spacing kerning kuwahara label lat layers level level-colors limit "
    "linear-stretch linewidth liquid-rescale list local-contrast log loop lowlight-color magnify map mask matte "
    "mattecolor maximum mean-shift median metric minimum mode modulate moments monitor monochrome morph "
    "morphology mosaic motion-blur name negate noise noop normalize opaque ordered-dither orient origin page "
    "paint passphrase path pause pen perceptible ping pointsize polaroid poly posterize precision preview print "
    "process profile quality quantize quiet radial-blur raise random-threshold recolor red-primary "
    "regard-warnings region remap remote render repage resample resize respect-parentheses reverse roll rotate "
    "rotational-blur sample sampling-factor scale scene scenes screen seed segment selective-blur separate "
    "sepia-tone set shade shadow shared-memory sharpen shave shear sigmoidal-contrast silent "
    "similarity-threshold size sketch smush snaps solarize sparse-color splice spread statistic stegano stereo "
    "stretch strip stroke strokewidth style subimage-search support swap swirl synchronize taint text-font "
    "texture threshold thumbnail tile tile-offset tint title transform transparent transparent-color transpose "
    "transverse treedepth trim type undercolor unique unique-colors units unsharp update use-pixmap verbose "
    "version view vignette virtual-pixel visual watermark wave wavelet-denoise weight white-point "
    "white-threshold window window-group write ";

}  // namespace brindlet::tools
