#include "ui/QuickModalNotice.h"
#include "platform/FloatingWindows.h"
#include "platform/Screens.h"
#include "ui/QuickScene.h"
#include "ui/RoundedRegion.h"
#include "ui/Theme.h"
#include <QKeyEvent>
#include <QQuickItem>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

/// Stands in the queue until its turn has come and a button was pressed.
struct QuickModalNotice::Answered
{
    QuickModalNotice &notice;
    Question &question;

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiting) const
    {
        question.waiting = waiting;
        notice.m_questions.push_back(&question);
        if (notice.m_questions.size() == 1)
            notice.showNext();
    }
    [[nodiscard]] qsizetype await_resume() const noexcept { return question.answer; }
};

QuickModalNotice::QuickModalNotice(QuickScene &scene, FloatingWindows &windows, const Screens &screens,
                                   const Theme &theme)
    : m_scene(scene)
    , m_windows(windows)
    , m_screens(screens)
    , m_theme(theme)
{
    connect(&screens, &Screens::changed, this, &QuickModalNotice::fitToScreen);
    connect(&theme, &Theme::changed, this, &QuickModalNotice::shape);
}

QuickModalNotice::~QuickModalNotice()
{
    m_view.reset();
    for (const Question *question : std::exchange(m_questions, {}))
        question->waiting.resume();
}

QCoro::Task<qsizetype> QuickModalNotice::ask(Message message)
{
    const qsizetype last = message.buttons.size() - 1;
    if (!m_screens.mainVisibleFrame())
        co_return last;
    Question question { message, last, {} };
    co_return co_await Answered { *this, question };
}

QString QuickModalNotice::title() const
{
    return m_questions.empty() ? QString() : m_questions.front()->message.title;
}

QString QuickModalNotice::text() const
{
    return m_questions.empty() ? QString() : m_questions.front()->message.text;
}

QStringList QuickModalNotice::buttons() const
{
    return m_questions.empty() ? QStringList() : m_questions.front()->message.buttons;
}

int QuickModalNotice::maximumHeight() const
{
    return m_screens.mainVisibleFrame().value_or(QRect(0, 0, 800, 600)).height();
}

void QuickModalNotice::choose(int button)
{
    // pressed inside the window that goes now
    if (m_questions.empty() || std::exchange(m_isAnswered, true))
        return;
    m_questions.front()->answer = button;
    QMetaObject::invokeMethod(this, &QuickModalNotice::finish, Qt::QueuedConnection);
}

void QuickModalNotice::close()
{
    choose(int(buttons().size()) - 1);
}

void QuickModalNotice::drag()
{
    m_view->startSystemMove();
}

void QuickModalNotice::showNext()
{
    m_isAnswered = false;
    Q_EMIT messageChanged();
    if (!makeView()) {
        close();
        return;
    }
    m_view->show();
    m_windows.shown(*m_view, FloatingWindows::Kind::Popover);
    m_view->requestActivate();
}

bool QuickModalNotice::makeView()
{
    m_view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Ui/NoticeView.qml"_s),
                              { { u"notice"_s, QVariant::fromValue(this) } });
    if (!m_view)
        return false;
    m_view->setTitle(title());
    m_view->installEventFilter(this);
    m_windows.prepare(*m_view, FloatingWindows::Kind::Popover);
    connect(m_view.get(), &QWindow::heightChanged, this, &QuickModalNotice::fitToScreen);
    fitToScreen();
    return true;
}

void QuickModalNotice::fitToScreen()
{
    if (!m_view)
        return;
    if (const auto frame = m_screens.mainVisibleFrame()) {
        const QRect body = m_view->rootObject()->property("body").toRectF().toRect();
        m_view->setPosition(frame->center() - body.center());
    }
    shape();
}

void QuickModalNotice::shape()
{
    if (!m_view)
        return;
    const QQuickItem &root = *m_view->rootObject();
    const QRegion body =
        roundedRegion(root.property("body").toRectF().toRect(), root.property("radius").toInt());
    m_windows.setInputRegion(*m_view, body);
    m_windows.setBlurRegion(*m_view, m_theme.glassAllowed() ? body : QRegion());
}

void QuickModalNotice::finish()
{
    m_view.reset();
    const Question *answered = m_questions.front();
    m_questions.pop_front();
    if (!m_questions.empty())
        showNext();
    // last: whoever asked may end everything now
    answered->waiting.resume();
}

bool QuickModalNotice::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_view.get())
        return QObject::eventFilter(watched, event);
    if (event->type() == QEvent::Close) {
        close();
    } else if (event->type() == QEvent::KeyPress
               && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        close();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestrel
