// Word lists and sets of file name extensions that several categories and the quick commands share. An entry that comes
// twice is drawn twice as often.
#pragma once

#include <initializer_list>

#include "prompts/prompt_template.h"

namespace brindlet::words {

const WordList& videoFormats();
const WordList& audioFormats();
const WordList& imageFormats();
const WordList& textutilFormats();
const WordList& plainTextFormats();
const WordList& pandocFormats();
const WordList& allFormats();  // video, image, textutil, audio, pandoc
const WordList& itemWords();
const WordList& itemsWords();
const WordList& imageDimensions();
const WordList& sizeAdjectives();

// What people say for the same thing, in requests of several kinds.
const WordList& pointingWords();
const WordList& thisPicture();
const WordList& thisVideo();
const WordList& thisDocument();
const WordList& pictureWords();
const WordList& picturesWords();
const WordList& makeWords();
const WordList& removeWords();
const WordList& mergeWords();
const WordList& pdfWords();
const WordList& pdfsWords();
const WordList& documentWords();
const WordList& pixelWords();
const WordList& degreeWords();
const WordList& flipDirections();
const WordList& summaryVerbs();
const WordList& summaryQuestions();
const WordList& countedPlaces();
const WordList& sizeQuestions();
const WordList& imageTargetFormats();
const WordList& mediaTargetFormats();
const WordList& everyItem();
const WordList& searchVerbs();
const WordList& everyWords();
const WordList& searchedPlaces();
const WordList& packageWords();

// The names of the packages that can be installed, as they are shown.
const WordList& packageNames();

// The sets that tie a category to the selected files.
const WordList& mediaFiles();  // video and audio
const WordList& archiveFiles();
const WordList& sizedImageFiles();  // images, for questions about size
const WordList& complexDocumentFiles();
const WordList& sourceCodeFiles();
const WordList& pageDescriptionFiles();
const WordList& pdfFiles();
const WordList& pandocInputFiles();
const WordList& printableFiles();
const WordList& movieFiles();
const WordList& gifFiles();

// Several lists one after the other.
WordList joinedWords(std::initializer_list<WordList> lists);

}  // namespace brindlet::words
