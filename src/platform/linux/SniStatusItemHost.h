#pragma once
#include "platform/Appearance.h"
#include "platform/StatusItemHost.h"
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QTemporaryDir>
#include <memory>

namespace kestrel {

class StatusItemMenu;

/// How a panel reads the tool tip's title, which the protocol says is plain text.
enum class ToolTipReading {
    Plain,
    Markup,
    Guessed, ///< as markup where Qt takes it for that
};

/// What is known of a panel.
struct PanelHabits
{
    CountdownPlace place = CountdownPlace::ToolTip;
    ToolTipReading reading = ToolTipReading::Plain;
    /// An item that had a label once is nothing but that label for good, even an empty one.
    bool keepsLabel = false;
};

/// Those of the panel whose process has this name, as /proc/<pid>/comm gives it.
[[nodiscard]] PanelHabits panelHabits(const QByteArray &processName);

/// A StatusNotifierItem with a com.canonical.dbusmenu. Announces itself to the session bus's
/// org.kde.StatusNotifierWatcher at the first show(), and again to every watcher and every host that comes
/// later. Main thread only; `appearance` outlives it.
class SniStatusItemHost final : public StatusItemHost
{
    Q_OBJECT
public:
    explicit SniStatusItemHost(const Appearance &appearance);
    ~SniStatusItemHost() override;

    void show(const StatusItemState &state) override;
    [[nodiscard]] StatusItemCondition condition() const override;

    /// Whether there is a panel that shows it.
    [[nodiscard]] bool isHosted() const { return m_isHosted; }

Q_SIGNALS:
    void hostedChanged();

private Q_SLOTS:
    void registerItem();
    void askForHosts();

private:
    class Item;

    void start();
    void makeItem();
    void dropItem();
    void meetWatcher();
    void takeProcessId(const QDBusMessage &answer);
    void takeHosts(const QDBusMessage &answer);
    void takeRegistration(const QDBusMessage &answer);
    void ask(QDBusMessage call, void (SniStatusItemHost::*answered)(const QDBusMessage &));
    void setHosted(bool isHosted);

    QDBusConnection m_bus;
    /// The item's own: panels know an item by its connection, and forget it when that closes.
    QDBusConnection m_itemBus;
    int m_itemCount = 0;
    const Appearance &m_appearance;
    QDBusServiceWatcher m_watchers;
    std::unique_ptr<QTemporaryDir> m_folder;
    StatusItemState m_state;
    PanelHabits m_habits;
    QString m_panel; ///< the watcher's process
    std::unique_ptr<Item> m_item;
    std::unique_ptr<StatusItemMenu> m_menu;
    bool m_isHosted = false;
};

} // namespace kestrel
