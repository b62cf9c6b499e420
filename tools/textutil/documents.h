// Written documents of several formats, and what becomes of one in another.
//
//     const TextDocument report = readDocument("report.docx", {});
//     std::string text = convertedDocument(report, *documentFormat("txt"), "report");
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

enum class DocumentKind { text, html, rtf, doc, docx, odt };

struct DocumentFormat {
    std::string_view name;
    DocumentKind kind;
    std::string_view description;
    std::string_view office;  // what LibreOffice calls it when it writes one
};

// Null where it is none that is read and written here.
const DocumentFormat* documentFormat(std::string_view name);
// By a file's ending; plain text where it says nothing. A ToolFailure where it names a format that isn't read here.
const DocumentFormat& formatOfFile(const std::string& name);
// A ToolFailure that says what there is instead of this format.
[[noreturn]] void refuseFormat(std::string_view name);

struct TextDocument {
    const DocumentFormat* format = nullptr;
    std::string content;  // of text and HTML, in UTF-8
};

struct ReadingOptions {
    const DocumentFormat* format = nullptr;  // whatever the ending says
    std::optional<std::string> encoding;     // of text and HTML
};

// A ToolFailure where it can't be read.
TextDocument readDocument(const std::string& name, const ReadingOptions& options);

// Nothing that a document names is fetched on the way, and no file read; its own pictures stay. A ToolFailure where it
// is damaged or an engine is missing.
std::string convertedDocument(const TextDocument& document, const DocumentFormat& format, const std::string& title);

// All of them as one, in order.
std::string joinedDocuments(const std::vector<TextDocument>& documents, const DocumentFormat& format,
                            const std::string& title);

}  // namespace brindlet::tools
