#include "prompts/word_lists.h"

namespace brindlet::words {

const WordList& videoFormats() {
    static const WordList list{"mp4", "mov", "video", "animation", "gif", "webm", "avi", "mkv",
                               "flv", "wmv", "mpeg",  "mpg",       "m4v", "h264", "h265"};
    return list;
}

const WordList& audioFormats() {
    static const WordList list{"mp3", "wav", "m4a", "aac", "ogg", "flac", "m4b", "m4p", "m4b", "m4p"};
    return list;
}

const WordList& imageFormats() {
    static const WordList list{"jpg", "png", "webp", "jpeg", "tiff", "raw", "svg", "heic", "gif"};
    return list;
}

const WordList& textutilFormats() {
    static const WordList list{"txt", "html", "rtf", "rtfd", "doc", "docx", "wordml", "odt", "webarchive"};
    return list;
}

const WordList& plainTextFormats() {
    static const WordList list{"txt", "md", "csv", "tsv", "log", "text", "ink"};
    return list;
}

const WordList& pandocFormats() {
    static const WordList list{"md",    "markdown", "docx", "html", "tex",  "pdf", "rst", "rtf", "odt",
                               "ipynb", "bib",      "csv",  "json", "epub", "org", "xml", "txt", "tsv"};
    return list;
}

const WordList& allFormats() {
    static const WordList list =
        joinedWords({videoFormats(), imageFormats(), textutilFormats(), audioFormats(), pandocFormats()});
    return list;
}

const WordList& itemWords() {
    static const WordList list{"file",  "folder", "image", "video", "document", "pic",   "item",
                               "thing", "stuff",  "crap",  "junk",  "sound",    "audio", "wav"};
    return list;
}

const WordList& itemsWords() {
    static const WordList list{"files", "folders", "images", "videos", "documents", "pics",
                               "items", "things",  "sounds", "sounds", "wavs"};
    return list;
}

const WordList& imageDimensions() {
    static const WordList list{"100",  "128",  "256",  "480",  "512",  "600",  "640",  "720",  "768",  "800",  "900",
                               "1024", "1080", "1200", "1440", "1600", "1800", "1920", "2048", "2560", "3840", "4k"};
    return list;
}

const WordList& sizeAdjectives() {
    static const WordList list{"wide", "tall", "large", "small", "big", "small", "huge", "tiny", "huge", "tiny"};
    return list;
}

const WordList& mediaFiles() {
    static const WordList list = joinedWords({videoFormats(), audioFormats()});
    return list;
}

const WordList& archiveFiles() {
    static const WordList list{"zip", "tar", "gz", "gzip", "bz2", "bzip2", "7z", "rar"};
    return list;
}

const WordList& sizedImageFiles() {
    static const WordList list{"jpg", "jpeg", "png", "gif", "tiff", "webp", "bmp", "heic"};
    return list;
}

const WordList& complexDocumentFiles() {
    static const WordList list{"doc", "docx", "pdf", "rtf", "rtfd", "odt", "html", "webarchive", "wordml"};
    return list;
}

const WordList& sourceCodeFiles() {
    static const WordList list{"swift", "java", "py",   "js",     "ts",  "c",    "cpp",   "h",    "hpp", "cs",  "go",
                               "rb",    "php",  "html", "css",    "rs",  "kt",   "scala", "sh",   "pl",  "lua", "sql",
                               "r",     "dart", "m",    "mm",     "tsx", "jsx",  "vue",   "elm",  "clj", "ex",  "exs",
                               "hs",    "ml",   "fs",   "groovy", "tf",  "yaml", "toml",  "json", "xml"};
    return list;
}

const WordList& pageDescriptionFiles() {
    static const WordList list{"pdf", "ps", "eps", "epsf", "pcl", "pxl", "xps"};
    return list;
}

const WordList& pdfFiles() {
    static const WordList list{"pdf"};
    return list;
}

const WordList& pandocInputFiles() {
    static const WordList list{"md",  "markdown", "docx", "html", "tex", "rst", "rtf", "odt", "ipynb",
                               "bib", "csv",      "json", "epub", "org", "xml", "txt", "tsv"};
    return list;
}

const WordList& printableFiles() {
    static const WordList list = joinedWords({textutilFormats(), imageFormats(), {"pdf"}});
    return list;
}

const WordList& movieFiles() {
    static const WordList list{"mp4", "mov", "avi", "mkv", "webm"};
    return list;
}

const WordList& gifFiles() {
    static const WordList list{"gif"};
    return list;
}

const WordList& packageNames() {
    static const WordList list{"FFmpeg", "Ghostscript", "ImageMagick", "QPDF",
                               "Pandoc", "Poppler",     "Gifsicle",    "Fiotraf"};
    return list;
}

const WordList& pointingWords() {
    static const WordList list{"this", "this", "the", "these", "my", "that", "those"};
    return list;
}

const WordList& thisPicture() {
    static const WordList list{"this",         "this",         "it",           "these",     "this image", "this photo",
                               "this picture", "these images", "these photos", "the image", "this pic",   "them"};
    return list;
}

const WordList& thisVideo() {
    static const WordList list{"this",      "this",      "it",           "these",      "this",      "this video",
                               "the video", "this clip", "these videos", "this movie", "this song", "the audio"};
    return list;
}

const WordList& thisDocument() {
    static const WordList list{
        "this", "this", "it", "these", "this document", "this doc", "the document", "these documents", "this file"};
    return list;
}

const WordList& pictureWords() {
    static const WordList list{"image", "picture", "photo", "pic", "img", "photograph", "screenshot"};
    return list;
}

const WordList& picturesWords() {
    static const WordList list{"images", "pictures", "photos", "pics", "frames", "screenshots", "stills"};
    return list;
}

const WordList& makeWords() {
    static const WordList list{"make", "create", "generate", "produce", "build", "give me"};
    return list;
}

const WordList& removeWords() {
    static const WordList list{"remove", "delete", "strip", "get rid of", "clear", "erase", "take out", "wipe"};
    return list;
}

const WordList& mergeWords() {
    static const WordList list{"merge", "merge", "combine", "combine", "join", "concatenate", "put together", "stitch"};
    return list;
}

const WordList& pdfWords() {
    static const WordList list{"pdf", "pdf", "pdf file", "pdf document", "document", "file"};
    return list;
}

const WordList& pdfsWords() {
    static const WordList list{"pdfs", "pdf files", "pdf documents", "pdf", "documents", "files"};
    return list;
}

const WordList& documentWords() {
    static const WordList list{"document", "doc",    "file",  "text",   "page",
                               "paper",    "report", "essay", "letter", "article"};
    return list;
}

const WordList& pixelWords() {
    static const WordList list{"px", "px", " pixels", " px", "p"};
    return list;
}

const WordList& degreeWords() {
    static const WordList list{"degrees", "degree", "deg", "°"};
    return list;
}

const WordList& flipDirections() {
    static const WordList list{"horizontally", "vertically",    "horizontal", "vertical",
                               "upside down",  "left to right", "sideways"};
    return list;
}

const WordList& summaryVerbs() {
    static const WordList list{"summarise",      "summarize", "sum up",          "give me a summary of",
                               "tldr",           "tl;dr",     "outline",         "condense",
                               "recap",          "describe",  "explain",         "key points of",
                               "main points of", "read",      "short version of"};
    return list;
}

const WordList& summaryQuestions() {
    static const WordList list{"what's in",           "what is in", "what's",        "what does it say in",
                               "what does it say in", "what does",  "tell me about", "what are the main points of",
                               "the main points of"};
    return list;
}

const WordList& countedPlaces() {
    static const WordList list{
        "in this",   "in this",        "in this file",   "in this document", "in here",
        "in it",     "in these",       "in these files", "are in this",      "are in this document",
        "are there", "does this have", "does it have"};
    return list;
}

const WordList& sizeQuestions() {
    static const WordList list{"is this",  "is it",   "are these",      "is this file",
                               "are they", "is that", "are these files"};
    return list;
}

const WordList& imageTargetFormats() {
    static const WordList list = joinedWords({imageFormats(), {"jpg", "png", "jpeg", "tif", "bmp", "heif", "pdf"}});
    return list;
}

const WordList& mediaTargetFormats() {
    static const WordList list = joinedWords({videoFormats(), audioFormats(), {"webp"}});
    return list;
}

const WordList& everyItem() {
    static const WordList list = joinedWords({itemWords(), itemsWords()});
    return list;
}

const WordList& searchVerbs() {
    static const WordList list{
        "find",    "search for", "look for", "spotlight search for", "do a search for", "can you search for", "locate",
        "show me", "list",       "scan"};
    return list;
}

const WordList& everyWords() {
    static const WordList list{"all", "every", "any possible", "all possible", "every single", "any"};
    return list;
}

const WordList& searchedPlaces() {
    static const WordList list{"mac",        "computer", "laptop", "macbook", "iMac",
                               "hard drive", "disk",     "system", "machine", "device"};
    return list;
}

const WordList& packageWords() {
    static const WordList list{"package", "command", "flask", "keg", "tool", "utility", "program", "extra tool"};
    return list;
}

WordList joinedWords(std::initializer_list<WordList> lists) {
    WordList result;
    for (const WordList& list : lists) result.insert(result.end(), list.begin(), list.end());
    return result;
}

}  // namespace brindlet::words
