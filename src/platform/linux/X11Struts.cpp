#include "platform/linux/X11Struts.h"
#include "platform/linux/X11.h"
#include <algorithm>
#include <array>

namespace kestrel {

namespace {

/// The order of _NET_WM_STRUT_PARTIAL: four depths, then four pairs of ends.
constexpr std::array edges { X11Strut::Edge::Left, X11Strut::Edge::Right, X11Strut::Edge::Top,
                             X11Strut::Edge::Bottom };

bool isUpright(X11Strut::Edge edge)
{
    return edge == X11Strut::Edge::Left || edge == X11Strut::Edge::Right;
}

} // namespace

QRect withoutStruts(QRect monitor, QSize xScreen, const QList<X11Strut> &struts)
{
    QRect left = monitor;
    for (const X11Strut &strut : struts) {
        const bool upright = isUpright(strut.edge);
        const int first = upright ? monitor.top() : monitor.left();
        const int last = upright ? monitor.bottom() : monitor.right();
        if (strut.depth <= 0 || strut.to < first || strut.from > last)
            continue;
        // the innermost pixel that the strut takes
        switch (strut.edge) {
        case X11Strut::Edge::Left:
            if (strut.depth <= monitor.right())
                left.setLeft(std::max(left.left(), strut.depth));
            break;
        case X11Strut::Edge::Right:
            if (const int inner = xScreen.width() - strut.depth; inner > monitor.left())
                left.setRight(std::min(left.right(), inner - 1));
            break;
        case X11Strut::Edge::Top:
            if (strut.depth <= monitor.bottom())
                left.setTop(std::max(left.top(), strut.depth));
            break;
        case X11Strut::Edge::Bottom:
            if (const int inner = xScreen.height() - strut.depth; inner > monitor.top())
                left.setBottom(std::min(left.bottom(), inner - 1));
            break;
        }
    }
    return left.isValid() ? left : monitor;
}

QList<X11Strut> readStruts(QSize xScreen)
{
    struct Asked
    {
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };
    std::vector<Asked> asked;
    for (const xcb_window_t window : x11::values(x11::root(), x11::atom("_NET_CLIENT_LIST"))) {
        asked.push_back({ x11::askValues(window, x11::atom("_NET_WM_STRUT_PARTIAL")),
                          x11::askValues(window, x11::atom("_NET_WM_STRUT")) });
    }
    QList<X11Strut> struts;
    for (const Asked &window : asked) {
        const std::vector<quint32> partial = x11::values(window.partial);
        const std::vector<quint32> whole = x11::values(window.whole);
        const bool isPartial = partial.size() >= 12;
        if (!isPartial && whole.size() < 4)
            continue;
        for (size_t side = 0; side < edges.size(); ++side) {
            const int depth = int((isPartial ? partial : whole)[side]);
            const int length = isUpright(edges[side]) ? xScreen.height() : xScreen.width();
            const int from = isPartial ? int(partial[4 + 2 * side]) : 0;
            const int to = isPartial ? int(partial[5 + 2 * side]) : length - 1;
            if (depth > 0)
                struts.append({ edges[side], depth, from, to });
        }
    }
    return struts;
}

} // namespace kestrel
