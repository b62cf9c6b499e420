// textutil converts written documents, joins them and tells about them.
//
// Exit codes: 0 done, 1 a document couldn't be read or written, 64 wrong usage, 69 pandoc or LibreOffice is missing.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

#include <fmt/format.h>

#include "documents.h"
#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/characters.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr OptionRow textutilOptions[] = {
    {"-convert", true},
    {"-cat", true},
    {"-info"},
    {"-help"},
    {"--help"},
    {"-h"},
    {"-output", true},
    {"-stdout"},
    {"-extension", true},
    {"-format", true},
    {"-strip"},
    {"-noload"},
    {"-nostore"},
    {"-inputencoding", true},
    {"-encoding", true},
    {"-title", true},
};

constexpr std::string_view textutilHelp =
    "Usage: textutil -convert FORMAT [OPTION]... FILE...\n"
    "       textutil -cat FORMAT [OPTION]... FILE...\n"
    "       textutil -info FILE...\n\n"
    "Converts documents, each into one beside it, or joins them into one (out.FORMAT); -info tells about them. FORMAT\n"
    "is txt, html, rtf, doc, docx or odt.\n\n"
    "  -output FILE           where the result goes; that of the second document goes to FILE_2, and so on\n"
    "  -stdout                print the result\n"
    "  -extension ENDING      what stands behind the point of its name\n"
    "  -format FORMAT         what the documents are, whatever their names say\n"
    "  -inputencoding NAME    of text and HTML; without it, UTF-8, UTF-16 and Windows-1252 are told apart\n"
    "  -title TEXT            of an HTML page\n";

struct TextutilRequest {
    CommandLine line;
    const DocumentFormat* format = nullptr;  // of the result
    ReadingOptions reading;
    std::string ending;
};

const DocumentFormat* namedFormat(const std::optional<std::string>& name) {
    if (!name) return nullptr;
    const DocumentFormat* format = documentFormat(lowercased(*name));
    if (!format) refuseFormat(lowercased(*name));
    return format;
}

TextutilRequest readTextutilRequest(const std::vector<std::string>& words) {
    TextutilRequest request{
        .line = readCommandLine(words, textutilOptions), .format = nullptr, .reading = {}, .ending = {}};
    const CommandLine& line = request.line;
    const auto convert = line.value("-convert");
    request.format = namedFormat(convert ? convert : line.value("-cat"));
    request.reading = {.format = namedFormat(line.value("-format")), .encoding = line.value("-inputencoding")};
    if (const auto encoding = line.value("-encoding"); encoding && lowercased(*encoding) != "utf-8" && *encoding != "4")
        throw ToolFailure{"results are in UTF-8 only", statusWrongUsage};
    const std::string name(request.format ? request.format->name : "");
    request.ending = line.value("-extension").value_or(name);
    if (request.ending.starts_with('.')) request.ending.erase(0, 1);
    return request;
}

void printResult(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void writeResult(const fs::path& place, std::string_view content) {
    Output output(place);
    std::ofstream stream(output.path(), std::ios::binary);
    stream << content;
    stream.close();
    if (!stream) throw ToolFailure{fmt::format("'{}' can't be written", place.string())};
    output.keep();
}

// Where the result of the document with that number, counted from 1, goes.
fs::path resultPlace(const TextutilRequest& request, const fs::path& document, std::size_t number) {
    const auto output = request.line.value("-output");
    if (!output) return document.parent_path() / (document.stem().string() + "." + request.ending);
    const fs::path first = *output;
    if (number == 1) return first;
    return first.parent_path() / fmt::format("{}_{}.{}", first.stem().string(), number, request.ending);
}

std::string titleOf(const TextutilRequest& request, const fs::path& file) {
    return toValidUtf8(request.line.value("-title").value_or(file.stem().string()));
}

void convertOne(const TextutilRequest& request, const std::string& file, std::size_t number) {
    const TextDocument document = readDocument(file, request.reading);
    const std::string result = convertedDocument(document, *request.format, titleOf(request, file));
    if (request.line.has("-stdout")) {
        printResult(result);
    } else {
        writeResult(resultPlace(request, file, number), result);
    }
}

void describeOne(const TextutilRequest& request, const std::string& file) {
    const TextDocument document = readDocument(file, request.reading);
    printResult(fmt::format("File:  {}\n  Type:  {}\n  Size:  {} bytes\n", fs::absolute(file).string(),
                            document.format->description, fs::file_size(file)));
    const bool isQuick = document.format->kind != DocumentKind::rtf && document.format->kind != DocumentKind::doc;
    if (!isQuick) return;
    const std::string text = convertedDocument(document, *documentFormat("txt"), "");
    printResult(fmt::format("  Length:  {} characters\n", characterCount(text)));
}

int joinAll(const TextutilRequest& request) {
    std::vector<TextDocument> documents;
    for (const std::string& file : request.line.operands) documents.push_back(readDocument(file, request.reading));
    const std::string title = titleOf(request, request.line.operands.front());
    const std::string result = joinedDocuments(documents, *request.format, title);
    if (request.line.has("-stdout")) {
        printResult(result);
    } else {
        writeResult(request.line.value("-output").value_or("out." + request.ending), result);
    }
    return 0;
}

template <class Work>
int forEachFile(const std::vector<std::string>& files, Work work) {
    int status = 0;
    for (std::size_t at = 0; at < files.size(); ++at) {
        try {
            work(files[at], at + 1);
        } catch (const ToolFailure& failure) {
            if (files.size() == 1 || failure.status != 1) throw;
            std::fflush(stdout);
            complain("textutil", failure.sentence);
            status = failure.status;
        }
    }
    return status;
}

int textutil(const std::vector<std::string>& words) {
    const TextutilRequest request = readTextutilRequest(words);
    const CommandLine& line = request.line;
    if (words.empty() || line.has("-help") || line.has("--help") || line.has("-h")) {
        printResult(textutilHelp);
        return 0;
    }
    if (!line.has("-info") && !request.format)
        throw ToolFailure{"no action (e.g. -info, -convert) specified", statusWrongUsage};
    if (line.operands.empty()) throw ToolFailure{"no input files specified", statusWrongUsage};
    if (line.has("-info"))
        return forEachFile(line.operands, [&](const std::string& file, std::size_t) { describeOne(request, file); });
    if (!line.has("-convert")) return joinAll(request);
    return forEachFile(line.operands,
                       [&](const std::string& file, std::size_t number) { convertOne(request, file, number); });
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("textutil", count, words, brindlet::tools::textutil);
}
