// Models of the tools that convert, join, inspect and print documents: Ghostscript, qpdf, pandoc, the poppler tools,
// textutil and lp.
//
//     pandoc -o out.docx in.md    // predicts: create out.docx
//
// Each reads its words in a fixed, simple way that covers what people write. The tools themselves understand more:
// options glued to their values, abbreviated, read from a file. Where that can make a tool write a file or run a
// program beyond the predicted changes, a side effect says so, and the changes stay as they are.
#pragma once

#include "analysis/command_table.h"

namespace brindlet {

// gs
CommandResult renderWithGhostscript(BasherAnalysis& analysis, const ModelInput& input);
// qpdf
CommandResult rewritePdf(BasherAnalysis& analysis, const ModelInput& input);
// pandoc
CommandResult convertMarkup(BasherAnalysis& analysis, const ModelInput& input);
// pdftotext, pdfinfo, pdfimages, pdftohtml
CommandResult extractPdfText(BasherAnalysis& analysis, const ModelInput& input);
CommandResult showPdfInfo(BasherAnalysis& analysis, const ModelInput& input);
CommandResult extractPdfImages(BasherAnalysis& analysis, const ModelInput& input);
CommandResult convertPdfToHtml(BasherAnalysis& analysis, const ModelInput& input);
// textutil
CommandResult convertText(BasherAnalysis& analysis, const ModelInput& input);
// lp
CommandResult printDocuments(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
