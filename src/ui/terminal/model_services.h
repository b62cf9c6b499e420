// What a request to a language model needs, as the command line has it.
//
//     ModelServices services(context);
//     auto command = services.generator().generateCommand("to png", files, context.models().selected(), stop);
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "ai/ai_command_generator.h"
#include "ai/model_caller.h"
#include "platform/http_client.h"
#include "prompts/similarity_search.h"
#include "ui/terminal/command_line_context.h"

namespace brindlet {

class ModelServices {
  public:
    // The context outlives it. Nothing is asked or built yet.
    explicit ModelServices(CommandLineContext& context);

    ModelCalling& models() { return caller_; }
    AICommandGenerator& generator() { return generator_; }
    // On any thread. The index is built at the first call.
    const PromptSimilaritySearch& search();
    PromptSources promptSources();

  private:
    CommandLineContext& context_;
    PackageManager& packages_;
    std::unique_ptr<HttpClient> http_;
    ModelCaller caller_;
    AICommandGenerator generator_;
    std::once_flag searchIsBuilt_;
    std::optional<PromptSimilaritySearch> search_;
};

}  // namespace brindlet
