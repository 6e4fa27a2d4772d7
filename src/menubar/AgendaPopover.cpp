#include "menubar/AgendaPopover.h"
#include "menubar/AgendaModel.h"
#include "platform/FloatingWindows.h"
#include "platform/Screens.h"
#include "ui/QuickScene.h"
#include "ui/RoundedRegion.h"
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>

using namespace Qt::StringLiterals;

namespace kestrel {

AgendaPopover::AgendaPopover(QuickScene &scene, FloatingWindows &windows, Screens &screens,
                             AgendaModel &model, Onboarding onboarding)
    : m_scene(scene)
    , m_windows(windows)
    , m_screens(screens)
    , m_model(model)
    , m_onboarding(std::move(onboarding))
{
    connect(&screens, &Screens::changed, this, &AgendaPopover::fitToScreen);
    connect(&windows, &FloatingWindows::pressed, this, [this](QPoint position) {
        if (isShown() && !m_view->geometry().contains(position))
            hideForClickElsewhere();
    });
}

AgendaPopover::~AgendaPopover() = default;

void AgendaPopover::toggle(QPoint hint)
{
    if (isShown()) {
        hide();
        return;
    }
    constexpr int sameClick = 300;
    const bool hasJustClosed = m_closedByClick.isValid() && m_closedByClick.elapsed() < sameClick;
    m_closedByClick.invalidate();
    if (hasJustClosed)
        return;
    // panels give coordinates of their own; where windows cannot be placed the pointer is not known either
    const QPoint anchor = m_windows.canPlaceWindows() ? m_screens.pointer() : hint;
    open(PopoverPlace::at(anchor, m_screens.visibleFrameAt(anchor).value_or(QRect(0, 0, 1920, 1080))));
}

void AgendaPopover::show()
{
    if (isShown())
        return;
    if (m_place) {
        const auto frame = m_screens.visibleFrameAt(m_place->anchor);
        open(PopoverPlace::at(m_place->anchor, frame.value_or(m_place->visibleFrame)));
        return;
    }
    const QRect frame = m_screens.mainFrame().value_or(QRect(0, 0, 1920, 1080));
    open(PopoverPlace::inCorner(frame, m_screens.mainVisibleFrame().value_or(frame)));
}

void AgendaPopover::hide()
{
    if (!isShown())
        return;
    m_windows.watchPresses(false);
    m_view->hide();
    m_model.setActive(false);
    Q_EMIT hidden();
}

bool AgendaPopover::isShown() const
{
    return m_view && m_view->isVisible();
}

void AgendaPopover::retranslate()
{
    m_model.retranslate();
    if (m_view)
        m_view->engine()->retranslate();
}

void AgendaPopover::open(const PopoverPlace &place)
{
    if (!m_screens.mainFrame())
        return; // no screen, or no display at all, where no window may be made
    m_place = place;
    m_model.setActive(true);
    if (!m_view && !makeView()) {
        m_model.setActive(false);
        return;
    }
    m_wasActive = false;
    // from the whole, not from the control that had the focus the last time: that would show its ring now
    m_view->rootObject()->forceActiveFocus(Qt::PopupFocusReason);
    fitToScreen();
    m_view->show();
    m_windows.shown(*m_view, FloatingWindows::Kind::Popover);
    m_view->requestActivate();
    m_windows.watchPresses(true);
    Q_EMIT shown();
}

bool AgendaPopover::makeView()
{
    m_view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Menubar/AgendaPopoverView.qml"_s),
                              { { u"agenda"_s, QVariant::fromValue(&m_model) },
                                { u"onboardingSource"_s, m_onboarding.source },
                                { u"onboardingModel"_s, QVariant::fromValue(m_onboarding.model) },
                                { u"maximumHeight"_s, m_place->maximumHeight() } });
    if (!m_view)
        return false;
    m_view->setTitle(u"Kestrel"_s);
    m_windows.prepare(*m_view, FloatingWindows::Kind::Popover);
    m_view->installEventFilter(this);
    connect(m_view.get(), &QWindow::heightChanged, this, &AgendaPopover::moveIntoPlace);
    connect(m_view.get(), &QWindow::activeChanged, this, [this] {
        if (m_view->isActive())
            m_wasActive = true;
        else if (m_wasActive)
            hideForClickElsewhere();
    });
    return true;
}

void AgendaPopover::hideForClickElsewhere()
{
    if (!isShown())
        return;
    m_closedByClick.start();
    hide();
}

void AgendaPopover::fitToScreen()
{
    if (!m_view)
        return;
    if (const auto frame = m_screens.visibleFrameAt(m_place->anchor))
        m_place->visibleFrame = *frame;
    m_view->rootObject()->setProperty("maximumHeight", m_place->maximumHeight());
    moveIntoPlace();
}

void AgendaPopover::moveIntoPlace()
{
    m_view->setPosition(m_place->topLeft(m_view->size()));
    shape();
}

void AgendaPopover::shape()
{
    const int radius = m_view->rootObject()->property("radius").toInt();
    const QRegion rounded = roundedRegion(QRect(QPoint(), m_view->size()), radius);
    const bool isShaped = m_view->rootObject()->property("isShaped").toBool();
    m_windows.setInputRegion(*m_view, rounded);
    m_windows.setBlurRegion(*m_view, isShaped ? QRegion() : rounded);
}

bool AgendaPopover::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_view.get() && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        hide();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestrel
