#pragma once
#include "settings/SettingsModel.h"
#include <QIcon>
#include <QObject>
#include <memory>
#include <optional>

class QQuickView;

namespace kestrel {

class QuickScene;
class Screens;

/// The settings' window: an ordinary one, with a title and a place in the task bar. As high as the tab that
/// it shows, where the screen leaves room for that, and never smaller. Made when it is shown and gone when it
/// is closed. Owned by app/; what it is given outlives it. Main thread only.
class SettingsWindow final : public QObject
{
    Q_OBJECT
public:
    SettingsWindow(QuickScene &scene, Screens &screens, SettingsModel &model);
    ~SettingsWindow() override;

    /// In front, with the focus; at the tab where it was, unless one is named.
    void show(std::optional<SettingsModel::Tab> tab = {});
    void close();
    [[nodiscard]] bool isShown() const;
    /// The language or the locale is another one.
    void retranslate();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool makeView();
    /// Brings the size in line with the content, and the window back onto its screen.
    void fit();

    QuickScene &m_scene;
    Screens &m_screens;
    SettingsModel &m_model;
    std::unique_ptr<QQuickView> m_view;
    QIcon m_icon; ///< one for all windows, since Qt caches the pixmaps of every icon
};

} // namespace kestrel
