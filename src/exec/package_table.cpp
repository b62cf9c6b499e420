#include "exec/package_table.h"

namespace brindlet {

namespace {

constexpr std::string_view ffmpegBinaries[] = {"ffmpeg", "ffprobe"};
constexpr std::string_view ghostscriptBinaries[] = {"gs"};
constexpr std::string_view imageMagickBinaries[] = {"magick"};
constexpr std::string_view qpdfBinaries[] = {"qpdf"};
constexpr std::string_view pandocBinaries[] = {"pandoc"};
constexpr std::string_view popplerBinaries[] = {"pdftotext", "pdfinfo", "pdfimages", "pdftohtml"};
constexpr std::string_view gifsicleBinaries[] = {"gifsicle"};
constexpr std::string_view fiotrafBinaries[] = {"fiotraf"};

constexpr PackageInfo packageRows[] = {
    {.name = "FFmpeg",
     .homebrewPackageName = {},
     .source = PackageSource::fenwold,
     .zipName = "ffmpeg.zip",
     .binaries = ffmpegBinaries,
     .description = "Video and audio processing tools",
     .requiresInstallForPrediction = false,
     .licenseName = "LGPL v2.1+ & GPL v2+ Licences",
     .licenseURL = "https://ffmpeg.org/legal.html",
     .sourceURL = "https://ffmpeg.org/download.html"},
    {.name = "Ghostscript",
     .homebrewPackageName = "ghostscript",
     .source = PackageSource::homebrew,
     .zipName = "",
     .binaries = ghostscriptBinaries,
     .description = "PDF rendering and conversion",
     .requiresInstallForPrediction = false,
     .licenseName = "AGPL Licence v3",
     .licenseURL = "https://ghostscript.com/licensing/",
     .sourceURL = "https://ghostscript.com/"},
    {.name = "ImageMagick",
     .homebrewPackageName = "imagemagick",
     .source = PackageSource::homebrew,
     .zipName = "",
     .binaries = imageMagickBinaries,
     .description = "Image processing tools",
     .requiresInstallForPrediction = false,
     .licenseName = "Apache Licence v2",
     .licenseURL = "https://imagemagick.org/script/license.php",
     .sourceURL = "https://imagemagick.org/"},
    {.name = "QPDF",
     .homebrewPackageName = "qpdf",
     .source = PackageSource::homebrew,
     .zipName = "",
     .binaries = qpdfBinaries,
     .description = "PDF splitting, merging, and encryption",
     .requiresInstallForPrediction = false,
     .licenseName = "Apache License v2",
     .licenseURL = "https://qpdf.readthedocs.io/en/stable/license.html",
     .sourceURL = "https://qpdf.org/"},
    {.name = "Pandoc",
     .homebrewPackageName = "pandoc",
     .source = PackageSource::homebrew,
     .zipName = "",
     .binaries = pandocBinaries,
     .description = "Versatile converter for markdown, LaTeX, HTML, and more",
     .requiresInstallForPrediction = false,
     .licenseName = "GPL Licence v2",
     .licenseURL = "https://pandoc.org/",
     .sourceURL = "https://pandoc.org/"},
    {.name = "Poppler",
     .homebrewPackageName = "poppler",
     .source = PackageSource::homebrew,
     .zipName = "",
     .binaries = popplerBinaries,
     .description = "Extract text, images, and info from PDFs",
     .requiresInstallForPrediction = false,
     .licenseName = "GPL License v2",
     .licenseURL = "https://gitlab.freedesktop.org/poppler/poppler/-/blob/master/COPYING",
     .sourceURL = "https://poppler.freedesktop.org/"},
    {.name = "Gifsicle",
     .homebrewPackageName = "gifsicle",
     .source = PackageSource::homebrew,
     .zipName = "",
     .binaries = gifsicleBinaries,
     .description = "Create and manipulate animated GIFs",
     .requiresInstallForPrediction = false,
     .licenseName = "GPL License v2",
     .licenseURL = "https://www.lcdf.org/gifsicle/",
     .sourceURL = "https://www.lcdf.org/gifsicle/"},
    {.name = "Fiotraf",
     .homebrewPackageName = {},
     .source = PackageSource::fenwold,
     .zipName = "fiotraf.zip",
     .binaries = fiotrafBinaries,
     .description = "A smart tool to organize and clean up messy directories",
     .requiresInstallForPrediction = true,
     .licenseName = "MIT",
     .licenseURL = "https://opensource.org/license/mit",
     .sourceURL = "https://assets.fenwold.example/brindlet/fiotraf"},
};

}  // namespace

std::span<const PackageInfo> availablePackages() {
    return packageRows;
}

}  // namespace brindlet
