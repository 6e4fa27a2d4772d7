#pragma once
#include "platform/UrlOpener.h"
#include <chrono>

namespace kestrel {

/// Starts xdg-open, or the program that KESTREL_BROWSER names, with the address as its only argument. What it
/// starts outlives Kestrel. Only http and https addresses are opened. Main thread only.
class DesktopUrlOpener final : public UrlOpener
{
public:
    /// A program that still runs after `patience` has taken the address, as one that ended with 0 has.
    explicit DesktopUrlOpener(std::chrono::milliseconds patience = std::chrono::seconds(2));

    [[nodiscard]] QCoro::Task<bool> open(QUrl url) override;

private:
    std::chrono::milliseconds m_patience;
};

} // namespace kestrel
