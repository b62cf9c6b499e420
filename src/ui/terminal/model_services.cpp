#include "ui/terminal/model_services.h"

#include <set>
#include <string>

namespace brindlet {

ModelServices::ModelServices(CommandLineContext& context)
    : context_(context),
      packages_(context.packages()),
      http_(openHttpClient()),
      caller_({.keys = context.apiKeys(),
               .customModels = context.customModels(),
               .http = *http_,
               .environment = context.environment(),
               .managed = {}}),
      generator_(caller_, context.customModels(), [this] { return promptSources(); }) {}

const PromptSimilaritySearch& ModelServices::search() {
    std::call_once(searchIsBuilt_, [this] { search_.emplace().buildIndex(); });
    return *search_;
}

PromptSources ModelServices::promptSources() {
    const std::set<std::string> commands = packages_.availableCommands();
    return {search(), context_.files(), {commands.begin(), commands.end()}};
}

}  // namespace brindlet
