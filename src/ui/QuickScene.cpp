#include "ui/QuickScene.h"
#include "base/Log.h"
#include <QQuickItem>
#include <QSGRendererInterface>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Ui();

namespace kestrel {

namespace {

// The linker drops what nobody names, and with it the registration of the module's types.
[[gnu::used]] void (*const keepModule)() = &qml_register_types_Kestrel_Ui;

} // namespace

QuickScene::QuickScene() = default;
QuickScene::~QuickScene() = default;

std::unique_ptr<QQuickView> QuickScene::makeView(const QUrl &source, const QVariantMap &properties)
{
    if (!m_engine) {
        // once a process: Qt complains of every further call
        static const bool chosen = (QQuickWindow::setGraphicsApi(QSGRendererInterface::Software), true);
        Q_UNUSED(chosen)
        m_engine = std::make_unique<QQmlEngine>();
        m_engine->addImportPath(u":/qt/qml"_s);
    }
    auto view = std::make_unique<QQuickView>(m_engine.get(), nullptr);
    view->setColor(Qt::transparent);
    view->setInitialProperties(properties);
    view->setSource(source);
    if (view->status() != QQuickView::Ready) {
        for (const QQmlError &error : view->errors())
            qCCritical(lcApp).noquote() << "A window cannot be drawn:" << error.toString();
        return nullptr;
    }
    return view;
}

} // namespace kestrel
