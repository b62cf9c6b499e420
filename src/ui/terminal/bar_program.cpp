#include "ui/terminal/bar_program.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "exec/progress_trackers.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/terminal/bar_view.h"
#include "ui/terminal/console.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/interruption.h"
#include "ui/terminal/item_picker.h"
#include "ui/terminal/prediction.h"
#include "ui/terminal/terminal_flow.h"
#include "ui/terminal/terminal_screen.h"
#include "ui/terminal/text_field.h"

namespace brindlet {

namespace {

using enum PromptState;
using namespace std::chrono_literals;

constexpr std::chrono::milliseconds barTurnInterval = 120ms;
// A key that was on its way before the prediction could be read is no answer to it.
constexpr std::chrono::milliseconds readingTime = 300ms;

std::string folderText(const FilePath& folder, const FilePath& home) {
    if (folder == home) return "~";
    return folder.isInside(home) ? "~/" + relativePath(folder, home) : folder.text();
}

class Bar {
  public:
    Bar(CommandLineContext& context, std::vector<FilePath> files)
        : context_(context),
          style_(styleFor(STDOUT_FILENO)),
          terminal_(context, std::move(files), options()),
          screen_(style_.hasColor, style_.hasUnicode) {
        flow().observe([this] { follow(); });
        terminal_.loop().watch(STDIN_FILENO, [this] { takeKeys(); });
        terminal_.loop().watch(screen_.resizeDescriptor(), [this] { takeKeys(); });
        terminal_.loop().watch(interruption_.descriptor(), [this] { leave(); });
    }

    void run() {
        flow().appear();
        terminal_.loop().runUntil([this] {
            if (needsDrawing_) draw();
            return hasLeft_;
        });
        flow().reset();  // what is out comes to its end before the terminal is given back
        terminal_.finish();
    }

  private:
    PromptFlow& flow() { return terminal_.flow(); }
    const PromptFlowView& view() { return flow().view(); }

    FlowOptions options() {
        FlowOptions options;
        options.trackers = chooseProgressTracker;
        options.tell = [this](const std::string& sentence) {
            terminal_.loop().post([this, sentence] {
                note_ = sentence;
                needsDrawing_ = true;
            });
        };
        return options;
    }

    // The field follows the flow where the flow has changed the text itself.
    void follow() {
        const PromptState state = view().promptState;
        if (state != std::exchange(followed_, state)) {
            isOutputShown_ = false;
            scrolled_ = 0;
            if (state == sendingRequest || state == enteringPrompt) note_.clear();
            if (state == awaitingConfirmation) {
                screen_.dropKeys();
                answersFrom_ = std::chrono::steady_clock::now() + readingTime;
            }
        }
        if (!isTurning_) turn();
        if (!isTyping_) field_.set(state == awaitingConfirmation ? view().editedBashCommand : view().prompt);
        needsDrawing_ = true;
    }

    // Only while something is out: a bar at rest does nothing at all.
    void turn() {
        isTurning_ = flow().isBusy();
        if (!isTurning_) return;
        ++turn_;
        needsDrawing_ = true;
        terminal_.loop().postAfter(barTurnInterval, [this] { turn(); });
    }

    void draw() {
        needsDrawing_ = false;
        std::vector<std::string> names;
        for (const FilePath& file : terminal_.selection()) names.emplace_back(relativePath(file, context_.folder()));
        const auto prediction = terminal_.currentPrediction();
        screen_.draw(composeBar({.view = view(),
                                 .prediction = prediction,
                                 .field = field_,
                                 .picker = isPicking_ ? &picker_ : nullptr,
                                 .folder = folderText(context_.folder(), homeFolder()),
                                 .selection = std::move(names),
                                 .confirmTitle = std::string(confirmTitle(view(), terminal_.packages())),
                                 .note = note_,
                                 .isOutputShown = isOutputShown_,
                                 .scrolled = scrolled_,
                                 .turn = turn_,
                                 .hasUnicode = style_.hasUnicode},
                                screen_.size()));
    }

    void takeKeys() {
        for (const Key& key : screen_.keys()) {
            if (hasLeft_) return;
            if (key.kind == Key::Kind::closed) return leave();
            take(key);
        }
        needsDrawing_ = true;
    }

    void take(const Key& key) {
        if (key.kind == Key::Kind::resized) return;
        if (isPicking_) return takePicking(key);
        if (isOutputShown_) return takeReading(key);
        switch (key.kind) {
            case Key::Kind::enter:
                return takeEnter();
            case Key::Kind::escape:
                return flow().escape();
            case Key::Kind::tab:
                if (hasField(view().promptState)) startPicking();
                return;
            case Key::Kind::up:
                return flow().historyStep(-1);
            case Key::Kind::down:
                return flow().historyStep(1);
            case Key::Kind::pageUp:
            case Key::Kind::pageDown:
                return scroll(key.kind);
            case Key::Kind::control:
                if (takeControl(key.text.front())) return;
                break;
            default:
                break;
        }
        edit(key);
    }

    void takeEnter() {
        if (view().promptState == enteringPrompt || view().promptState == enteringFollowUpPrompt ||
            view().promptState == question)
            return flow().submit();
        if (std::chrono::steady_clock::now() >= answersFrom_) flow().confirmOrDismiss();
    }

    bool takeControl(char letter) {
        switch (letter) {
            case 'c':
                if (view().promptState == enteringPrompt && field_.text().empty())
                    leave();
                else
                    flow().escape();
                return true;
            case 'd':
                if (view().promptState == enteringPrompt && field_.text().empty()) leave();
                return true;
            case 'r':
                flow().refine();
                return true;
            case 'o':
                isOutputShown_ = view().promptState == complete && !view().fullCommandOutput.empty();
                scrolled_ = 0;
                return true;
            default:
                return false;
        }
    }

    void edit(const Key& key) {
        if (!hasField(view().promptState)) return;
        const std::string before = field_.text();
        if (!field_.take(key) || field_.text() == before) return;
        const bool wasTyping = std::exchange(isTyping_, true);
        if (view().promptState == awaitingConfirmation)
            flow().editCommand(field_.text());
        else
            flow().setPrompt(field_.text());
        isTyping_ = wasTyping;
        if (view().promptState != awaitingConfirmation) field_.set(view().prompt);  // it may have been cut
    }

    void takeReading(const Key& key) {
        if (key.kind == Key::Kind::escape || key.kind == Key::Kind::enter || key == Key{Key::Kind::control, "o"} ||
            key == Key{Key::Kind::control, "c"}) {
            isOutputShown_ = false;
            scrolled_ = 0;
        } else {
            scroll(key.kind);
        }
    }

    void scroll(Key::Kind kind) {
        const std::size_t page = std::max<std::size_t>(screen_.size().rows / 2, 1);
        if (kind == Key::Kind::pageUp) scrolled_ -= std::min(scrolled_, page);
        if (kind == Key::Kind::pageDown) scrolled_ = std::min(scrolled_ + page, mostScrolled());
        if (kind == Key::Kind::up) scrolled_ -= std::min<std::size_t>(scrolled_, 1);
        if (kind == Key::Kind::down) scrolled_ = std::min(scrolled_ + 1, mostScrolled());
    }

    // Roughly: what is drawn never goes past the end.
    std::size_t mostScrolled() {
        if (isOutputShown_)
            return static_cast<std::size_t>(std::ranges::count(view().fullCommandOutput, '\n')) +
                   view().fullCommandOutput.size() / screen_.size().columns;
        return view().analysisResult.changes.size() + view().analysisResult.sideEffects.size() * 3;
    }

    void startPicking() {
        auto names = context_.files().listNames(context_.folder()).value_or(std::vector<std::string>());
        std::erase_if(names, [](const std::string& name) { return name.starts_with('.'); });
        std::ranges::sort(names, {}, [](const std::string& name) { return lowercased(name); });
        std::vector<std::string> marked;
        for (std::string& name : names) {
            const FilePath path = context_.folder().child(name);
            const bool isMarked = std::ranges::count(terminal_.selection(), path) > 0;
            if (context_.files().look(path) == ItemKind::folder) name += '/';
            if (isMarked) marked.push_back(name);
        }
        picker_.open(std::move(names), marked);
        isPicking_ = true;
    }

    void takePicking(const Key& key) {
        const bool isDone = key.kind == Key::Kind::enter || key.kind == Key::Kind::tab ||
                            key.kind == Key::Kind::escape || key == Key{Key::Kind::control, "c"};
        if (!isDone) return picker_.take(key);
        isPicking_ = false;
        if (key.kind != Key::Kind::enter && key.kind != Key::Kind::tab) return;
        std::vector<FilePath> files;
        for (std::string name : picker_.marked()) {
            if (name.ends_with('/')) name.pop_back();
            files.push_back(context_.folder().child(name));
        }
        terminal_.select(std::move(files));
    }

    void leave() {
        terminal_.loop().watch(interruption_.descriptor(), nullptr);
        terminal_.loop().watch(STDIN_FILENO, nullptr);
        hasLeft_ = true;
    }

    CommandLineContext& context_;
    TerminalStyle style_;
    Interruption interruption_;
    TerminalFlow terminal_;
    TerminalScreen screen_;
    TextField field_;
    ItemPicker picker_;
    std::string note_;
    PromptState followed_ = enteringPrompt;
    std::chrono::steady_clock::time_point answersFrom_{};
    bool isTurning_ = false;
    bool isTyping_ = false;
    bool isPicking_ = false;
    bool isOutputShown_ = false;
    bool needsDrawing_ = true;
    bool hasLeft_ = false;
    std::size_t scrolled_ = 0;
    std::size_t turn_ = 0;
};

}  // namespace

bool canOpenBar() {
    return isTerminal(STDIN_FILENO) && isTerminal(STDOUT_FILENO);
}

int runBar(CommandLineContext& context, std::vector<FilePath> files) {
    context.folder();
    context.startLogging();
    try {
        Bar(context, std::move(files)).run();
    } catch (const ScreenError& error) {
        throw UsageError{error.sentence};
    }
    return exitDone;
}

}  // namespace brindlet
