#pragma once
#include <QQmlEngine>
#include <QQuickView>
#include <QUrl>
#include <QVariantMap>
#include <memory>

namespace kestrel {

/// Makes the windows that QML draws: one engine and the software renderer for all of them, made with the
/// first one and kept, since neither gives its memory back. Outlives its views. Main thread only.
class QuickScene final
{
public:
    QuickScene();
    ~QuickScene();
    QuickScene(const QuickScene &) = delete;
    QuickScene &operator=(const QuickScene &) = delete;

    /// Does in advance what the first window would have to wait for and what costs little memory. For a quiet
    /// moment, on a desktop with a screen; some 20 ms.
    void prepare();

    /// A hidden, see-through window that is always as large as the implicit size of its root item, which is
    /// `source` with `properties` set. Nothing, and a line in the log, when the file does not load.
    [[nodiscard]] std::unique_ptr<QQuickView> makeView(const QUrl &source, const QVariantMap &properties);

private:
    std::unique_ptr<QQmlEngine> m_engine;
};

} // namespace kestrel
