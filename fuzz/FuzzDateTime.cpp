// Parses any text as a date-time, and whatever parses is held against Qt's own reading of it.
#include "Require.h"
#include "base/Instant.h"
#include <QDateTime>
#include <QRegularExpression>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

/// The same date-time as Qt reads it, which rounds to milliseconds where we cut and takes one fraction only.
qint64 accordingToQt(const QString &text)
{
    const qsizetype point = text.indexOf(u'.');
    const qsizetype zone = text.indexOf(QRegularExpression(u"[Z+-]"_s), u"yyyy-mm-ddThh:mm:ss"_s.size());
    const QString whole = point < 0 ? text : text.first(point) + text.sliced(zone);
    const QString digits = point < 0 ? QString() : text.sliced(point + 1, zone - point - 1);
    const auto read = QDateTime::fromString(whole, Qt::ISODate);
    require(read.isValid());
    return read.toMSecsSinceEpoch() + digits.leftJustified(3, u'0', true).toInt();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const auto text = QString::fromUtf8(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const auto instant = parseInternetDateTime(text);
    if (!instant)
        return 0;
    const qint64 milliseconds = instant->time_since_epoch().count();
    // Qt has no year 0, and writes years of four digits alone
    const int year = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC).date().year();
    if (year < 1 || year > 9999 || text.startsWith(u"0000"))
        return 0;
    require(milliseconds == accordingToQt(text));
    require(parseInternetDateTime(toInternetDateTimeWithMilliseconds(*instant)) == instant);
    const auto cut = parseInternetDateTime(toInternetDateTime(*instant));
    require(cut && *cut <= *instant && *instant - *cut < std::chrono::seconds(1));
    return 0;
}
