#pragma once
#include "platform/ModalNotice.h"

namespace kestrel {

/// Where there is no display.
class NullModalNotice final : public ModalNotice
{
public:
    [[nodiscard]] QCoro::Task<qsizetype> ask(Message message) override
    {
        co_return message.buttons.size() - 1;
    }
};

} // namespace kestrel
