#include "ui/AttendeeModel.h"
#include <QCoreApplication>
#include <algorithm>

namespace kestrel {

namespace {

AttendeeModel::Response shown(Attendee::Response response)
{
    using Shown = AttendeeModel::Response;
    switch (response) {
    case Attendee::Response::Accepted:
        return Shown::Accepted;
    case Attendee::Response::Declined:
        return Shown::Declined;
    case Attendee::Response::Tentative:
        return Shown::Tentative;
    case Attendee::Response::NeedsAction:
        return Shown::NeedsAction;
    case Attendee::Response::Unknown:
        break;
    }
    return Shown::Unknown;
}

} // namespace

AttendeeModel::AttendeeModel(int maxVisible, QObject *parent)
    : QAbstractListModel(parent)
    , m_maxVisible(maxVisible)
{
}

void AttendeeModel::setAttendees(const QList<Attendee> &attendees)
{
    if (attendees == m_attendees)
        return;
    beginResetModel();
    m_attendees = attendees;
    endResetModel();
    Q_EMIT hiddenTextChanged();
}

QString AttendeeModel::hiddenText() const
{
    const qsizetype hidden = m_attendees.size() - visibleCount();
    return hidden > 0 ? qtTrId("+%lld").arg(hidden) : QString();
}

void AttendeeModel::expand()
{
    if (m_isExpanded)
        return;
    const int before = rowCount();
    const int all = static_cast<int>(m_attendees.size());
    if (all > before)
        beginInsertRows({}, before, all - 1);
    m_isExpanded = true;
    if (all > before)
        endInsertRows();
    Q_EMIT hiddenTextChanged();
}

int AttendeeModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(visibleCount());
}

QVariant AttendeeModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Attendee &attendee = m_attendees.at(index.row());
    switch (static_cast<Role>(role)) {
    case Role::Label:
        return attendee.displayLabel();
    case Role::Response:
        return QVariant::fromValue(shown(attendee.response));
    }
    return {};
}

QHash<int, QByteArray> AttendeeModel::roleNames() const
{
    return { { int(Role::Label), "label" }, { int(Role::Response), "response" } };
}

qsizetype AttendeeModel::visibleCount() const
{
    return m_isExpanded ? m_attendees.size() : std::min<qsizetype>(m_maxVisible, m_attendees.size());
}

} // namespace kestrel
