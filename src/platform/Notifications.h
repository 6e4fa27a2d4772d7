#pragma once
#include <QObject>
#include <QString>
#include <utility>

namespace kestrel {

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

Q_SIGNALS:
    void actionChosen(const QString &key, const QString &action);
    /// It went away by itself or by the person, or could not be shown at all.
    void closed(const QString &key);
};

} // namespace kestrel
