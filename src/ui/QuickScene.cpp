#include "ui/QuickScene.h"
#include "base/Log.h"
#include "ui/Theme.h"
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QQuickItem>
#include <QSGRendererInterface>
#include <QTextLayout>
#include <limits>
#include <tuple>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Ui();

namespace kestrel {

namespace {

// The linker drops what nobody names, and with it the registration of the module's types.
[[gnu::used]] void (*const keepModule)() = &qml_register_types_Kestrel_Ui;

struct Face
{
    int size;
    QFont::Weight weight;
};

/// What agenda and cards are written in. (Metrics.qml names the sizes.)
constexpr Face faces[] = { { 8, QFont::DemiBold },  { 11, QFont::Normal }, { 11, QFont::DemiBold },
                           { 13, QFont::Normal },   { 13, QFont::Medium }, { 13, QFont::DemiBold },
                           { 17, QFont::DemiBold }, { 20, QFont::Bold } };

/// The first letters in a face take a millisecond, and the very first read the whole collection.
void readFaces(const QString &family)
{
    QImage ground(800, 32, QImage::Format_ARGB32_Premultiplied);
    ground.fill(Qt::white);
    QPainter painter(&ground);
    std::ignore = QFontMetricsF(QFont()).height(); // a text has this face until it is given another
    for (const Face &face : faces) {
        QFont font; // the rest of it is the desktop's, as in windows
        font.setFamily(family);
        font.setPixelSize(face.size);
        font.setWeight(face.weight);
        std::ignore = QFontMetricsF(font).height(); // for figures and dots, which belong to no script
        QTextLayout layout(u"ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz 0123456789 .,:–·"_s, font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        layout.draw(&painter, {});
    }
}

/// An engine whose scripts are interpreted. Qt 6.4 compiles what was called three times; its code leaves a
/// bare number where the garbage collector looks for a value, and the collector crashes on it. Ours are
/// short: it costs nothing.
std::unique_ptr<QQmlEngine> makeEngine()
{
    constexpr const char *Threshold = "QV4_JIT_CALL_THRESHOLD";
    const bool isOurs = !qEnvironmentVariableIsSet(Threshold);
    if (isOurs)
        qputenv(Threshold, QByteArray::number(std::numeric_limits<int>::max()));
    auto engine = std::make_unique<QQmlEngine>();
    if (isOurs)
        qunsetenv(Threshold); // browsers that we start inherit what stays
    return engine;
}

} // namespace

QuickScene::QuickScene() = default;
QuickScene::~QuickScene() = default;

void QuickScene::prepare()
{
    readFaces(Theme::roundedFamily());
}

std::unique_ptr<QQuickView> QuickScene::makeView(const QUrl &source, const QVariantMap &properties)
{
    if (!m_engine) {
        // once a process: Qt complains of every further call
        static const bool chosen = (QQuickWindow::setGraphicsApi(QSGRendererInterface::Software), true);
        Q_UNUSED(chosen)
        m_engine = makeEngine();
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
