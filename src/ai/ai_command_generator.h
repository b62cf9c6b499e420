// From a request in plain language to one line of bash.
//
//     AICommandGenerator generator(models, customModels, [&] { return PromptSources{search, files, commands}; });
//     auto command = generator.generateCommand("to png", files, model, stop);
//     auto changed = generator.generateFollowUp("but smaller", files, model, *command, stop);
#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_command.h"
#include "ai/ai_model.h"
#include "ai/model_caller.h"
#include "platform/file_path.h"
#include "platform/result.h"
#include "prompts/system_prompt.h"

namespace brindlet {

// What an answer becomes: cleaned, with itself as the last of the messages.
AICommand finishedCommand(std::string_view answer, std::vector<AIMessage> messages, std::string prompt);

class AICommandGenerator {
  public:
    // Made when a model is first asked: the index behind it takes time. Everything outlives this.
    using Sources = std::function<PromptSources()>;
    AICommandGenerator(ModelCalling& models, CustomModelList& customModels, Sources sources)
        : models_(models), customModels_(customModels), sources_(std::move(sources)) {}

    // A new request. The quick rules are asked first, and where one answers no model is.
    Result<AICommand> generateCommand(const std::string& prompt, const std::vector<FilePath>& files,
                                      const AIModel& model, const std::stop_token& stop);
    // A change of `previous`, or a reply to what it asked.
    Result<AICommand> generateFollowUp(const std::string& amendment, const std::vector<FilePath>& files,
                                       const AIModel& model, const AICommand& previous, const std::stop_token& stop);

    // What a request would be sent as.
    static std::vector<AIMessage> requestMessages(std::string systemPrompt, std::string_view prompt);
    ModelPace paceOf(const AIModel& model);

  private:
    static Result<AICommand> finished(Result<std::string> answer, std::vector<AIMessage> messages, std::string prompt);

    ModelCalling& models_;
    CustomModelList& customModels_;
    Sources sources_;
};

}  // namespace brindlet
