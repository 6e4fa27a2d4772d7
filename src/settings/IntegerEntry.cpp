#include "settings/IntegerEntry.h"
#include <QCoreApplication>
#include <optional>
#include <utility>

namespace kestrel {

namespace {

std::optional<qint64> numberOf(const QString &typed, IntegerEntry::Range range)
{
    bool isNumber = false;
    const qint64 number = typed.trimmed().toLongLong(&isNumber);
    if (!isNumber || number < range.smallest || number > range.largest)
        return {};
    return number;
}

} // namespace

IntegerEntry::IntegerEntry(Range range, std::function<qint64()> stored, std::function<void(qint64)> store)
    : m_range(range)
    , m_stored(std::move(stored))
    , m_store(std::move(store))
{
}

QString IntegerEntry::text() const
{
    return QString::number(m_stored());
}

QString IntegerEntry::error() const
{
    return m_isRefused ? qtTrId("settings.integer.range %lld %lld").arg(m_range.smallest).arg(m_range.largest)
                       : QString();
}

void IntegerEntry::check(const QString &typed)
{
    setRefused(!numberOf(typed, m_range));
}

void IntegerEntry::enter(const QString &typed)
{
    const auto number = numberOf(typed, m_range);
    if (number && *number != m_stored())
        m_store(*number);
    setRefused(!number);
}

void IntegerEntry::discard()
{
    setRefused(false);
}

void IntegerEntry::setRefused(bool refused)
{
    m_isRefused = refused;
    Q_EMIT changed();
}

} // namespace kestrel
