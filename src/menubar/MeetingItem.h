#pragma once
#include "base/Clock.h"
#include "model/Meeting.h"
#include "ui/Countdown.h"
#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

class MeetingOpener;

/// One meeting as cards and rows show it, every text made, and what a person can do with it. The opener and
/// the clock outlive it. Main thread only.
class MeetingItem final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("view models make it")
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString startText READ startText NOTIFY changed)
    Q_PROPERTY(QString endText READ endText NOTIFY changed)
    Q_PROPERTY(QString durationText READ durationText NOTIFY changed)
    Q_PROPERTY(QString platformName READ platformName NOTIFY changed)
    Q_PROPERTY(QString platformSymbol READ platformSymbol NOTIFY changed)
    Q_PROPERTY(bool hasTint READ hasTint NOTIFY changed)
    Q_PROPERTY(QColor tint READ tint NOTIFY changed)
    Q_PROPERTY(QString calendarColorHex READ calendarColorHex NOTIFY changed)
    Q_PROPERTY(QString location READ location NOTIFY changed)
    Q_PROPERTY(QString attendeeCount READ attendeeCount NOTIFY changed)
    Q_PROPERTY(bool canJoin READ canJoin NOTIFY changed)
    Q_PROPERTY(QString joinText READ joinText NOTIFY changed)
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString details READ details NOTIFY changed)
    Q_PROPERTY(bool canOpenInCalendar READ canOpenInCalendar NOTIFY changed)
    Q_PROPERTY(kestrel::Countdown *countdown READ countdown CONSTANT)
public:
    MeetingItem(const Meeting &meeting, MeetingOpener &opener, const Clock &clock, QObject *parent = nullptr);

    [[nodiscard]] const Meeting &meeting() const { return m_meeting; }
    void setMeeting(const Meeting &meeting);
    /// Makes the texts anew: the language or the locale is another one.
    void retranslate();

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString startText() const;
    [[nodiscard]] QString endText() const;
    [[nodiscard]] QString durationText() const;
    [[nodiscard]] QString platformName() const;
    /// "video.fill", "mappin.and.ellipse" or "link".
    [[nodiscard]] QString platformSymbol() const;
    /// False: the platform takes the accent colour, and tint() is meaningless.
    [[nodiscard]] bool hasTint() const;
    [[nodiscard]] QColor tint() const;
    /// Empty: none.
    [[nodiscard]] QString calendarColorHex() const;
    /// Empty: none.
    [[nodiscard]] QString location() const;
    /// Empty: no attendees are known.
    [[nodiscard]] QString attendeeCount() const;
    [[nodiscard]] bool canJoin() const;
    [[nodiscard]] QString joinText() const;
    /// What a screen reader says of it: title, time, platform.
    [[nodiscard]] QString summary() const;
    /// What it says after that: from when to when, how long, where, how many are invited.
    [[nodiscard]] QString details() const;
    [[nodiscard]] bool canOpenInCalendar() const;
    [[nodiscard]] Countdown *countdown() { return &m_countdown; }

    Q_INVOKABLE void join();
    Q_INVOKABLE void openInCalendar();
    /// Nothing happens when the location gives no search.
    Q_INVOKABLE void openMap();
    /// What a press on its row does: its calendar page, else its link, else nothing.
    Q_INVOKABLE void activate();
    /// What Enter does: its link, else its calendar page, else nothing.
    Q_INVOKABLE void joinOrOpen();

Q_SIGNALS:
    void changed();
    /// After the link was handed to the opener.
    void joined();

private:
    Meeting m_meeting;
    MeetingOpener &m_opener;
    Countdown m_countdown;
};

} // namespace kestrel
