#include "settings/SettingsWindow.h"
#include "platform/Screens.h"
#include "ui/QuickScene.h"
#include "ui/Symbols.h"
#include <QCoreApplication>
#include <QPainter>
#include <QPixmap>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Settings();

namespace kestrel {

namespace {

// The linker drops what nobody names, and with it the registration of the module's types.
[[gnu::used]] void (*const volatile keepModule)() = &qml_register_types_Kestrel_Settings;

/// What a window manager's title bar and shadow take.
constexpr QSize decoration(16, 56);

QIcon applicationIcon()
{
    QIcon icon;
    QSvgRenderer renderer(applicationIconSvg());
    for (const int side : { 16, 24, 32, 48, 64, 128 }) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

SettingsWindow::SettingsWindow(QuickScene &scene, Screens &screens, SettingsModel &model)
    : m_scene(scene)
    , m_screens(screens)
    , m_model(model)
{
}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::show(std::optional<SettingsModel::Tab> tab)
{
    if (!m_screens.mainFrame())
        return; // no screen, or no display at all, where no window may be made
    if (tab)
        m_model.setTab(*tab);
    if (!m_view && !makeView())
        return;
    m_view->show();
    m_view->raise();
    m_view->requestActivate();
}

void SettingsWindow::close()
{
    if (!m_view)
        return;
    QQuickView *view = m_view.release();
    view->removeEventFilter(this);
    view->hide();
    view->deleteLater(); // not now: it may be one of its own buttons that asks
}

bool SettingsWindow::isShown() const
{
    return m_view && m_view->isVisible();
}

void SettingsWindow::retranslate()
{
    m_model.retranslate();
    if (!m_view)
        return;
    m_view->setTitle(qtTrId("settings.window.title"));
    m_view->engine()->retranslate();
}

bool SettingsWindow::makeView()
{
    m_view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Settings/SettingsView.qml"_s),
                              { { u"settings"_s, QVariant::fromValue(&m_model) } });
    if (!m_view)
        return false;
    m_view->setFlags(Qt::Window);
    m_view->setTitle(qtTrId("settings.window.title"));
    if (m_icon.isNull())
        m_icon = applicationIcon();
    m_view->setIcon(m_icon);
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    QQuickItem *root = m_view->rootObject();
    connect(root, &QQuickItem::implicitHeightChanged, this, &SettingsWindow::fit);
    connect(root, &QQuickItem::implicitWidthChanged, this, &SettingsWindow::fit);
    fit();
    const QRect frame = m_screens.mainVisibleFrame().value_or(QRect(0, 0, 1920, 1080));
    m_view->setPosition(frame.center() - QRect(QPoint(), m_view->size()).center());
    m_view->installEventFilter(this);
    root->forceActiveFocus(Qt::ActiveWindowFocusReason);
    return true;
}

void SettingsWindow::fit()
{
    if (!m_view)
        return;
    const QRect frame =
        m_screens.visibleFrameAt(m_view->geometry().center()).value_or(QRect(0, 0, 1920, 1080));
    const QQuickItem &root = *m_view->rootObject();
    const QSize wanted(static_cast<int>(std::ceil(root.implicitWidth())),
                       static_cast<int>(std::ceil(root.implicitHeight())));
    const QSize size = wanted.boundedTo(frame.size() - decoration);
    m_view->setMinimumSize(size);
    m_view->resize(size);
    if (!m_view->isVisible())
        return;
    const QRect decorated = m_view->frameGeometry();
    const QPoint overhang(std::max(0, decorated.right() - frame.right()),
                          std::max(0, decorated.bottom() - frame.bottom()));
    if (!overhang.isNull())
        m_view->setPosition(m_view->position() - overhang);
}

bool SettingsWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_view.get() && event->type() == QEvent::Close) {
        close();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestrel
