#pragma once
#include "menubar/PopoverPlace.h"
#include <QElapsedTimer>
#include <QObject>
#include <QUrl>
#include <memory>
#include <optional>

class QQuickView;

namespace kestrel {

class AgendaModel;
class FloatingWindows;
class QuickScene;
class Screens;

/// What the agenda shows while there is no account: a QML file that takes `required property QtObject model`.
struct Onboarding
{
    QUrl source;
    QObject *model = nullptr;
};

/// The agenda's window. It is made when it is first shown, and kept. Goes when something else gets the focus
/// or is pressed, and on Escape. Owned by app/; what it is given outlives it. Main thread only.
class AgendaPopover final : public QObject
{
    Q_OBJECT
public:
    AgendaPopover(QuickScene &scene, FloatingWindows &windows, Screens &screens, AgendaModel &model,
                  Onboarding onboarding);
    ~AgendaPopover() override;

    /// For a click on the status item; `hint` is where the panel says it was. A click that has already closed
    /// the agenda, by taking the focus from it, does not open it again.
    void toggle(QPoint hint);
    /// Where it was last, else in the corner nearest to the panel.
    void show();
    void hide();
    [[nodiscard]] bool isShown() const;
    /// The language or the locale is another one.
    void retranslate();

Q_SIGNALS:
    void shown();
    void hidden();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void open(const PopoverPlace &place);
    bool makeView();
    void hideForClickElsewhere();
    void fitToScreen();
    void moveIntoPlace();
    void shape();

    QuickScene &m_scene;
    FloatingWindows &m_windows;
    Screens &m_screens;
    AgendaModel &m_model;
    Onboarding m_onboarding;
    std::unique_ptr<QQuickView> m_view;
    std::optional<PopoverPlace> m_place;
    QElapsedTimer m_closedByClick;
    bool m_wasActive = false;
};

} // namespace kestrel
