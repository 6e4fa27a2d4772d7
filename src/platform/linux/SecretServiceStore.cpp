#include "platform/linux/SecretServiceStore.h"
#include "base/Log.h"
#include "base/StartTask.h"
#include "platform/linux/BusPeer.h"
#include "platform/linux/GioCall.h"
#include <QAbstractEventDispatcher>
#include <QHash>
#include <QSet>
#include <QStringDecoder>
#define SECRET_API_SUBJECT_TO_CHANGE // for secret_service_encode_dbus_secret()
#include <libsecret/secret.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

constexpr const char *serviceName = "org.freedesktop.secrets";
constexpr const char *servicePath = "/org/freedesktop/secrets";
constexpr const char *serviceInterface = "org.freedesktop.Secret.Service";
constexpr const char *collectionInterface = "org.freedesktop.Secret.Collection";
constexpr const char *itemInterface = "org.freedesktop.Secret.Item";
constexpr const char *promptInterface = "org.freedesktop.Secret.Prompt";
constexpr const char *propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char *nothing = "/"; ///< the object path that the API uses for none

const auto noServiceMessage =
    u"Kestrel keeps its sign-in in the desktop's password store, but none answers (%1). Where there is none, "
    "install gnome-keyring, KWallet (with its Secret Service switched on) or KeePassXC (with its Secret "
    "Service "
    "integration switched on) and log in anew; or start Kestrel with --secret-store file to keep the sign-in "
    "in "
    "a file that only you can read."_s;
const auto noDispatcherMessage =
    u"Kestrel cannot reach the desktop's password store, because Qt runs without GLib here. Unset "
    u"QT_NO_GLIB; "
    "or start Kestrel with --secret-store file to keep the sign-in in a file that only you can read."_s;

template<auto release>
struct Release
{
    template<typename T>
    void operator()(T *object) const
    {
        release(object);
    }
};
using Attributes = std::unique_ptr<GHashTable, Release<g_hash_table_unref>>;
using Value = std::unique_ptr<SecretValue, Release<secret_value_unref>>;
using Variant = std::unique_ptr<GVariant, Release<g_variant_unref>>;
// our own SecretItem is the identity of one
using Items = std::vector<GRef<::SecretItem>>;

Attributes attributesOf(const SecretItem &item)
{
    Attributes attributes(g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free));
    g_hash_table_insert(attributes.get(), g_strdup("service"), g_strdup(item.service.toUtf8().constData()));
    g_hash_table_insert(attributes.get(), g_strdup("account"), g_strdup(item.account.toUtf8().constData()));
    return attributes;
}

Value valueOf(const QByteArray &data)
{
    // services may store text otherwise than other bytes
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    [[maybe_unused]] const QString text = decoder(data);
    const bool isText = !decoder.hasError() && !data.contains('\0');
    return Value(
        secret_value_new(data.constData(), data.size(), isText ? "text/plain" : "application/octet-stream"));
}

QByteArray pathOf(gpointer proxy)
{
    return g_dbus_proxy_get_object_path(static_cast<GDBusProxy *>(proxy));
}

/// An item's path is that of its collection and one component more.
QByteArray collectionOf(const QByteArray &item)
{
    return item.first(item.lastIndexOf('/'));
}

bool isCollection(const QByteArray &path)
{
    return path.count('/') == 5; // "/org/freedesktop/secrets/collection/<its name>"
}

QByteArray childPath(const Variant &tuple, gsize index)
{
    const Variant child(g_variant_get_child_value(tuple.get(), index));
    return g_variant_get_string(child.get(), nullptr);
}

bool isGone(const GFailure &failure)
{
    return failure.is(G_DBUS_ERROR,
                      { G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER, G_DBUS_ERROR_NO_REPLY,
                        G_DBUS_ERROR_DISCONNECTED })
        || failure.is(G_IO_ERROR, { G_IO_ERROR_CLOSED, G_IO_ERROR_BROKEN_PIPE });
}

} // namespace

/// What stands between the store and the service. Its operations own it together with the store, so that one
/// which the store does not live to see finished still has something to end with.
class KeyringLink final : public std::enable_shared_from_this<KeyringLink>
{
public:
    using Ref = std::shared_ptr<KeyringLink>;

    explicit KeyringLink(SecretServiceStore &store)
        : m_store(&store)
        , m_cancellable(g_cancellable_new())
    {
    }

    /// The store goes: no signal any more, and every call ends soon.
    void close();

    static QCoro::Task<std::expected<QByteArray, SecretStatus>> copyMatching(Ref link, SecretItem item);
    static QCoro::Task<SecretStatus> update(Ref link, SecretItem item, QByteArray data);
    static QCoro::Task<SecretStatus> add(Ref link, SecretItem item, QByteArray data);
    static QCoro::Task<SecretStatus> remove(Ref link, SecretItem item);
    /// Of the default collection; one that is yet to be created counts as open.
    static QCoro::Task<SecretStatus> lookAtLock(Ref link);

private:
    /// Lets a coroutine wait until the service was opened, or was not.
    struct Opening
    {
        KeyringLink &link;

        [[nodiscard]] bool await_ready() const noexcept { return !link.m_isOpening; }
        void await_suspend(std::coroutine_handle<> waiting) { link.m_waitingForOpening.push_back(waiting); }
        void await_resume() const noexcept { }
    };

    /// A question that stands open, to be awaited.
    struct Prompt
    {
        std::optional<SecretStatus> answer;
        std::coroutine_handle<> waiting;

        [[nodiscard]] bool await_ready() const noexcept { return answer.has_value(); }
        void await_suspend(std::coroutine_handle<> coroutine) { waiting = coroutine; }
        [[nodiscard]] SecretStatus await_resume() const { return *answer; }
    };

    static QCoro::Task<std::expected<Items, SecretStatus>> find(Ref link, SecretItem item);
    static QCoro::Task<SecretStatus> connectToService(Ref link);
    static QCoro::Task<SecretStatus> open(Ref link);
    static QCoro::Task<void> unlock(Ref link, QByteArray path);
    static QCoro::Task<void> lookAgain(Ref link, QByteArray path);

    // Not through libsecret, whose calls never end when a question is closed with another result than it
    // expects (0.20.5; the API leaves that result open).
    static QCoro::Task<std::expected<QByteArray, SecretStatus>> defaultCollection(Ref link);
    static QCoro::Task<std::expected<QByteArray, SecretStatus>> createDefaultCollection(Ref link);
    static QCoro::Task<SecretStatus> createItem(Ref link, QByteArray collection, SecretItem item,
                                                QByteArray data);
    static QCoro::Task<SecretStatus> removeItem(Ref link, QByteArray path);
    static QCoro::Task<std::optional<bool>> isLocked(Ref link, QByteArray path, GFailure &failure);
    /// `arguments` may float. The reply is a tuple; nothing and a failure where there is none.
    static QCoro::Task<Variant> call(Ref link, QByteArray path, const char *interface, const char *method,
                                     GVariant *arguments, const char *replyType, GFailure &failure);
    /// Shows a question and waits for the answer: Success or Dismissed, or what kept it from being given.
    static QCoro::Task<SecretStatus> ask(Ref link, QByteArray path);

    void watch();
    void disconnect();
    [[nodiscard]] SecretStatus statusOf(const GFailure &failure);
    [[nodiscard]] SecretStatus metLock(const QByteArray &path);
    void metOpen(const QByteArray &path);
    void endPrompt(const QByteArray &path, SecretStatus answer);
    void endPrompts(SecretStatus answer);
    void opened();
    void sayTrouble(const QString &message);

    static void onAppeared(GDBusConnection *, const char *, const char *, gpointer data);
    static void onVanished(GDBusConnection *, const char *, gpointer data);
    static void onSignal(GDBusConnection *, const char *, const char *path, const char *interface,
                         const char *signal, GVariant *parameters, gpointer data);

    SecretServiceStore *m_store;
    GRef<GCancellable> m_cancellable;
    GRef<GDBusConnection> m_connection;
    GRef<SecretService> m_service;
    guint m_nameWatch = 0;
    guint m_signalWatch = 0;
    bool m_isOpening = false;
    std::vector<std::coroutine_handle<>> m_waitingForOpening;

    /// Somebody was told Locked or Unavailable, or would have been: opened() is owed.
    bool m_isBarred = false;
    bool m_isMissing = false;
    bool m_hasAnswered = false;
    /// Paths of the collections and items that the person was asked to unlock since they were last seen open.
    QSet<QByteArray> m_asked;
    QHash<QByteArray, Prompt *> m_prompts; ///< by path; each lives in the coroutine that waits for it
    QString m_lastFailure; ///< as the log has it, until something could be found
    bool m_hasSaidTrouble = false; ///< since the service answered last
};

void KeyringLink::close()
{
    m_store = nullptr;
    disconnect();
    g_cancellable_cancel(m_cancellable.get());
    // at once, since there may be no event loop any more
    endPrompts(SecretStatus::Failed);
}

QCoro::Task<std::expected<QByteArray, SecretStatus>> KeyringLink::copyMatching(Ref link, SecretItem item)
{
    const auto found = co_await find(link, item);
    if (!found)
        co_return std::unexpected(found.error());
    if (found->empty())
        co_return std::unexpected(SecretStatus::NotFound);
    ::SecretItem *const first = found->front().get();
    const auto result = co_await GioCall(
        [&](auto done, auto data) { secret_item_load_secret(first, link->m_cancellable.get(), done, data); });
    GFailure failure;
    if (!secret_item_load_secret_finish(first, result.get(), failure.out()))
        co_return std::unexpected(link->statusOf(failure));
    const Value value(secret_item_get_secret(first));
    if (!value)
        co_return std::unexpected(SecretStatus::Failed);
    gsize length = 0;
    const char *bytes = secret_value_get(value.get(), &length);
    co_return QByteArray(bytes, static_cast<qsizetype>(length));
}

QCoro::Task<SecretStatus> KeyringLink::update(Ref link, SecretItem item, QByteArray data)
{
    const auto found = co_await find(link, item);
    if (!found)
        co_return found.error();
    if (found->empty())
        co_return SecretStatus::NotFound;
    const Value value = valueOf(data);
    // another program may have made copies, and any of them may be the one that is read
    for (const auto &each : *found) {
        const auto result = co_await GioCall([&](auto done, auto userData) {
            secret_item_set_secret(each.get(), value.get(), link->m_cancellable.get(), done, userData);
        });
        GFailure failure;
        if (!secret_item_set_secret_finish(each.get(), result.get(), failure.out()))
            co_return link->statusOf(failure);
    }
    co_return SecretStatus::Success;
}

QCoro::Task<SecretStatus> KeyringLink::add(Ref link, SecretItem item, QByteArray data)
{
    // for the lock alone; an item that is there is replaced
    if (const auto found = co_await find(link, item); !found)
        co_return found.error();
    auto collection = co_await defaultCollection(link);
    if (collection && *collection == nothing)
        collection = co_await createDefaultCollection(link);
    if (!collection)
        co_return collection.error();
    co_return co_await createItem(link, *collection, std::move(item), std::move(data));
}

QCoro::Task<SecretStatus> KeyringLink::remove(Ref link, SecretItem item)
{
    const auto found = co_await find(link, item);
    if (!found)
        co_return found.error();
    if (found->empty())
        co_return SecretStatus::NotFound;
    for (const auto &each : *found) {
        if (const auto status = co_await removeItem(link, pathOf(each.get()));
            status != SecretStatus::Success)
            co_return status;
    }
    co_return SecretStatus::Success;
}

QCoro::Task<SecretStatus> KeyringLink::lookAtLock(Ref link)
{
    if (const auto status = co_await connectToService(link); status != SecretStatus::Success)
        co_return status;
    const auto collection = co_await defaultCollection(link);
    if (!collection)
        co_return collection.error();
    if (*collection == nothing)
        co_return SecretStatus::Success;
    GFailure failure;
    const auto lock = co_await isLocked(link, *collection, failure);
    if (!lock)
        co_return link->statusOf(failure);
    co_return *lock ? SecretStatus::Locked : SecretStatus::Success;
}

/// The items that are there and open. None means that it can be relied on that there is no such item.
QCoro::Task<std::expected<Items, SecretStatus>> KeyringLink::find(Ref link, SecretItem item)
{
    if (const auto status = co_await connectToService(link); status != SecretStatus::Success)
        co_return std::unexpected(status);
    const auto service = newRef(link->m_service.get());
    const Attributes attributes = attributesOf(item);
    const auto result = co_await GioCall([&](auto done, auto data) {
        // without a schema, since libsecret would look for a third attribute with its name
        secret_service_search(service.get(), nullptr, attributes.get(), SECRET_SEARCH_ALL,
                              link->m_cancellable.get(), done, data);
    });
    GFailure failure;
    GList *const matches = secret_service_search_finish(service.get(), result.get(), failure.out());
    if (failure)
        co_return std::unexpected(link->statusOf(failure));
    link->m_lastFailure.clear();
    Items open;
    Items locked;
    for (const GList *match = matches; match; match = match->next) {
        auto *const found = static_cast<::SecretItem *>(match->data);
        (secret_item_get_locked(found) ? locked : open).emplace_back(found);
    }
    g_list_free(matches);
    if (!open.empty()) {
        const QByteArray path = pathOf(open.front().get());
        link->metOpen(path);
        link->metOpen(collectionOf(path));
        co_return open;
    }
    if (!locked.empty()) {
        // one question for all items of a locked collection; services that let each item be allowed by itself
        // lock items of an open one
        const QByteArray path = pathOf(locked.front().get());
        const auto lock = co_await isLocked(link, collectionOf(path), failure);
        co_return std::unexpected(link->metLock(lock.value_or(false) ? collectionOf(path) : path));
    }

    // a locked collection need not say what is in it
    const auto collection = co_await defaultCollection(link);
    if (!collection)
        co_return std::unexpected(collection.error());
    if (*collection == nothing)
        co_return open;
    const auto lock = co_await isLocked(link, *collection, failure);
    if (!lock)
        co_return std::unexpected(link->statusOf(failure));
    if (*lock)
        co_return std::unexpected(link->metLock(*collection));
    link->metOpen(*collection);
    co_return open;
}

QCoro::Task<SecretStatus> KeyringLink::connectToService(Ref link)
{
    if (!link->m_store)
        co_return SecretStatus::Failed;
    if (!QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib")) {
        link->sayTrouble(noDispatcherMessage);
        co_return SecretStatus::Unavailable;
    }
    if (link->m_isOpening) {
        co_await Opening { *link };
        if (!link->m_store)
            co_return SecretStatus::Failed;
    } else if (!link->m_service) {
        link->m_isOpening = true;
        const auto status = co_await open(link);
        link->m_isOpening = false;
        for (const auto waiting : std::exchange(link->m_waitingForOpening, {}))
            waiting.resume();
        if (status != SecretStatus::Success)
            co_return status;
    }
    co_return link->m_service ? SecretStatus::Success : SecretStatus::Unavailable;
}

QCoro::Task<SecretStatus> KeyringLink::open(Ref link)
{
    GFailure failure;
    if (link->m_connection && g_dbus_connection_is_closed(link->m_connection.get()))
        link->disconnect();
    if (!link->m_connection) {
        const auto result = co_await GioCall([&](auto done, auto data) {
            g_bus_get(G_BUS_TYPE_SESSION, link->m_cancellable.get(), done, data);
        });
        link->m_connection.reset(g_bus_get_finish(result.get(), failure.out()));
        // GLib hands a dead connection out again as long as anybody holds it
        const bool isDead = link->m_connection && g_dbus_connection_is_closed(link->m_connection.get());
        if (isDead)
            g_set_error_literal(failure.out(), G_IO_ERROR, G_IO_ERROR_CLOSED, "the session bus has ended");
        else if (link->m_connection && link->m_store)
            link->watch();
    }
    if (!failure && link->m_store) {
        const auto result = co_await GioCall([&](auto done, auto data) {
            secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION,
                                link->m_cancellable.get(), done, data);
        });
        link->m_service.reset(secret_service_open_finish(result.get(), failure.out()));
    }
    if (!link->m_store) {
        link->disconnect();
        co_return SecretStatus::Failed;
    }
    if (failure) {
        link->m_isBarred = true;
        link->m_isMissing = true;
        link->sayTrouble(noServiceMessage.arg(errorForLog(failure.text())));
        co_return SecretStatus::Unavailable;
    }
    link->m_hasAnswered = true;
    if (std::exchange(link->m_hasSaidTrouble, false)) {
        qCInfo(lcAuth) << "The password store answers again";
        link->m_isMissing = false; // a service that hung has not come anew
        link->opened();
    }
    co_return SecretStatus::Success;
}

QCoro::Task<void> KeyringLink::unlock(Ref link, QByteArray path)
{
    GFailure failure;
    const char *const paths[] = { path.constData(), nullptr };
    const Variant reply = co_await call(link, servicePath, serviceInterface, "Unlock",
                                        g_variant_new("(^ao)", paths), "(aoo)", failure);
    if (!reply) {
        if (link->m_store)
            qCWarning(lcAuth).noquote() << "The keyring cannot be unlocked:" << errorForLog(failure.text());
        co_return;
    }
    // whatever is answered, the collection or item itself says whether it is open
    if (const QByteArray prompt = childPath(reply, 1); prompt != nothing)
        co_await ask(link, prompt);
    co_await lookAgain(link, path);
}

QCoro::Task<void> KeyringLink::lookAgain(Ref link, QByteArray path)
{
    GFailure failure;
    const auto lock = co_await isLocked(link, path, failure);
    if (lock && !*lock)
        link->metOpen(path);
}

QCoro::Task<std::expected<QByteArray, SecretStatus>> KeyringLink::defaultCollection(Ref link)
{
    GFailure failure;
    const Variant reply = co_await call(link, servicePath, serviceInterface, "ReadAlias",
                                        g_variant_new("(s)", SECRET_COLLECTION_DEFAULT), "(o)", failure);
    if (!reply)
        co_return std::unexpected(link->statusOf(failure));
    co_return childPath(reply, 0);
}

QCoro::Task<std::expected<QByteArray, SecretStatus>> KeyringLink::createDefaultCollection(Ref link)
{
    GFailure failure;
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Collection.Label",
                          g_variant_new_string("Default keyring"));
    const Variant reply =
        co_await call(link, servicePath, serviceInterface, "CreateCollection",
                      g_variant_new("(a{sv}s)", &properties, SECRET_COLLECTION_DEFAULT), "(oo)", failure);
    if (!reply)
        co_return std::unexpected(link->statusOf(failure));
    if (const QByteArray prompt = childPath(reply, 1); prompt != nothing) {
        if (const auto answer = co_await ask(link, prompt); answer != SecretStatus::Success)
            co_return std::unexpected(answer);
    }
    co_return co_await defaultCollection(link);
}

QCoro::Task<SecretStatus> KeyringLink::createItem(Ref link, QByteArray collection, SecretItem item,
                                                  QByteArray data)
{
    if (!link->m_service)
        co_return link->m_store ? SecretStatus::Unavailable : SecretStatus::Failed;
    GVariantBuilder attributes;
    g_variant_builder_init(&attributes, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&attributes, "{ss}", "service", item.service.toUtf8().constData());
    g_variant_builder_add(&attributes, "{ss}", "account", item.account.toUtf8().constData());
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label",
                          g_variant_new_string(("Kestrel: " + item.account.toUtf8()).constData()));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                          g_variant_builder_end(&attributes));
    constexpr gboolean replace = TRUE;
    GVariant *const secret = secret_service_encode_dbus_secret(link->m_service.get(), valueOf(data).get());

    GFailure failure;
    const Variant reply =
        co_await call(link, collection, collectionInterface, "CreateItem",
                      g_variant_new("(a{sv}@(oayays)b)", &properties, secret, replace), "(oo)", failure);
    if (!reply)
        co_return link->statusOf(failure);
    if (const QByteArray prompt = childPath(reply, 1); prompt != nothing) {
        if (const auto answer = co_await ask(link, prompt); answer != SecretStatus::Success)
            co_return answer;
    }
    co_return SecretStatus::Success;
}

QCoro::Task<SecretStatus> KeyringLink::removeItem(Ref link, QByteArray path)
{
    GFailure failure;
    const Variant reply = co_await call(link, path, itemInterface, "Delete", nullptr, "(o)", failure);
    if (!reply)
        co_return link->statusOf(failure);
    if (const QByteArray prompt = childPath(reply, 0); prompt != nothing) {
        if (const auto answer = co_await ask(link, prompt); answer != SecretStatus::Success)
            co_return answer;
    }
    co_return SecretStatus::Success;
}

QCoro::Task<std::optional<bool>> KeyringLink::isLocked(Ref link, QByteArray path, GFailure &failure)
{
    const char *const interface = isCollection(path) ? collectionInterface : itemInterface;
    const Variant reply = co_await call(link, path, propertiesInterface, "Get",
                                        g_variant_new("(ss)", interface, "Locked"), "(v)", failure);
    if (!reply)
        co_return std::optional<bool>();
    const Variant boxed(g_variant_get_child_value(reply.get(), 0));
    const Variant property(g_variant_get_variant(boxed.get()));
    // a lock that cannot be understood is one
    co_return !g_variant_is_of_type(property.get(), G_VARIANT_TYPE_BOOLEAN)
        || g_variant_get_boolean(property.get());
}

QCoro::Task<Variant> KeyringLink::call(Ref link, QByteArray path, const char *interface, const char *method,
                                       GVariant *arguments, const char *replyType, GFailure &failure)
{
    const Variant owned(arguments ? g_variant_ref_sink(arguments) : nullptr);
    const auto connection = newRef(link->m_connection.get());
    if (!connection) {
        g_set_error_literal(failure.out(), G_IO_ERROR, G_IO_ERROR_CLOSED, "the session bus has ended");
        co_return Variant();
    }
    const auto result = co_await GioCall([&](auto done, auto data) {
        g_dbus_connection_call(connection.get(), serviceName, path.constData(), interface, method,
                               owned.get(), G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1,
                               link->m_cancellable.get(), done, data);
    });
    co_return Variant(g_dbus_connection_call_finish(connection.get(), result.get(), failure.out()));
}

QCoro::Task<SecretStatus> KeyringLink::ask(Ref link, QByteArray path)
{
    Prompt prompt;
    link->m_prompts.insert(path, &prompt); // the answer may come before the call's reply
    GFailure failure;
    if (!co_await call(link, path, promptInterface, "Prompt", g_variant_new("(s)", ""), "()", failure)) {
        link->m_prompts.remove(path);
        co_return link->statusOf(failure);
    }
    co_return co_await prompt;
}

void KeyringLink::watch()
{
    // GLib would end the process together with the bus
    g_dbus_connection_set_exit_on_close(m_connection.get(), FALSE);
    m_nameWatch =
        g_bus_watch_name_on_connection(m_connection.get(), serviceName, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                       onAppeared, onVanished, this, nullptr);
    m_signalWatch =
        g_dbus_connection_signal_subscribe(m_connection.get(), serviceName, nullptr, nullptr, nullptr,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
}

void KeyringLink::disconnect()
{
    if (m_nameWatch) {
        g_bus_unwatch_name(std::exchange(m_nameWatch, 0));
        g_dbus_connection_signal_unsubscribe(m_connection.get(), m_signalWatch);
    }
    m_service.reset();
    m_connection.reset();
}

SecretStatus KeyringLink::statusOf(const GFailure &failure)
{
    if (!m_store)
        return SecretStatus::Failed;
    if (failure.is(SECRET_ERROR, { SECRET_ERROR_NO_SUCH_OBJECT }))
        return SecretStatus::NotFound;
    if (failure.is(SECRET_ERROR, { SECRET_ERROR_IS_LOCKED })) {
        m_isBarred = true;
        return SecretStatus::Locked;
    }
    if (const QString text = errorForLog(failure.text()); std::exchange(m_lastFailure, text) != text)
        qCWarning(lcAuth).noquote() << "The secret service failed:" << text;
    // whatever is wrong with it, the next operation begins afresh
    m_service.reset();
    if (!isGone(failure))
        return SecretStatus::Failed;
    m_isBarred = true;
    return SecretStatus::Unavailable;
}

SecretStatus KeyringLink::metLock(const QByteArray &path)
{
    m_isBarred = true;
    if (!m_asked.contains(path)) {
        if (m_asked.isEmpty())
            qCWarning(lcAuth) << "The keyring is locked; Kestrel waits for it to be opened";
        m_asked.insert(path);
        startTask("unlock the keyring", unlock(shared_from_this(), path));
    }
    return SecretStatus::Locked;
}

void KeyringLink::metOpen(const QByteArray &path)
{
    if (!m_asked.remove(path))
        return;
    if (m_asked.isEmpty())
        qCInfo(lcAuth) << "The keyring is open";
    opened();
}

void KeyringLink::endPrompt(const QByteArray &path, SecretStatus answer)
{
    if (Prompt *const prompt = m_prompts.take(path)) {
        prompt->answer = answer;
        if (prompt->waiting)
            prompt->waiting.resume();
    }
}

void KeyringLink::endPrompts(SecretStatus answer)
{
    for (const QByteArray &path : m_prompts.keys())
        endPrompt(path, answer);
}

void KeyringLink::opened()
{
    if (!m_isBarred || !m_store)
        return;
    m_isBarred = false;
    // an operation may be under way that should end first
    QMetaObject::invokeMethod(m_store, &SecretStore::opened, Qt::QueuedConnection);
}

void KeyringLink::sayTrouble(const QString &message)
{
    if (std::exchange(m_hasSaidTrouble, true))
        return;
    QMetaObject::invokeMethod(
        m_store, [store = m_store, message] { Q_EMIT store->trouble(message); }, Qt::QueuedConnection);
}

void KeyringLink::onAppeared(GDBusConnection * /*connection*/, const char * /*name*/, const char * /*owner*/,
                             gpointer data)
{
    auto *link = static_cast<KeyringLink *>(data);
    if (std::exchange(link->m_isMissing, false))
        link->opened();
}

void KeyringLink::onVanished(GDBusConnection * /*connection*/, const char * /*name*/, gpointer data)
{
    auto *link = static_cast<KeyringLink *>(data);
    link->m_service.reset();
    link->m_isMissing = true;
    if (link->m_hasAnswered)
        link->m_isBarred = true;
    link->m_asked.clear();
    link->endPrompts(SecretStatus::Unavailable);
}

void KeyringLink::onSignal(GDBusConnection * /*connection*/, const char * /*sender*/, const char *path,
                           const char *interface, const char *signal, GVariant *parameters, gpointer data)
{
    auto *link = static_cast<KeyringLink *>(data);
    if (qstrcmp(interface, promptInterface) == 0 && qstrcmp(signal, "Completed") == 0
        && g_variant_is_of_type(parameters, G_VARIANT_TYPE("(bv)"))) {
        const Variant isDismissed(g_variant_get_child_value(parameters, 0));
        link->endPrompt(
            path, g_variant_get_boolean(isDismissed.get()) ? SecretStatus::Dismissed : SecretStatus::Success);
        return;
    }
    // Some services say which property has changed, others only that something has. Looking costs little, and
    // only while something is locked.
    for (const QByteArray &asked : std::as_const(link->m_asked))
        startTask("look at the keyring again", lookAgain(link->shared_from_this(), asked));
}

SecretServiceStore::SecretServiceStore(QObject *parent)
    : SecretStore(parent)
    , m_link(std::make_shared<KeyringLink>(*this))
{
}

SecretServiceStore::~SecretServiceStore()
{
    m_link->close();
}

QCoro::Task<std::expected<QByteArray, SecretStatus>> SecretServiceStore::copyMatching(SecretItem item)
{
    return KeyringLink::copyMatching(m_link, std::move(item));
}

QCoro::Task<SecretStatus> SecretServiceStore::update(SecretItem item, QByteArray data)
{
    return KeyringLink::update(m_link, std::move(item), std::move(data));
}

QCoro::Task<SecretStatus> SecretServiceStore::add(SecretItem item, QByteArray data)
{
    return KeyringLink::add(m_link, std::move(item), std::move(data));
}

QCoro::Task<SecretStatus> SecretServiceStore::remove(SecretItem item)
{
    return KeyringLink::remove(m_link, std::move(item));
}

QCoro::Task<SecretStoreCondition> SecretServiceStore::condition()
{
    const SecretStatus status = co_await KeyringLink::lookAtLock(m_link);
    const auto process = co_await processOf(QDBusConnection::sessionBus(), QLatin1StringView(serviceName));
    co_return SecretStoreCondition { SecretStoreCondition::Place::SecretService,
                                     process ? processName(*process) : QString(), status };
}

} // namespace kestrel
