#include "platform/linux/secret_service.h"

#include <fmt/format.h>

#include "platform/linux/secret_library.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

// A service that runs answers in 10 to 30 ms; one that has to be started first takes up to a second on a busy machine.
constexpr std::chrono::milliseconds patienceForService{3'000};
constexpr std::chrono::milliseconds patienceForTyping{120'000};
// A call that was cancelled ends at once, or never.
constexpr std::chrono::milliseconds patienceForCancelling{500};

const SecretSchema& secretSchema() {
    static const SecretSchema schema = [] {
        SecretSchema made{};
        made.name = "com.fenwold.brindlet";
        // A locked keyring finds nothing by the schema's name (gnome-keyring 42.1); the attributes do without it.
        made.flags = SECRET_SCHEMA_DONT_MATCH_NAME;
        made.attributes[0] = {"application", SECRET_SCHEMA_ATTRIBUTE_STRING};
        made.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
        return made;
    }();
    return schema;
}

// What a call that goes on by itself has come to.
struct PendingCall {
    const SecretLibrary& secret;
    GAsyncResult* result = nullptr;
    bool isTimeUp = false;
};

void noteResult(GObject*, GAsyncResult* result, gpointer pending) {
    auto& call = *static_cast<PendingCall*>(pending);
    call.result = static_cast<GAsyncResult*>(call.secret.ref(result));
}

gboolean noteTimeUp(gpointer pending) {
    static_cast<PendingCall*>(pending)->isTimeUp = true;
    return TRUE;
}

}  // namespace

struct SecretService::Connection {
    const SecretLibrary& secret;
    GMainContext* context;  // its own, so that nothing else in the process runs meanwhile
    ::SecretService* service = nullptr;

    ~Connection() {
        if (service) secret.unref(service);
        // What the library put off to free later.
        for (int turn = 0; turn < 100 && secret.iterate(context, FALSE); ++turn) {
        }
        secret.unrefContext(context);
    }

    template <class Begin>
    GAsyncResult* awaited(std::chrono::milliseconds patience, Begin begin) const;
    template <class Begin, class Finish>
    std::optional<std::string> problemOf(std::chrono::milliseconds patience, Begin begin, Finish finish) const;
    GHashTable* attributesOf(std::string_view account) const;
    GList* itemsOf(std::string_view account, SecretSearchFlags flags, bool& isTimeUp) const;
    bool holds(std::string_view account) const;
    void waitFor(PendingCall& call, std::chrono::milliseconds patience) const;
};

void SecretService::Connection::waitFor(PendingCall& call, std::chrono::milliseconds patience) const {
    GSource* timeout = secret.newTimeout(static_cast<guint>(patience.count()));
    secret.setCallback(timeout, noteTimeUp, &call, nullptr);
    secret.attach(timeout, context);
    call.isTimeUp = false;
    while (!call.result && !call.isTimeUp) secret.iterate(context, TRUE);
    secret.destroySource(timeout);
    secret.unrefSource(timeout);
}

// `begin(cancellable, callback, data)` starts the call. The result belongs to the caller; none: the time was up.
template <class Begin>
GAsyncResult* SecretService::Connection::awaited(std::chrono::milliseconds patience, Begin begin) const {
    auto call = std::make_unique<PendingCall>(PendingCall{secret});
    GCancellable* cancellable = secret.newCancellable();
    secret.pushContext(context);
    begin(cancellable, &noteResult, call.get());
    waitFor(*call, patience);
    const bool isInTime = call->result != nullptr;
    if (!isInTime) {
        secret.cancel(cancellable);
        waitFor(*call, patienceForCancelling);
    }
    secret.popContext(context);
    secret.unref(cancellable);
    GAsyncResult* result = call->result;
    if (isInTime) return result;
    if (result) {
        secret.unref(result);
    } else {
        call.release();  // the call may end at any time yet, and write there
    }
    return nullptr;
}

// Waits for a call whose `finish(result, &error)` says whether there was no error. Comes back with none where all went
// well, "" where the time was up, else what is wrong.
template <class Begin, class Finish>
std::optional<std::string> SecretService::Connection::problemOf(std::chrono::milliseconds patience, Begin begin,
                                                                Finish finish) const {
    GAsyncResult* result = awaited(patience, begin);
    if (!result) return "";
    GError* error = nullptr;
    finish(result, &error);
    secret.unref(result);
    if (!error) return std::nullopt;
    std::string words = error->message ? error->message : "no reason is given";
    secret.freeError(error);
    return words;
}

GHashTable* SecretService::Connection::attributesOf(std::string_view account) const {
    return secret.buildAttributes(&secretSchema(), "application", "com.fenwold.brindlet", "account",
                                  std::string(account).c_str(), nullptr);
}

SecretService::SecretService(bool canShowWindows)
    : patienceForPeople_(canShowWindows ? patienceForTyping : patienceForService) {}

SecretService::~SecretService() = default;

SecretService::Connection* SecretService::connection() {
    if (isTried_) return connection_.get();
    isTried_ = true;
    const SecretLibrary* secret = SecretLibrary::load();
    if (!secret) return nullptr;
    std::unique_ptr<Connection> made(new Connection{*secret, secret->newContext()});
    const auto problem = made->problemOf(
        patienceForService,
        [&](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
            secret->getService(SECRET_SERVICE_OPEN_SESSION, cancellable, done, data);
        },
        [&](GAsyncResult* result, GError** error) { made->service = secret->getServiceFinish(result, error); });
    if (!problem && made->service) connection_ = std::move(made);
    return connection_.get();
}

bool SecretService::answers() {
    const std::lock_guard lock(guard_);
    return connection() != nullptr;
}

// What matches, locked or not, each with a reference that belongs to the caller, as does the list.
GList* SecretService::Connection::itemsOf(std::string_view account, SecretSearchFlags flags, bool& isTimeUp) const {
    GHashTable* attributes = attributesOf(account);
    GList* items = nullptr;
    const auto problem = problemOf(
        patienceForService,
        [&](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
            secret.search(service, &secretSchema(), attributes, flags, cancellable, done, data);
        },
        [&](GAsyncResult* result, GError** error) { items = secret.searchFinish(service, result, error); });
    secret.unrefTable(attributes);
    isTimeUp = problem == "";
    return items;
}

bool SecretService::Connection::holds(std::string_view account) const {
    bool isTimeUp = false;
    GList* items = itemsOf(account, SECRET_SEARCH_NONE, isTimeUp);
    const bool isThere = items != nullptr;
    for (const GList* item = items; item; item = item->next) secret.unref(item->data);
    secret.freeList(items);
    return isThere;
}

std::optional<std::string> SecretService::read(std::string_view account) {
    const std::lock_guard lock(guard_);
    Connection* bus = connection();
    if (!bus) return std::nullopt;
    const SecretLibrary& secret = bus->secret;
    bool isTimeUp = false;
    GList* items = bus->itemsOf(account, SECRET_SEARCH_LOAD_SECRETS, isTimeUp);
    std::optional<std::string> found;
    for (const GList* item = items; item; item = item->next) {
        if (SecretValue* value = found ? nullptr : secret.secretOf(static_cast<SecretItem*>(item->data))) {
            gsize length = 0;
            const gchar* bytes = secret.bytesOf(value, &length);
            if (const std::string_view text(bytes, length); isValidUtf8(text)) found = text;
            secret.unrefValue(value);
        }
        secret.unref(item->data);
    }
    secret.freeList(items);
    if (isTimeUp) connection_.reset();
    return found;
}

std::optional<Failure> SecretService::write(std::string_view account, std::string_view secretText) {
    const std::lock_guard lock(guard_);
    Connection* bus = connection();
    if (!bus) return Failure{"The desktop's keyring doesn't answer"};
    const SecretLibrary& secret = bus->secret;
    GHashTable* attributes = bus->attributesOf(account);
    const std::string label(account);
    SecretValue* value = secret.newValue(secretText.data(), static_cast<gssize>(secretText.size()), "text/plain");
    const auto problem = bus->problemOf(
        patienceForPeople_,
        [&](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
            secret.store(bus->service, &secretSchema(), attributes, SECRET_COLLECTION_DEFAULT, label.c_str(), value,
                         cancellable, done, data);
        },
        [&](GAsyncResult* result, GError** error) { secret.storeFinish(bus->service, result, error); });
    secret.unrefValue(value);
    secret.unrefTable(attributes);
    if (!problem) return std::nullopt;
    if (problem->empty()) return Failure{"The desktop's keyring wasn't unlocked in time"};
    return Failure{fmt::format("The desktop's keyring takes no secret: {}", *problem)};
}

std::optional<Failure> SecretService::remove(std::string_view account) {
    const std::lock_guard lock(guard_);
    Connection* bus = connection();
    if (!bus) return std::nullopt;
    const SecretLibrary& secret = bus->secret;
    GHashTable* attributes = bus->attributesOf(account);
    const auto problem = bus->problemOf(
        patienceForPeople_,
        [&](GCancellable* cancellable, GAsyncReadyCallback done, gpointer data) {
            secret.clear(bus->service, &secretSchema(), attributes, cancellable, done, data);
        },
        [&](GAsyncResult* result, GError** error) { secret.clearFinish(bus->service, result, error); });
    secret.unrefTable(attributes);
    // What is locked, and stays so, is passed over without an error.
    if (!problem && !bus->holds(account)) return std::nullopt;
    return Failure{problem && problem->empty() ? "The desktop's keyring wasn't unlocked in time"
                                               : "The desktop's keyring is locked and keeps the secret"};
}

}  // namespace brindlet
