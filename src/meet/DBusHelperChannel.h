#pragma once
#include "platform/HelperChannel.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace kestrel {

/// The browser helper of one Kestrel over the session bus, which starts it on demand. Where nobody has told
/// the bus how (an uninstalled build, a Kestrel with a data folder), a file in the folder of transient
/// services does, while this lives; a bus that does not read that folder leaves it to us to start the helper.
/// Main thread only.
class DBusHelperChannel final : public QObject, public HelperChannel
{
    Q_OBJECT
public:
    struct Program
    {
        QString path;
        QStringList arguments; ///< besides --instance
    };

    /// `instance` is the bus name of the Kestrel that calls, which must be its owner.
    DBusHelperChannel(QDBusConnection bus, QString instance, Program program);
    ~DBusHelperChannel() override;

    [[nodiscard]] Answer<HelperReply> openInChromeAppMode(QString chromePath, QString url, qint32 windowWidth,
                                                          qint32 windowHeight) override;
    [[nodiscard]] Answer<HelperReply> installAppBundle(QString sourcePath, QString destinationPath) override;
    [[nodiscard]] Answer<HelperScriptReply> executeJSInChromeTab(QString urlSubstring, QString jsSource,
                                                                 bool activate) override;
    [[nodiscard]] Answer<HelperReply> closeChromeTab(QString urlSubstring) override;
    [[nodiscard]] QCoro::Task<HelperCondition> condition() override;

private:
    /// What the helper answers, whose signature is `signature`.
    [[nodiscard]] Answer<QVariantList> call(QString method, QVariantList arguments, QString signature);
    /// Makes sure that a helper can be reached that could not be a moment ago.
    [[nodiscard]] QCoro::Task<void> provide();
    [[nodiscard]] QCoro::Task<bool> isActivatable();
    void writeServiceFile();
    [[nodiscard]] QCoro::Task<void> startHelper();

    QDBusConnection m_bus;
    QString m_instance;
    QString m_name;
    Program m_program;
    QString m_serviceFile; ///< empty unless it was written
};

} // namespace kestrel
