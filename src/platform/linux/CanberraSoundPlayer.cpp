#include "platform/linux/CanberraSoundPlayer.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "base/OnThread.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <atomic>
#include <canberra.h>
#include <expected>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

struct CanberraSoundPlayer::Output
{
    Output(QString installed, QString cache)
        : installedFolder(std::move(installed))
        , cacheFolder(std::move(cache))
    {
    }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;
    ~Output()
    {
        if (context)
            ca_context_destroy(context);
    }

    [[nodiscard]] std::expected<QString, QString> fileOf(const QString &name) const;
    [[nodiscard]] std::expected<void, QString> play(const QString &name);
    /// On a connection of its own, so that it waits for no sound that plays.
    [[nodiscard]] SoundCondition condition(const QString &name) const;

    const QString installedFolder;
    const QString cacheFolder;
    ca_context *context = nullptr;
    std::atomic_bool isBusy = false;
    bool hasComplained = false;
};

std::expected<QString, QString> CanberraSoundPlayer::Output::fileOf(const QString &name) const
{
    const QString fileName = name + u".oga"_s;
    QString installed = installedFolder + u'/' + fileName;
    if (QFileInfo(installed).isFile())
        return installed;

    QFile own(u":/kestrel/sounds/"_s + fileName);
    if (!own.open(QIODevice::ReadOnly))
        return std::unexpected(u"there is no sound \"%1\""_s.arg(name));
    QString cached = cacheFolder + u'/' + fileName;
    const QByteArray sound = own.readAll();
    QFile there(cached);
    if (there.open(QIODevice::ReadOnly) && there.readAll() == sound)
        return cached;
    QSaveFile file(cached);
    if (!QDir().mkpath(cacheFolder) || !file.open(QIODevice::WriteOnly) || file.write(sound) != sound.size()
        || !file.commit())
        return std::unexpected(u"%1 cannot be written: %2"_s.arg(cached, file.errorString()));
    return cached;
}

std::expected<void, QString> CanberraSoundPlayer::Output::play(const QString &name)
{
    const auto file = fileOf(name);
    if (!file)
        return std::unexpected(file.error());
    if (!context) {
        if (const int error = ca_context_create(&context); error != CA_SUCCESS)
            return std::unexpected(QString::fromUtf8(ca_strerror(error)));
        ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Kestrel", CA_PROP_APPLICATION_ID,
                                AppIdentifier.data(), nullptr);
    }
    const QByteArray path = QFile::encodeName(*file);
    ca_proplist *properties = nullptr;
    ca_proplist_create(&properties);
    ca_proplist_sets(properties, CA_PROP_MEDIA_FILENAME, path.constData());
    ca_proplist_sets(properties, CA_PROP_MEDIA_NAME, name.toUtf8().constData());
    ca_proplist_sets(properties, CA_PROP_MEDIA_ROLE, "event");
    const int error = ca_context_play_full(context, 0, properties, nullptr, nullptr);
    ca_proplist_destroy(properties);
    if (error == CA_SUCCESS)
        return {};
    // the next sound tries a new connection: the server may have come up by then
    ca_context_destroy(std::exchange(context, nullptr));
    return std::unexpected(QString::fromUtf8(ca_strerror(error)));
}

SoundCondition CanberraSoundPlayer::Output::condition(const QString &name) const
{
    SoundCondition condition;
    condition.hasSound = QFileInfo::exists(installedFolder + u'/' + name + u".oga"_s)
        || QFileInfo::exists(u":/kestrel/sounds/"_s + name + u".oga"_s);
    ca_context *attempt = nullptr;
    int error = ca_context_create(&attempt);
    if (error == CA_SUCCESS)
        error = ca_context_open(attempt);
    if (attempt)
        ca_context_destroy(attempt);
    if (error != CA_SUCCESS)
        condition.serverError = QString::fromUtf8(ca_strerror(error));
    return condition;
}

CanberraSoundPlayer::CanberraSoundPlayer(QString installedFolder, QString cacheFolder)
    : m_output(std::make_shared<Output>(std::move(installedFolder), std::move(cacheFolder)))
{
}

CanberraSoundPlayer::~CanberraSoundPlayer() = default;

void CanberraSoundPlayer::play(const QString &name)
{
    if (m_output->isBusy.exchange(true))
        return;
    const bool isStarted = startThread([output = m_output, name] {
        const auto played = output->play(name);
        if (!played && !std::exchange(output->hasComplained, true))
            qCWarning(lcAlerts).noquote() << "No sound:" << errorForLog(played.error());
        output->isBusy = false;
    });
    if (!isStarted)
        m_output->isBusy = false;
}

QCoro::Task<SoundCondition> CanberraSoundPlayer::condition(QString name)
{
    return onThread<SoundCondition>([output = m_output, name] { return output->condition(name); });
}

} // namespace kestrel
