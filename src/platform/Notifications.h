#pragma once
#include <QCoro/QCoroTask>
#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>
#include <utility>

namespace kestrel {

/// Who shows notifications, in its own words.
struct NotificationService
{
    QString name;
    QString version;
    QStringList capabilities; ///< "actions": it shows buttons

    friend bool operator==(const NotificationService &, const NotificationService &) = default;
};

/// The desktop's notifications, where cards cannot be placed.
class Notifications : public QObject
{
    Q_OBJECT
public:
    struct Notice
    {
        QString key; ///< ours; a notice with the same key takes the place of the older one
        QString title;
        QString text;
        QList<std::pair<QString, QString>> actions; ///< id and label
        bool isCritical = false; ///< stays until it is answered
    };

    using QObject::QObject;

    virtual void show(const Notice &notice) = 0;
    virtual void close(const QString &key) = 0;
    /// Nothing where nobody shows them. What was shown before has arrived when this is answered.
    [[nodiscard]] virtual QCoro::Task<std::optional<NotificationService>> service() = 0;

Q_SIGNALS:
    void actionChosen(const QString &key, const QString &action);
    /// It went away by itself or by the person, or could not be shown at all.
    void closed(const QString &key);
};

} // namespace kestrel
