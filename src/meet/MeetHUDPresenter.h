#pragma once
#include <QObject>
#include <QQuickView>
#include <QString>
#include <QTimer>
#include <QVariantAnimation>
#include <QtQml/qqmlregistration.h>
#include <chrono>
#include <memory>

namespace kestrel {

class FloatingWindows;
class QuickScene;
class Screens;
class Theme;

struct MeetHUDTimes
{
    std::chrono::milliseconds fadeIn { 120 };
    std::chrono::milliseconds hideAfter { 1200 }; ///< from the moment it is shown
    std::chrono::milliseconds fadeOut { 280 };
};

/// Flashes what was done in the middle of the main screen: a dark square that takes neither focus nor clicks.
/// One window, made when it is first needed and kept. Shows nothing where a client cannot place its windows.
/// Owned by app/; everything it is given outlives it. Main thread only.
class MeetHUDPresenter final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("app/ makes it")
    Q_PROPERTY(QString symbol READ symbol NOTIFY contentChanged)
    Q_PROPERTY(QString emoji READ emoji NOTIFY contentChanged)
    Q_PROPERTY(QString text READ text NOTIFY contentChanged)
    Q_PROPERTY(qreal opacity READ opacity NOTIFY opacityChanged)
public:
    MeetHUDPresenter(QuickScene &scene, FloatingWindows &windows, const Screens &screens, const Theme &theme,
                     MeetHUDTimes times = {});
    ~MeetHUDPresenter() override;

    /// The symbol where it has a name, else the emoji. Takes the place of what is shown.
    void show(const QString &symbol, const QString &emoji);

    [[nodiscard]] bool isShown() const;
    [[nodiscard]] const QString &symbol() const { return m_symbol; }
    [[nodiscard]] const QString &emoji() const { return m_emoji; }
    /// The same in words, or the emoji itself.
    [[nodiscard]] QString text() const;
    [[nodiscard]] qreal opacity() const { return m_opacity; }

Q_SIGNALS:
    void contentChanged();
    void opacityChanged();
    void hidden();

private:
    [[nodiscard]] bool makeView();
    void shape();
    [[nodiscard]] bool fades() const;
    void fadeTo(qreal opacity, std::chrono::milliseconds duration);
    void setOpacity(qreal opacity);
    void beginToHide();
    void hide();

    QuickScene &m_scene;
    FloatingWindows &m_windows;
    const Screens &m_screens;
    const Theme &m_theme;
    MeetHUDTimes m_times;
    std::unique_ptr<QQuickView> m_view;
    QVariantAnimation m_fade;
    QTimer m_hideTask;
    QString m_symbol;
    QString m_emoji;
    qreal m_opacity = 0;
};

} // namespace kestrel
