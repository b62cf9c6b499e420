// Plain text of any encoding, and the ways between it and HTML.
//
//     htmlAsText("<p>one <em>two</em></p>") == "one two\n"
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brindlet::tools {

// As UTF-8: by the name of its encoding, else by its byte order mark, else as UTF-8, else as Windows-1252. None where
// there is no such encoding.
std::optional<std::string> decodedText(std::string_view bytes, const std::optional<std::string>& encoding);

// A line for each paragraph, heading, item and row, without any mark but the numbers of numbered lists, so that what is
// counted are the document's own words. For HTML as pandoc writes it, well-formed and without styles.
std::string htmlAsText(std::string_view html);

// A paragraph for each line that isn't blank.
std::string textAsHtml(std::string_view text);

// A whole page around what stands in its body.
std::string htmlPage(std::string_view title, std::string_view body);

}  // namespace brindlet::tools
