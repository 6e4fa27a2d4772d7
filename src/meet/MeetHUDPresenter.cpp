#include "meet/MeetHUDPresenter.h"
#include "meet/MeetHUDContent.h"
#include "platform/FloatingWindows.h"
#include "platform/Screens.h"
#include "ui/QuickScene.h"
#include "ui/RoundedRegion.h"
#include "ui/Theme.h"
#include <QAccessible>
#include <QQuickItem>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Meet();

namespace kestrel {

namespace {

// The linker drops what nobody names, and with it the registration of the module's types.
[[gnu::used]] void (*const volatile keepModule)() = &qml_register_types_Kestrel_Meet;

} // namespace

MeetHUDPresenter::MeetHUDPresenter(QuickScene &scene, FloatingWindows &windows, const Screens &screens,
                                   const Theme &theme, MeetHUDTimes times)
    : m_scene(scene)
    , m_windows(windows)
    , m_screens(screens)
    , m_theme(theme)
    , m_times(times)
{
    m_hideTask.setSingleShot(true);
    connect(&m_hideTask, &QTimer::timeout, this, &MeetHUDPresenter::beginToHide);
    connect(&m_fade, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { setOpacity(value.toReal()); });
    connect(&m_fade, &QVariantAnimation::finished, this, [this] {
        if (m_fade.endValue().toReal() == 0)
            hide();
    });
    connect(&theme, &Theme::changed, this, &MeetHUDPresenter::shape);
}

MeetHUDPresenter::~MeetHUDPresenter() = default;

void MeetHUDPresenter::show(const QString &symbol, const QString &emoji)
{
    const auto frame = m_screens.mainVisibleFrame();
    if (!frame || !m_windows.canPlaceWindows())
        return;
    m_hideTask.stop();
    m_fade.stop();
    m_symbol = symbol;
    m_emoji = symbol.isEmpty() ? emoji : QString();
    Q_EMIT contentChanged();
    if (!m_view) {
        if (!makeView())
            return;
    } else if (QAccessible::isActive()) {
        // by itself Qt has a screen reader say what is shown for the first time alone
        QAccessibleEvent shownAgain(m_view->rootObject(), QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&shownAgain);
    }
    m_view->setTitle(text());
    const QSize size = m_view->rootObject()->size().toSize();
    m_view->setPosition(frame->x() + (frame->width() - size.width()) / 2,
                        frame->y() + (frame->height() - size.height()) / 2);
    shape();
    setOpacity(fades() ? 0 : 1);
    m_view->show();
    m_windows.shown(*m_view, FloatingWindows::Kind::Hud);
    if (fades())
        fadeTo(1, m_times.fadeIn);
    m_hideTask.start(m_times.hideAfter);
}

bool MeetHUDPresenter::isShown() const
{
    return m_view && m_view->isVisible();
}

QString MeetHUDPresenter::text() const
{
    return m_symbol.isEmpty() ? m_emoji : hudSymbolText(m_symbol);
}

bool MeetHUDPresenter::makeView()
{
    m_view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Meet/MeetHUDView.qml"_s),
                              { { u"hud"_s, QVariant::fromValue(this) } });
    if (!m_view)
        return false;
    m_windows.prepare(*m_view, FloatingWindows::Kind::Hud);
    return true;
}

void MeetHUDPresenter::shape()
{
    if (!m_view)
        return;
    const QQuickItem &root = *m_view->rootObject();
    m_windows.setInputRegion(
        *m_view, roundedRegion(QRect(QPoint(), root.size().toSize()), root.property("radius").toInt()));
}

bool MeetHUDPresenter::fades() const
{
    // without a compositor nothing lies behind a window that fades but black
    return m_theme.motionAllowed() && m_theme.isComposited();
}

void MeetHUDPresenter::fadeTo(qreal opacity, std::chrono::milliseconds duration)
{
    m_fade.setStartValue(m_opacity);
    m_fade.setEndValue(opacity);
    m_fade.setDuration(int(duration.count()));
    m_fade.start();
}

void MeetHUDPresenter::setOpacity(qreal opacity)
{
    m_opacity = opacity;
    Q_EMIT opacityChanged();
}

void MeetHUDPresenter::beginToHide()
{
    if (fades())
        fadeTo(0, m_times.fadeOut);
    else
        hide();
}

void MeetHUDPresenter::hide()
{
    m_view->hide();
    Q_EMIT hidden();
}

} // namespace kestrel
