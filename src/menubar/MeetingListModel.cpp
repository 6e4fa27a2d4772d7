#include "menubar/MeetingListModel.h"
#include <QCoreApplication>
#include <QSet>
#include <algorithm>

namespace kestrel {

MeetingListModel::MeetingListModel(MeetingOpener &opener, const Clock &clock, QObject *parent)
    : QAbstractListModel(parent)
    , m_opener(opener)
    , m_clock(clock)
{
}

MeetingListModel::~MeetingListModel() = default;

void MeetingListModel::show(const QList<Meeting> &ongoing, const QList<Meeting> &waiting, Instant now)
{
    const QList<Meeting> all = ongoing + waiting;
    const int before = count();
    removeAllBut(all);
    for (int row = 0; row < all.size(); ++row) {
        placeAt(row, all.at(row));
        setProgress(row, row < ongoing.size(), now);
    }
    // what is left over came twice under one identifier
    while (count() > all.size())
        removeRow(count() - 1);
    if (count() != before)
        Q_EMIT countChanged();
    Q_EMIT updated();
    for (Row &row : m_removed) {
        if (row.item)
            row.item.release()->deleteLater();
        if (row.progress)
            row.progress.release()->deleteLater();
    }
    m_removed.clear();
}

void MeetingListModel::removeRow(int row)
{
    beginRemoveRows({}, row, row);
    m_removed.push_back(std::move(m_rows[static_cast<size_t>(row)]));
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

void MeetingListModel::removeAllBut(const QList<Meeting> &meetings)
{
    QSet<QString> kept;
    for (const Meeting &meeting : meetings)
        kept.insert(meeting.id);
    for (int row = count() - 1; row >= 0; --row) {
        if (!kept.contains(m_rows[static_cast<size_t>(row)].item->meeting().id))
            removeRow(row);
    }
}

void MeetingListModel::placeAt(int row, const Meeting &meeting)
{
    const auto place = m_rows.begin() + row;
    const auto found = std::find_if(place, m_rows.end(), [&](const Row &candidate) {
        return candidate.item->meeting().id == meeting.id;
    });
    if (found == m_rows.end()) {
        beginInsertRows({}, row, row);
        m_rows.insert(place, { std::make_unique<MeetingItem>(meeting, m_opener, m_clock), nullptr });
        endInsertRows();
        return;
    }
    if (found != place) {
        const int from = static_cast<int>(found - m_rows.begin());
        beginMoveRows({}, from, from, {}, row);
        std::rotate(place, found, found + 1);
        endMoveRows();
    }
    m_rows[static_cast<size_t>(row)].item->setMeeting(meeting);
}

void MeetingListModel::setProgress(int row, bool isOngoing, Instant now)
{
    Row &shown = m_rows[static_cast<size_t>(row)];
    const bool was = shown.progress != nullptr;
    if (isOngoing && !was)
        shown.progress = std::make_unique<OngoingProgress>();
    else if (!isOngoing && was)
        m_removed.push_back({ nullptr, std::move(shown.progress) });
    if (shown.progress)
        shown.progress->update(shown.item->meeting().start, shown.item->meeting().end, now);
    if (was != isOngoing)
        Q_EMIT dataChanged(index(row), index(row), { Progress, Section });
}

void MeetingListModel::retranslate()
{
    for (const Row &row : m_rows)
        row.item->retranslate();
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0), index(count() - 1), { Section });
}

int MeetingListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant MeetingListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows[static_cast<size_t>(index.row())];
    switch (role) {
    case Item:
        return QVariant::fromValue(row.item.get());
    case Progress:
        return QVariant::fromValue(row.progress.get());
    case Section:
        return row.progress ? qtTrId("popover.ongoing.header") : qtTrId("popover.next_up.header");
    default:
        return {};
    }
}

QHash<int, QByteArray> MeetingListModel::roleNames() const
{
    return { { Item, "item" }, { Progress, "progress" }, { Section, "section" } };
}

} // namespace kestrel
