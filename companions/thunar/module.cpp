// The module that Thunar loads: tells the bar which folder each window shows and what is selected in it, as soon as it
// changes, and selects what the bar asks for. It must never slow Thunar: looking takes a small share of the time,
// however much is selected (25 ms for 5,000 files), and without a bar nothing at all.
#include <gtk/gtk.h>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "folder_window.h"
#include "thunarx_library.h"
#include "wire.h"

namespace brindlet_thunar {

namespace {

// All in microseconds, as GLib's clock.
constexpr gint64 settlingTime = 30'000;  // for the changes that come with one
// For what nothing tells, such as another tab or a renamed file, where the user may be doing it.
constexpr gint64 activeInterval = 300'000;
// Of what a look takes, how many times is nothing done: before one that a change calls for, and before one more.
constexpr gint64 restAfterLook = 20;
constexpr gint64 restAtRest = 250;
// A file that was just written appears in a view a moment later.
constexpr gint64 lateFilePatience = 1'000'000;
constexpr guint selectionPauseMilliseconds = 50;
// A new window makes a selection of its own once it has read its folder; ours has to stand for so many pauses.
constexpr int steadyPauses = 3;

constexpr const char* watchedMark = "brindlet-is-watched";

class Companion {
  public:
    explicit Companion(GtkApplication* application)
        : application_(application),
          wire_({.select = [this](auto paths, auto reply) { startSelecting(std::move(paths), std::move(reply)); },
                 .barCame = [this] { tellAll(); }}) {
        for (GList* at = gtk_application_get_windows(application); at; at = at->next) watch(GTK_WINDOW(at->data));
        const auto added = +[](GtkApplication*, GtkWindow* window, Companion* self) { self->watch(window); };
        g_signal_connect(application, "window-added", G_CALLBACK(added), this);
    }

  private:
    struct Watched {
        Companion* companion;
        GtkWindow* window;
        Variant told{};  // the last message
        guint timer = 0;
        gint64 dueAt = 0;
        gint64 restsUntil = 0;
    };
    struct Selecting {
        Companion* companion;
        std::set<std::string> files;
        Reply reply;
        gint64 endsAt;
        int steadyFor = 0;
    };

    void watch(GtkWindow* window) {
        if (!isFolderWindow(window)) return;
        const auto [place, isNew] = windows_.try_emplace(window, Watched{this, window});
        if (!isNew) return;
        const auto look = +[](GtkWindow* changed, GParamSpec*, Companion* self) { self->lookSoon(changed); };
        const auto forget = +[](GtkWindow* gone, Companion* self) { self->forget(gone); };
        g_signal_connect(window, "notify::current-directory", G_CALLBACK(look), this);
        g_signal_connect(window, "notify::is-active", G_CALLBACK(look), this);
        g_signal_connect(window, "destroy", G_CALLBACK(forget), this);
        lookSoon(window);
    }

    void watchView(GtkWidget* view) {
        if (g_object_get_data(G_OBJECT(view), watchedMark)) return;
        g_object_set_data(G_OBJECT(view), watchedMark, this);
        // Tabs move from window to window.
        const auto look = +[](GtkWidget* changed, GParamSpec*, Companion* self) {
            if (GtkWidget* window = gtk_widget_get_toplevel(changed); GTK_IS_WINDOW(window))
                self->lookSoon(GTK_WINDOW(window));
        };
        g_signal_connect(view, "notify::selected-files", G_CALLBACK(look), this);
    }

    void forget(GtkWindow* window) {
        const auto found = windows_.find(window);
        if (found == windows_.end()) return;
        Watched& watched = found->second;
        if (watched.timer) g_source_remove(watched.timer);
        if (watched.told) {
            // Another window may get its number.
            guint32 number = 0;
            g_variant_get_child(watched.told.get(), 0, "u", &number);
            wire_.tell(selectionMessage(number, "", {}).get());
        }
        windows_.erase(found);
    }

    void tellAll() {
        for (auto& [window, watched] : windows_) {
            watched.told.reset();
            lookAfter(watched, 0);
        }
    }

    void lookSoon(GtkWindow* window) {
        if (const auto found = windows_.find(window); found != windows_.end()) lookAfter(found->second, settlingTime);
    }

    void lookAfter(Watched& watched, gint64 pause) {
        if (!wire_.hasBar()) return;
        const gint64 now = g_get_monotonic_time();
        const gint64 at = std::max(now + pause, watched.restsUntil);
        if (watched.timer && watched.dueAt <= at) return;
        if (watched.timer) g_source_remove(watched.timer);
        const auto look = +[](void* due) -> gboolean {
            auto& self = *static_cast<Watched*>(due);
            self.timer = 0;
            self.companion->look(self);
            return G_SOURCE_REMOVE;
        };
        watched.timer = g_timeout_add(static_cast<guint>((at - now) / 1000), look, &watched);
        watched.dueAt = at;
    }

    void look(Watched& watched) {
        const gint64 begin = g_get_monotonic_time();
        GtkWidget* view = viewOf(watched.window);
        if (view) watchView(view);
        const std::string folder = view ? folderOf(watched.window).value_or("") : "";
        // An empty folder says that the window shows nothing on a disk, or is gone.
        Variant message = selectionMessage(numberOf(watched.window), folder,
                                           folder.empty() ? std::vector<std::string>() : selectedFiles(view));
        if (!watched.told || !g_variant_equal(watched.told.get(), message.get())) {
            wire_.tell(message.get());
            watched.told = std::move(message);
        }
        const gint64 end = g_get_monotonic_time();
        watched.restsUntil = end + restAfterLook * (end - begin);
        if (gtk_window_is_active(watched.window))
            lookAfter(watched, std::max(activeInterval, restAtRest * (end - begin)));
    }

    void startSelecting(std::vector<std::string> paths, Reply reply) {
        auto* task = new Selecting{this, {}, std::move(reply), g_get_monotonic_time() + lateFilePatience};
        task->files.insert(paths.begin(), paths.end());
        const auto select = +[](void* running) -> gboolean {
            auto* self = static_cast<Selecting*>(running);
            const auto answer = self->companion->goOnSelecting(*self);
            if (!answer) return G_SOURCE_CONTINUE;
            self->reply(*answer);
            delete self;
            return G_SOURCE_REMOVE;
        };
        if (select(task) == G_SOURCE_CONTINUE) g_timeout_add(selectionPauseMilliseconds, select, task);
    }

    // None: not yet decided.
    std::optional<bool> goOnSelecting(Selecting& task) {
        GtkWindow* window = windowOf(task.files);
        if (!window) return false;
        if (GtkWidget* view = viewOf(window)) {
            const auto selected = selectedFiles(view);
            if (std::set<std::string>(selected.begin(), selected.end()) != task.files) {
                task.steadyFor = 0;
                selectFiles(view, task.files);
            } else if (task.steadyFor++ == steadyPauses) {
                gtk_window_present(window);
                return true;
            }
        }
        return g_get_monotonic_time() < task.endsAt || task.steadyFor > 0 ? std::nullopt : std::optional(false);
    }

    // The window that the user was in last, of those that show the one folder of all files.
    GtkWindow* windowOf(const std::set<std::string>& files) const {
        const auto folderOfFile = [](const std::string& file) {
            return file.substr(0, std::max<std::size_t>(file.rfind('/'), 1));
        };
        if (files.empty()) return nullptr;
        const std::string folder = folderOfFile(*files.begin());
        for (const std::string& file : files)
            if (folderOfFile(file) != folder) return nullptr;
        for (GList* at = gtk_application_get_windows(application_); at; at = at->next)
            if (isFolderWindow(GTK_WINDOW(at->data)) && folderOf(GTK_WINDOW(at->data)) == folder)
                return GTK_WINDOW(at->data);
        return nullptr;
    }

    GtkApplication* application_;
    Wire wire_;
    std::unordered_map<GtkWindow*, Watched> windows_;
};

}  // namespace

}  // namespace brindlet_thunar

extern "C" {

G_MODULE_EXPORT void thunar_extension_initialize(ThunarxProviderPlugin* plugin);
G_MODULE_EXPORT void thunar_extension_shutdown();
G_MODULE_EXPORT void thunar_extension_list_types(const GType** types, int* count);

void thunar_extension_initialize(ThunarxProviderPlugin* plugin) {
    thunarx_provider_plugin_set_resident(plugin, TRUE);
    // Thunar may ask again, and other programs load its modules too, such as the desktop's own window.
    static brindlet_thunar::Companion* companion = nullptr;
    GApplication* application = g_application_get_default();
    if (companion || !application || !GTK_IS_APPLICATION(application)) return;
    if (g_strcmp0(g_application_get_application_id(application), "org.xfce.Thunar") != 0) return;
    companion = new brindlet_thunar::Companion(GTK_APPLICATION(application));
}

void thunar_extension_shutdown() {}

void thunar_extension_list_types(const GType** types, int* count) {
    *types = nullptr;
    *count = 0;
}
}
