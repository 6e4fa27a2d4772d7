#pragma once
#include <QByteArray>
#include <QString>
#include <expected>

namespace kestrel {

/// What the browser brings back from the consent page.
struct RedirectCallback
{
    QString code;
    QString state;

    friend bool operator==(const RedirectCallback &, const RedirectCallback &) = default;
};

/// Why a request is no callback.
struct RedirectFault
{
    enum class Kind {
        Unreadable, ///< not a GET request in UTF-8
        BadHost, ///< meant for somebody else
        WrongPath, ///< a favicon, say
        Incomplete, ///< without code or state
        Denied, ///< the page says that there will be none
    };
    Kind kind = Kind::Unreadable;
    QString error; ///< of Denied: what the page says

    friend bool operator==(const RedirectFault &, const RedirectFault &) = default;
};

/// Reads the request to 127.0.0.1:`port` from the first bytes of a connection, as they were received.
[[nodiscard]] std::expected<RedirectCallback, RedirectFault> readRedirect(const QByteArray &bytes,
                                                                          quint16 port);

} // namespace kestrel
