#include "model/DisplayText.h"
#include <QTextBoundaryFinder>
#include <algorithm>
#include <array>

namespace kestrel {

namespace {

struct CodePointRange
{
    char32_t first;
    char32_t last;
};

// Default_Ignorable_Code_Point of DerivedCoreProperties.txt; the same since Unicode 14.
constexpr std::array defaultIgnorables {
    CodePointRange { 0x00AD, 0x00AD },   CodePointRange { 0x034F, 0x034F },
    CodePointRange { 0x061C, 0x061C },   CodePointRange { 0x115F, 0x1160 },
    CodePointRange { 0x17B4, 0x17B5 },   CodePointRange { 0x180B, 0x180F },
    CodePointRange { 0x200B, 0x200F },   CodePointRange { 0x202A, 0x202E },
    CodePointRange { 0x2060, 0x206F },   CodePointRange { 0x3164, 0x3164 },
    CodePointRange { 0xFE00, 0xFE0F },   CodePointRange { 0xFEFF, 0xFEFF },
    CodePointRange { 0xFFA0, 0xFFA0 },   CodePointRange { 0xFFF0, 0xFFF8 },
    CodePointRange { 0x1BCA0, 0x1BCA3 }, CodePointRange { 0x1D173, 0x1D17A },
    CodePointRange { 0xE0000, 0xE0FFF },
};

bool isInvisible(char32_t c)
{
    if (c < 0x20)
        return c != U'\t';
    const auto *range = std::lower_bound(defaultIgnorables.begin(), defaultIgnorables.end(), c,
                                         [](CodePointRange r, char32_t value) { return r.last < value; });
    return range != defaultIgnorables.end() && range->first <= c;
}

/// False for nearly all that people write in Latin letters, without a look into the table.
bool mayBeInvisible(QChar unit)
{
    const char16_t c = unit.unicode();
    return (c < 0x20 && c != u'\t') || c == 0x00AD || c >= 0x034F;
}

} // namespace

QString stripInvisibles(const QString &text)
{
    const QChar *const suspect = std::find_if(text.begin(), text.end(), mayBeInvisible);
    if (suspect == text.end())
        return text;

    QString visible(text.size(), Qt::Uninitialized);
    QChar *out = std::copy(text.begin(), suspect, visible.data());
    for (const QChar *at = suspect; at != text.end(); ++at) {
        const bool isPair = at->isHighSurrogate() && at + 1 != text.end() && at[1].isLowSurrogate();
        // half a pair alone is no character at all, and stays as it came
        const char32_t c = isPair ? QChar::surrogateToUcs4(at[0], at[1]) : char32_t(at->unicode());
        if (!isInvisible(c)) {
            *out++ = at[0];
            if (isPair)
                *out++ = at[1];
        }
        if (isPair)
            ++at;
    }
    visible.truncate(out - visible.constData());
    return visible;
}

QString firstCharacters(const QString &text, qsizetype limit)
{
    if (text.size() <= limit)
        return text;
    // The finder analyses all it is given, so it gets a window, and a wider one only if the limit is not
    // reached inside. The window's end is no evidence of a boundary, nor is the place before it (half a
    // surrogate pair).
    for (qsizetype window = 4 * limit;; window *= 4) {
        window = std::min(window, text.size());
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.constData(), window);
        qsizetype end = 0;
        for (qsizetype count = 0; count < limit && end < window; ++count)
            end = finder.toNextBoundary();
        if (window == text.size() || end + 1 < window)
            return text.left(end);
    }
}

} // namespace kestrel
