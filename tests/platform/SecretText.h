#pragma once
#include "platform/SecretStore.h"
#include <QCoro/QCoroTask>

namespace kestrel {

inline QCoro::Task<QByteArray> read(SecretStore &store, SecretItem item)
{
    const auto found = co_await store.copyMatching(std::move(item));
    co_return found ? *found : '[' + QByteArray::number(qToUnderlying(found.error())) + ']';
}

/// The secret, or the number of the status in brackets.
inline QByteArray secret(SecretStore &store, const SecretItem &item)
{
    return QCoro::waitFor(read(store, item));
}

} // namespace kestrel
