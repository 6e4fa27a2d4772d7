#pragma once
#include "platform/ModalNotice.h"
#include <QObject>
#include <QQuickView>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>
#include <coroutine>
#include <deque>
#include <memory>

namespace kestrel {

class FloatingWindows;
class QuickScene;
class Screens;
class Theme;

/// Notices in the middle of the main screen, which take the keyboard: Enter presses the default button,
/// Escape the last one. Those still unanswered when this goes are answered with their last button. Everything
/// it is given outlives it. Main thread only.
class QuickModalNotice final : public QObject, public ModalNotice
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("app/ makes it")
    Q_PROPERTY(QString title READ title NOTIFY messageChanged)
    Q_PROPERTY(QString text READ text NOTIFY messageChanged)
    Q_PROPERTY(QStringList buttons READ buttons NOTIFY messageChanged)
    Q_PROPERTY(int maximumHeight READ maximumHeight NOTIFY messageChanged)
public:
    QuickModalNotice(QuickScene &scene, FloatingWindows &windows, const Screens &screens, const Theme &theme);
    ~QuickModalNotice() override;

    [[nodiscard]] QCoro::Task<qsizetype> ask(Message message) override;

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString text() const;
    [[nodiscard]] QStringList buttons() const;
    /// Of the window; a text that needs more can be scrolled.
    [[nodiscard]] int maximumHeight() const;
    /// The window, while there is one.
    [[nodiscard]] QQuickView *view() const { return m_view.get(); }

    Q_INVOKABLE void choose(int button);
    /// As the last button.
    Q_INVOKABLE void close();
    /// The person drags the notice by its background.
    Q_INVOKABLE void drag();

Q_SIGNALS:
    void messageChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Question
    {
        Message message;
        qsizetype answer;
        std::coroutine_handle<> waiting;
    };
    struct Answered;

    void showNext();
    [[nodiscard]] bool makeView();
    void fitToScreen();
    void shape();
    void finish();

    QuickScene &m_scene;
    FloatingWindows &m_windows;
    const Screens &m_screens;
    const Theme &m_theme;
    std::deque<Question *> m_questions; ///< the first one is on screen
    std::unique_ptr<QQuickView> m_view;
    bool m_isAnswered = false;
};

} // namespace kestrel
