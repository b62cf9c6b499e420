// How the rows of the catalogue come together: runs of neighbouring categories, each with its theme, and the advice
// that several rows share. catalogueCategories() joins the runs in catalogue order.
//
//     CategoryRows iconCategories() { return {{.id = "generateIcnsFromImage", .prompts = {"icns", ...}, ...}}; }
#pragma once

#include <vector>

#include "prompts/catalogue.h"

namespace brindlet {

using CategoryRows = std::vector<PromptSimilarityCategory>;

// In catalogue order. A theme whose categories stand apart has a run for each place.
CategoryRows videoCategories();
CategoryRows imageCategories();
CategoryRows documentCategories();
CategoryRows fileCategories();
CategoryRows countingCategories();
CategoryRows everydayCategories();
CategoryRows selectionCategories();
CategoryRows commandCategories();
CategoryRows searchCategories();
CategoryRows pdfCategories();
CategoryRows imageEffectCategories();
CategoryRows pandocCategories();
CategoryRows packageCategories();
CategoryRows printingCategories();
CategoryRows popplerCategories();
CategoryRows gifCategories();
CategoryRows terminalCategories();
CategoryRows iconCategories();
CategoryRows tidyingCategories();
CategoryRows machineCategories();

// What a model is told besides the examples, by the tool it is about.
namespace rules {

extern const ExtraRule mediaSizesByFour;
extern const ExtraRule webpNeedsFfmpeg;
extern const ExtraRule sipsOutputFormat;
extern const ExtraRule sipsWidthOrHeight;
extern const ExtraRule textutilReadsNoPdf;
extern const ExtraRule zipArchiveName;
extern const ExtraRule zipManyFiles;
extern const ExtraRule sizeOrResolution;
extern const ExtraRule finderSelectTool;
extern const ExtraRule deepOrShallow;
extern const ExtraRule mdfindPatterns;
extern const ExtraRule presentFileNames;
extern const ExtraRule presentItem;
extern const ExtraRule gsPresets;
extern const ExtraRule gsDevices;
extern const ExtraRule qpdfPassword;
extern const ExtraRule montageGrid;
extern const ExtraRule brewLeaves;
extern const ExtraRule terminalHere;
extern const ExtraRule fiotrafOptions;
extern const ExtraRule sysctlKeys;

}  // namespace rules

}  // namespace brindlet
