#pragma once
#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

namespace kestrel {

struct StatusItemMenuEntry
{
    QString id; ///< empty: a separator
    QString text;
    bool isEnabled = true;

    friend bool operator==(const StatusItemMenuEntry &, const StatusItemMenuEntry &) = default;
};

/// What the status item shows.
struct StatusItemState
{
    QString symbol; ///< the icon's name: "chevron.forward.2", "mic.fill" …
    QByteArray svg; ///< its drawing, black on nothing; takes the panel's colour
    QString label; ///< beside the icon: "in 4 min"; may be empty
    QString toolTip;
    QList<StatusItemMenuEntry> menu;

    friend bool operator==(const StatusItemState &, const StatusItemState &) = default;
};

/// The place in the panel. Registers when it is first shown, and again whenever a host comes or restarts.
class StatusItemHost : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void show(const StatusItemState &state) = 0;

Q_SIGNALS:
    /// A click, left or right. `position` is where the host said it was; unreliable, so it is only a hint.
    void activated(QPoint position);
    void menuTriggered(const QString &id);
    /// No tray could be found. `message` says what helps on this desktop; said once.
    void unavailable(const QString &message);
};

} // namespace kestrel
