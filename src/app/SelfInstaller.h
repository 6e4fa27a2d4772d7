#pragma once
#include "platform/InstallPlaces.h"
#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <chrono>
#include <expected>

namespace kestrel {

class HelperChannel;
class ModalNotice;
class PreferenceStore;

struct SelfInstallerError
{
    enum class Kind { InstallFailed, XpcUnavailable, TimedOut };
    Kind kind = Kind::XpcUnavailable;
    QString message {}; ///< of InstallFailed

    [[nodiscard]] QString description() const;
    friend bool operator==(const SelfInstallerError &, const SelfInstallerError &) = default;
};

/// Offers once to install a Kestrel that was started from where it does not stay: a stick, a mounted image.
/// What it is given outlives it; once it is gone nothing more happens, whatever is still under way. Main
/// thread only.
class SelfInstaller final : public QObject
{
    Q_OBJECT
public:
    /// `bundle` is the folder that holds the running Kestrel. The helper has `patience` for the copy.
    SelfInstaller(QString bundle, InstallPlaces places, ModalNotice &notice, HelperChannel &helper,
                  PreferenceStore &store, std::chrono::milliseconds patience = std::chrono::seconds(30));

    /// True when Kestrel was installed and this process ends in a moment: whoever starts it stops there.
    [[nodiscard]] QCoro::Task<bool> offerIfNeeded();

    [[nodiscard]] QCoro::Task<std::expected<void, SelfInstallerError>> install(QString from, QString to);

private:
    [[nodiscard]] bool isNeeded() const;

    QString m_bundle;
    InstallPlaces m_places;
    ModalNotice &m_notice;
    HelperChannel &m_helper;
    PreferenceStore &m_store;
    std::chrono::milliseconds m_patience;
};

} // namespace kestrel
