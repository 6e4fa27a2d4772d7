#pragma once
#include "model/Meeting.h"
#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// A meeting's attendees as chips show them: the first few, and all once they are asked for. Whoever shows
/// the meeting owns it.
class AttendeeModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("view models make it")
    Q_PROPERTY(QString hiddenText READ hiddenText NOTIFY hiddenTextChanged)
public:
    enum class Role { Label = Qt::UserRole, Response };
    enum class Response { Accepted, Declined, Tentative, NeedsAction, Unknown };
    Q_ENUM(Response)

    explicit AttendeeModel(int maxVisible, QObject *parent = nullptr);

    /// Keeps what is expanded expanded.
    void setAttendees(const QList<Attendee> &attendees);

    /// "+7"; empty when none is hidden.
    [[nodiscard]] QString hiddenText() const;
    Q_INVOKABLE void expand();

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void hiddenTextChanged();

private:
    [[nodiscard]] qsizetype visibleCount() const;

    QList<Attendee> m_attendees;
    int m_maxVisible;
    bool m_isExpanded = false;
};

} // namespace kestrel
