#include "alerts/AlertCard.h"
#include "platform/FloatingWindows.h"
#include "ui/QuickScene.h"
#include "ui/RoundedRegion.h"
#include <QMouseEvent>
#include <QQuickItem>
#include <algorithm>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Alerts();

namespace kestrel {

namespace {

// The linker drops what nobody names, and with it the registration of the module's types.
[[gnu::used]] void (*const volatile keepModule)() = &qml_register_types_Kestrel_Alerts;

/// Rows and wrapped texts learn their sizes when they are polished, which a hidden window never does.
void polish(QQuickItem &item)
{
    for (QQuickItem *child : item.childItems())
        polish(*child);
    item.ensurePolished();
}

} // namespace

AlertCard::AlertCard(const Meeting &meeting, MeetingOpener &opener, const Clock &clock, QuickScene &scene,
                     FloatingWindows &floatingWindows, const Theme &theme)
    : m_item(meeting, opener, clock)
    , m_scene(scene)
    , m_floatingWindows(floatingWindows)
    , m_theme(theme)
{
    m_dismissal.setSingleShot(true);
    connect(&m_dismissal, &QTimer::timeout, this, &AlertCard::dismissed);
    connect(&m_item, &MeetingItem::joined, this, &AlertCard::dismissed);
    connect(&theme, &Theme::changed, this, &AlertCard::shape);
}

AlertCard::~AlertCard() = default;

bool AlertCard::build()
{
    if (m_view)
        return true;
    m_view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Alerts/AlertView.qml"_s),
                              { { u"card"_s, QVariant::fromValue(this) } });
    if (!m_view)
        return false;
    m_view->setTitle(m_item.title());
    m_view->installEventFilter(this);
    QQuickItem &root = *m_view->rootObject();
    constexpr int enoughRounds = 4; // a text's width decides its height, and that its column's
    QSizeF measured;
    for (int round = 0; round < enoughRounds && measured != root.size(); ++round) {
        measured = root.size();
        polish(root);
    }
    m_size = root.size().toSize();
    m_floatingWindows.prepare(*m_view, FloatingWindows::Kind::Card);
    return true;
}

QRect AlertCard::bodyAt(QPoint origin) const
{
    return m_view ? m_view->rootObject()->property("body").toRectF().toRect().translated(origin) : QRect();
}

QPoint AlertCard::position() const
{
    return m_view ? m_view->position() : QPoint();
}

void AlertCard::showAt(QPoint origin)
{
    m_view->setPosition(origin);
    if (m_isShown)
        return;
    m_view->create();
    shape();
    m_isShown = true;
    m_isDrawn = false;
    connect(
        m_view.get(), &QQuickWindow::frameSwapped, this,
        [this] {
            m_isDrawn = true;
            Q_EMIT drawn();
        },
        Qt::SingleShotConnection);
    Q_EMIT isShownChanged();
    m_view->show();
    m_floatingWindows.shown(*m_view, FloatingWindows::Kind::Card);
}

void AlertCard::moveTo(QPoint origin)
{
    m_view->setPosition(origin);
}

void AlertCard::hide()
{
    if (!m_isShown)
        return;
    m_isShown = false;
    m_view->hide();
    Q_EMIT isShownChanged();
}

void AlertCard::dismissAfter(std::chrono::seconds delay)
{
    // the preference file may hold any number, a timer no more than some weeks
    if (!m_dismissal.isActive())
        m_dismissal.start(std::min(delay, std::chrono::seconds(std::chrono::hours(24))));
}

void AlertCard::dismiss()
{
    Q_EMIT dismissed();
}

void AlertCard::beginDrag()
{
    m_grip = m_pointer - m_view->position();
}

void AlertCard::drag()
{
    m_view->setPosition(m_pointer - m_grip);
}

bool AlertCard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseMove)
        m_pointer = static_cast<const QMouseEvent *>(event)->globalPosition().toPoint();
    if (event->type() == QEvent::MouseButtonPress)
        m_floatingWindows.takeFocus(*m_view);
    return QObject::eventFilter(watched, event);
}

void AlertCard::shape()
{
    if (!m_view || !m_view->handle())
        return;
    const QRegion body = roundedRegion(bodyAt({}), m_view->rootObject()->property("radius").toInt());
    m_floatingWindows.setInputRegion(*m_view, body);
    m_floatingWindows.setBlurRegion(*m_view, m_theme.glassAllowed() ? body : QRegion());
}

} // namespace kestrel
