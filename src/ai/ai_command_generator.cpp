#include "ai/ai_command_generator.h"

#include <optional>
#include <utility>

#include "ai/answer_cleaning.h"
#include "platform/log.h"
#include "prompts/quick_commands.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view userPromptPrefix = "USER PROMPT: ";
constexpr std::string_view priorPromptPrefix = "PRIOR USER PROMPT: ";
constexpr std::string_view priorAnswerPrefix = "YOUR PRIOR COMMAND OUTPUT: ";
constexpr std::string_view amendmentPrefix = "USER AMMENDMENT: ";

std::string prefixed(std::string_view prefix, std::string_view text) {
    return std::string(prefix).append(text);
}

// Everything that the user has said so far.
std::string joinedRequests(const std::vector<AIMessage>& messages, const std::string& amendment) {
    std::vector<std::string> texts;
    for (const AIMessage& message : messages)
        if (message.role == AIRole::user) texts.push_back(message.text);
    texts.push_back(amendment);
    return joined(texts, " ");
}

std::vector<AIMessage> withoutSystem(const std::vector<AIMessage>& messages) {
    std::vector<AIMessage> rest;
    for (const AIMessage& message : messages)
        if (message.role != AIRole::system) rest.push_back(message);
    return rest;
}

void logRequest(const std::string& prompt, const AIModel& model) {
    logInfo("PROMPT: " + prompt + ", MODEL: " + model.friendlyName);
}

std::string requestLabel(const AIModel& model) {
    return "Evaluate prompt with " + model.name;
}

}  // namespace

AICommand finishedCommand(std::string_view answer, std::vector<AIMessage> messages, std::string prompt) {
    std::string line = cleanedAnswer(answer);
    messages.push_back({AIRole::assistant, line});
    return {
        .id = newUuid(), .bashCommand = std::move(line), .prompt = std::move(prompt), .messages = std::move(messages)};
}

std::vector<AIMessage> AICommandGenerator::requestMessages(std::string systemPrompt, std::string_view prompt) {
    return {{AIRole::system, std::move(systemPrompt)}, {AIRole::user, prefixed(userPromptPrefix, prompt)}};
}

ModelPace AICommandGenerator::paceOf(const AIModel& model) {
    if (model.provider != AIModelProvider::custom) return ModelPace::normal;
    const auto custom = customModels_.withId(model.id);
    return custom && custom->isFast() ? ModelPace::fast : ModelPace::normal;
}

Result<AICommand> AICommandGenerator::generateCommand(const std::string& prompt, const std::vector<FilePath>& files,
                                                      const AIModel& model, const std::stop_token& stop) {
    if (const auto quick = quickCommand(prompt, files)) {
        logInfo("MANUALLY PARSED COMMAND, GENERATED: " + quick->command);
        return finishedCommand(quick->command, {{AIRole::user, prompt}}, prompt);
    }
    if (auto problem = models_.whyUnusable(model)) return Failure{std::move(*problem)};
    std::string system = composeSystemPrompt(prompt, paceOf(model), files, sources_());
    logRequest(prompt, model);
    auto answer = models_.timedCall(requestLabel(model), requestMessages(system, prompt), model, stop);
    return finished(std::move(answer), {{AIRole::system, std::move(system)}, {AIRole::user, prompt}}, prompt);
}

Result<AICommand> AICommandGenerator::generateFollowUp(const std::string& amendment, const std::vector<FilePath>& files,
                                                       const AIModel& model, const AICommand& previous,
                                                       const std::stop_token& stop) {
    const std::string request = joinedRequests(previous.messages, amendment);
    logInfo("FOLLOW-UP PROMPT: " + request);
    if (auto problem = models_.whyUnusable(model)) return Failure{std::move(*problem)};
    std::string system = composeSystemPrompt(request, paceOf(model), files, sources_());
    logRequest(amendment, model);

    std::vector<AIMessage> kept = withoutSystem(previous.messages);
    std::vector<AIMessage> sent = {{AIRole::system, system}};
    for (const AIMessage& message : kept)
        sent.push_back({message.role,
                        prefixed(message.role == AIRole::user ? priorPromptPrefix : priorAnswerPrefix, message.text)});
    sent.push_back({AIRole::user, prefixed(amendmentPrefix, amendment)});
    auto answer = models_.timedCall(requestLabel(model), sent, model, stop);

    kept.insert(kept.begin(), {AIRole::system, std::move(system)});
    kept.push_back({AIRole::user, amendment});
    return finished(std::move(answer), std::move(kept), amendment);
}

Result<AICommand> AICommandGenerator::finished(Result<std::string> answer, std::vector<AIMessage> messages,
                                               std::string prompt) {
    if (!answer) return answer.failure();
    AICommand command = finishedCommand(*answer, std::move(messages), std::move(prompt));
    if (command.bashCommand.empty()) return Failure{"The model answered with nothing. Please say it in other words."};
    return command;
}

}  // namespace brindlet
