#pragma once
#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

namespace kestrel {

/// A message in the middle of the screen that waits for an answer, in front of everything.
class ModalNotice
{
public:
    struct Message
    {
        QString title;
        QString text;
        QStringList buttons; ///< the first is the default one

        friend bool operator==(const Message &, const Message &) = default;
    };

    ModalNotice() = default;
    ModalNotice(const ModalNotice &) = delete;
    ModalNotice &operator=(const ModalNotice &) = delete;
    virtual ~ModalNotice() = default;

    /// The index of the button that was pressed; that of the last one when the notice was closed, or cannot
    /// be shown. Notices are shown one after the other.
    [[nodiscard]] virtual QCoro::Task<qsizetype> ask(Message message) = 0;
};

} // namespace kestrel
