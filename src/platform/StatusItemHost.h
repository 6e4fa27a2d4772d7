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

/// Where a panel leaves room for the countdown.
enum class CountdownPlace {
    Label, ///< it draws XAyatanaLabel beside the icon
    Icon, ///< it draws no labels, but wide icons as they are
    ToolTip, ///< neither, or unknown: a wide icon would be squeezed into a square
};

/// Who shows the status item just now.
struct StatusItemCondition
{
    enum class Host {
        None,
        Panel, ///< as a StatusNotifierItem
        Tray, ///< as a window in an XEmbed tray
    };

    Host host = Host::None;
    QString program; ///< the panel's process; empty where it is not known
    CountdownPlace countdown = CountdownPlace::ToolTip;

    friend bool operator==(const StatusItemCondition &, const StatusItemCondition &) = default;
};

/// The place in the panel. Registers when it is first shown, and again whenever a host comes or restarts.
class StatusItemHost : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void show(const StatusItemState &state) = 0;
    [[nodiscard]] virtual StatusItemCondition condition() const = 0;

Q_SIGNALS:
    /// A click, left or right. `position` is where the host said it was; unreliable, so it is only a hint.
    void activated(QPoint position);
    void menuTriggered(const QString &id);
    /// No tray could be found. `message` says what helps on this desktop; said once.
    void unavailable(const QString &message);
};

} // namespace kestrel
