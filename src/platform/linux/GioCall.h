#pragma once
#include <QString>
#include <algorithm>
#include <coroutine>
#include <gio/gio.h>
#include <initializer_list>
#include <memory>
#include <utility>

namespace kestrel {

struct GObjectRelease
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// One reference to a GObject.
template<typename T>
using GRef = std::unique_ptr<T, GObjectRelease>;

template<typename T>
[[nodiscard]] GRef<T> newRef(T *object)
{
    return GRef<T>(object ? static_cast<T *>(g_object_ref(object)) : nullptr);
}

/// Where a call leaves its error.
class GFailure final
{
public:
    GFailure() = default;
    GFailure(const GFailure &) = delete;
    GFailure &operator=(const GFailure &) = delete;
    ~GFailure() { g_clear_error(&m_error); }

    [[nodiscard]] GError **out() { return &m_error; }
    [[nodiscard]] explicit operator bool() const { return m_error != nullptr; }
    [[nodiscard]] bool is(GQuark domain, std::initializer_list<int> codes) const
    {
        return m_error && m_error->domain == domain && std::ranges::find(codes, m_error->code) != codes.end();
    }
    /// Without the name that an error has on the bus.
    [[nodiscard]] QString text() const
    {
        if (!m_error)
            return {};
        g_dbus_error_strip_remote_error(m_error);
        return QString::fromUtf8(m_error->message);
    }

private:
    GError *m_error = nullptr;
};

/// Awaits one asynchronous call of GIO's kind; its outcome is the GAsyncResult for the call's own _finish().
///     co_await GioCall([&](auto done, auto data) { secret_item_delete(item, cancellable, done, data); })
/// Such a call always ends, also when it is cancelled, and never before it has returned. Needs an event
/// dispatcher that runs GLib's default context, as Qt's usually does.
template<typename Start>
class GioCall final
{
public:
    explicit GioCall(Start start)
        : m_start(std::move(start))
    {
    }

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiting)
    {
        m_waiting = waiting;
        m_start(&GioCall::ended, static_cast<gpointer>(this));
    }
    [[nodiscard]] GRef<GAsyncResult> await_resume() { return std::move(m_result); }

private:
    static void ended(GObject * /*source*/, GAsyncResult *result, gpointer data)
    {
        auto *call = static_cast<GioCall *>(data);
        call->m_result = newRef(result);
        call->m_waiting.resume();
    }

    Start m_start;
    std::coroutine_handle<> m_waiting;
    GRef<GAsyncResult> m_result;
};

} // namespace kestrel
