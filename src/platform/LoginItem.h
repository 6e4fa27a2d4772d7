#pragma once
#include <QString>
#include <expected>

namespace kestrel {

enum class LoginItemState {
    Off,
    On,
    SwitchedOff, ///< by the desktop's own means
    Ineffective, ///< switched on, but kept where no desktop looks
};

/// Whether Kestrel starts with the person's session.
class LoginItem
{
public:
    LoginItem() = default;
    LoginItem(const LoginItem &) = delete;
    LoginItem &operator=(const LoginItem &) = delete;
    virtual ~LoginItem() = default;

    /// The error is a description of what went wrong.
    [[nodiscard]] virtual std::expected<void, QString> setEnabled(bool enabled) = 0;
    [[nodiscard]] virtual LoginItemState state() const = 0;
};

} // namespace kestrel
