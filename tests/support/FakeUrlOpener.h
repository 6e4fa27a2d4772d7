#pragma once
#include "platform/UrlOpener.h"
#include <QList>
#include <functional>

namespace kestrel {

/// Records what was opened. `onOpen` plays the browser.
class FakeUrlOpener final : public UrlOpener
{
public:
    [[nodiscard]] QCoro::Task<bool> open(QUrl url) override
    {
        opened.append(url);
        if (succeeds && onOpen)
            onOpen(url);
        co_return succeeds;
    }

    QList<QUrl> opened;
    bool succeeds = true;
    std::function<void(const QUrl &)> onOpen;
};

} // namespace kestrel
