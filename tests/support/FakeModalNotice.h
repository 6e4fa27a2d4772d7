#pragma once
#include "platform/ModalNotice.h"
#include <QList>
#include <functional>

namespace kestrel {

/// Notes every message and presses `answer` at once.
class FakeModalNotice final : public ModalNotice
{
public:
    [[nodiscard]] QCoro::Task<qsizetype> ask(Message message) override
    {
        asked.append(message);
        if (beforeAnswer)
            beforeAnswer();
        co_return answer;
    }

    QList<Message> asked;
    qsizetype answer = 0;
    std::function<void()> beforeAnswer;
};

} // namespace kestrel
