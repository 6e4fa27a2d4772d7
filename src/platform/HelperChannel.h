#pragma once
#include <QCoro/QCoroTask>
#include <QString>
#include <expected>
#include <optional>

namespace kestrel {

/// What the helper answered: done, or a failure with its text. Neither done nor an error: there was nothing
/// to act on.
struct HelperReply
{
    bool ok = false;
    std::optional<QString> error;

    friend bool operator==(const HelperReply &, const HelperReply &) = default;
};

struct HelperScriptReply
{
    bool ok = false;
    std::optional<QString> result; ///< what the page script returned, as text
    std::optional<QString> error;

    friend bool operator==(const HelperScriptReply &, const HelperScriptReply &) = default;
};

/// Why there was no answer at all.
struct HelperError
{
    enum class Kind {
        Missing, ///< there is no helper, or none that starts
        Unreachable, ///< it went before it answered, or the bus did
        NotOurProtocol, ///< somebody answers to its name who does not know the operation
    };

    Kind kind = Kind::Unreachable;
    QString description;

    friend bool operator==(const HelperError &, const HelperError &) = default;
};

/// Whether calls would reach the helper.
enum class HelperCondition {
    Missing, ///< its program is not there, and nobody knows another way
    OnDemand, ///< it starts with the first call
    Running,
};

/// The way to the program that drives browsers, which is started on demand. Calls do not wait for one
/// another, and nothing is kept between them. Each is answered exactly once; only what its caller limits ends
/// early.
class HelperChannel
{
public:
    HelperChannel() = default;
    HelperChannel(const HelperChannel &) = delete;
    HelperChannel &operator=(const HelperChannel &) = delete;
    virtual ~HelperChannel() = default;

    template<typename Reply>
    using Answer = QCoro::Task<std::expected<Reply, HelperError>>;

    /// Shows `url` in a window without tabs or address bar, of that size in device-independent pixels.
    /// `chromePath` is the path of the browser's .desktop file.
    [[nodiscard]] virtual Answer<HelperReply>
    openInChromeAppMode(QString chromePath, QString url, qint32 windowWidth, qint32 windowHeight) = 0;
    /// Copies the application's folder, replacing what stands at the destination.
    [[nodiscard]] virtual Answer<HelperReply> installAppBundle(QString sourcePath,
                                                               QString destinationPath) = 0;
    /// Runs a script in the first tab whose address contains `urlSubstring`; `activate` brings tab and window
    /// to the front first. An empty script does nothing. Not ok without an error: there is no such tab.
    [[nodiscard]] virtual Answer<HelperScriptReply> executeJSInChromeTab(QString urlSubstring,
                                                                         QString jsSource, bool activate) = 0;
    /// Closes the first such tab, whatever it asks. Not ok without an error: there is none.
    [[nodiscard]] virtual Answer<HelperReply> closeChromeTab(QString urlSubstring) = 0;

    /// Starts nothing.
    [[nodiscard]] virtual QCoro::Task<HelperCondition> condition() = 0;
};

} // namespace kestrel
