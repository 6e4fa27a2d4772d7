#include "settings/CalendarChoices.h"

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString primaryAlias = u"primary"_s;

} // namespace

void CalendarChoices::setCalendars(const QList<ProviderCalendar> &calendars)
{
    if (calendars == m_calendars)
        return;
    beginResetModel();
    m_calendars = calendars;
    endResetModel();
}

void CalendarChoices::setChoices(const QStringList &selectedIDs, const QMap<QString, QString> &colorOverrides)
{
    if (selectedIDs == m_selectedIDs && colorOverrides == m_colorOverrides)
        return;
    m_selectedIDs = selectedIDs;
    m_colorOverrides = colorOverrides;
    if (!m_calendars.isEmpty())
        Q_EMIT dataChanged(index(0), index(static_cast<int>(m_calendars.size()) - 1));
}

bool CalendarChoices::isSelected(const ProviderCalendar &calendar) const
{
    if (m_selectedIDs.contains(calendar.id))
        return true;
    return calendar.isPrimary && (m_selectedIDs.isEmpty() || m_selectedIDs.contains(primaryAlias));
}

QStringList CalendarChoices::selectionWith(int row, bool selected) const
{
    const ProviderCalendar &calendar = m_calendars.at(row);
    QStringList ids = m_selectedIDs;
    // what was read without being named has to be named beside another
    for (const ProviderCalendar &other : m_calendars) {
        if (isSelected(other) && !ids.contains(other.id))
            ids.append(other.id);
    }
    ids.removeAll(primaryAlias);
    ids.removeAll(calendar.id);
    if (selected)
        ids.append(calendar.id);
    return ids;
}

int CalendarChoices::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_calendars.size());
}

QVariant CalendarChoices::data(const QModelIndex &index, int role) const
{
    const ProviderCalendar &calendar = m_calendars.at(index.row());
    switch (static_cast<Role>(role)) {
    case Role::Title:
        return calendar.title;
    case Role::IsPrimary:
        return calendar.isPrimary;
    case Role::IsSelected:
        return isSelected(calendar);
    case Role::GoogleHex:
        return calendar.colorHex.value_or(QString());
    case Role::OverrideHex:
        return m_colorOverrides.value(calendar.id);
    }
    return {};
}

QHash<int, QByteArray> CalendarChoices::roleNames() const
{
    return { { static_cast<int>(Role::Title), "title" },
             { static_cast<int>(Role::IsPrimary), "isPrimary" },
             { static_cast<int>(Role::IsSelected), "isSelected" },
             { static_cast<int>(Role::GoogleHex), "googleHex" },
             { static_cast<int>(Role::OverrideHex), "overrideHex" } };
}

} // namespace kestrel
