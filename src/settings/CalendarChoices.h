#pragma once
#include "model/CalendarAccount.h"
#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// An account's calendars, which of them are read, and the colours that the person gave them. Keeps what it
/// is told; nothing is stored here.
class CalendarChoices : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the account's item makes it")
public:
    enum class Role { Title = Qt::UserRole, IsPrimary, IsSelected, GoogleHex, OverrideHex };

    using QAbstractListModel::QAbstractListModel;

    void setCalendars(const QList<ProviderCalendar> &calendars);
    [[nodiscard]] const QList<ProviderCalendar> &calendars() const { return m_calendars; }
    /// `selectedIDs` as stored: none stands for the primary calendar, which may also go by "primary".
    void setChoices(const QStringList &selectedIDs, const QMap<QString, QString> &colorOverrides);
    [[nodiscard]] bool isSelected(const ProviderCalendar &calendar) const;
    /// What is to be stored when the calendar of that row is selected or not: the others stay as they are
    /// read now, also those that are no longer listed.
    [[nodiscard]] QStringList selectionWith(int row, bool selected) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    QList<ProviderCalendar> m_calendars;
    QStringList m_selectedIDs;
    QMap<QString, QString> m_colorOverrides;
};

} // namespace kestrel
