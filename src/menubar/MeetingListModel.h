#pragma once
#include "menubar/MeetingItem.h"
#include "menubar/OngoingProgress.h"
#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>
#include <memory>
#include <vector>

namespace kestrel {

/// Meetings in a list that keeps the item of each as long as the meeting is in it, so that what shows it
/// survives every refresh. The opener and the clock outlive it. Main thread only.
class MeetingListModel final : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the agenda makes it")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    /// `Progress` is nothing for a meeting that has not begun. `Section` stands above the first of its kind.
    enum Role { Item = Qt::UserRole, Progress, Section };

    MeetingListModel(MeetingOpener &opener, const Clock &clock, QObject *parent = nullptr);
    ~MeetingListModel() override;

    /// First `ongoing`, then `waiting`.
    void show(const QList<Meeting> &ongoing, const QList<Meeting> &waiting, Instant now);
    /// Makes all texts anew.
    void retranslate();

    [[nodiscard]] int count() const { return static_cast<int>(m_rows.size()); }
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    /// After each show(): a view lets go of what was removed now, since it is deleted next.
    void updated();

private:
    struct Row
    {
        std::unique_ptr<MeetingItem> item;
        std::unique_ptr<OngoingProgress> progress;
    };

    void removeRow(int row);
    void removeAllBut(const QList<Meeting> &meetings);
    void placeAt(int row, const Meeting &meeting);
    void setProgress(int row, bool isOngoing, Instant now);

    MeetingOpener &m_opener;
    const Clock &m_clock;
    std::vector<Row> m_rows;
    std::vector<Row> m_removed;
};

} // namespace kestrel
