#include "ai/answer_cleaning.h"

#include <gtest/gtest.h>

namespace brindlet {
namespace answer_cleaning_tests {

TEST(AnswerCleaning, OneLineOfBash) {
    const struct {
        std::string_view answer, expected;
    } rows[] = {
        {"ls -l", "ls -l"},
        {" \n ls \n", "ls"},
        {"YOUR OUTPUT: ls", "ls"},
        {"```bash\nls -l\n```", "ls -l"},
        {"Here you go:\n```\nls\n```\nDone", "ls"},
        {"```sh\nls\n```", "sh\nls"},
        {"```bash\n\n\nls```", "ls"},
        {"```ls", "```ls"},
        {"```a``` ```b```", "a"},
        {"``````", ""},
        {"mv \"$FILE_NAME\" \"${FILE_BASENAME}.$FILE_EXTENSION\"",
         "mv \"${FILE_NAME}\" \"${FILE_BASENAME}.${FILE_EXTENSION}\""},
        {"zip a.zip $SPACE_SEPARATED_FILE_NAMES '$FILE_NAMES'",
         "zip a.zip ${SPACE_SEPARATED_FILE_NAMES} '${FILE_NAME}S'"},
        {"", ""},
    };
    for (const auto& [answer, expected] : rows) EXPECT_EQ(cleanedAnswer(answer), expected) << answer;
}

}  // namespace answer_cleaning_tests
}  // namespace brindlet
