#include "menubar/MeetingItem.h"
#include "menubar/MeetingOpener.h"
#include "ui/DisplayFormats.h"
#include <QCoreApplication>
#include <QLocale>

using namespace Qt::StringLiterals;

void qml_register_types_Kestrel_Menubar();

namespace kestrel {

namespace {

// The linker drops what nobody names, and with it the registration of the module's types.
[[gnu::used]] void (*const keepModule)() = &qml_register_types_Kestrel_Menubar;

} // namespace

MeetingItem::MeetingItem(const Meeting &meeting, MeetingOpener &opener, const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_meeting(meeting)
    , m_opener(opener)
    , m_countdown(clock, meeting.start)
{
}

void MeetingItem::setMeeting(const Meeting &meeting)
{
    if (meeting == m_meeting)
        return;
    m_meeting = meeting;
    m_countdown.setStart(meeting.start);
    Q_EMIT changed();
}

void MeetingItem::retranslate()
{
    m_countdown.setStart(m_meeting.start);
    Q_EMIT changed();
}

QString MeetingItem::title() const
{
    return m_meeting.title;
}

QString MeetingItem::startText() const
{
    return clockTimeText(m_meeting.start);
}

QString MeetingItem::endText() const
{
    return clockTimeText(m_meeting.end);
}

QString MeetingItem::durationText() const
{
    return formatDuration(std::chrono::duration<double>(m_meeting.end - m_meeting.start).count());
}

QString MeetingItem::platformName() const
{
    return m_meeting.platform.displayName();
}

QString MeetingItem::platformSymbol() const
{
    switch (m_meeting.platform.kind()) {
    case MeetingPlatform::Kind::InPerson:
        return u"mappin.and.ellipse"_s;
    case MeetingPlatform::Kind::Other:
        return u"link"_s;
    default:
        return u"video.fill"_s;
    }
}

bool MeetingItem::hasTint() const
{
    return m_meeting.platform.tint().has_value();
}

QColor MeetingItem::tint() const
{
    const auto tint = m_meeting.platform.tint();
    if (!tint)
        return {};
    return QColor::fromRgbF(static_cast<float>(tint->red), static_cast<float>(tint->green),
                            static_cast<float>(tint->blue));
}

QString MeetingItem::calendarColorHex() const
{
    return m_meeting.calendarColorHex.value_or(QString());
}

QString MeetingItem::location() const
{
    return m_meeting.location.value_or(QString());
}

QString MeetingItem::attendeeCount() const
{
    return m_meeting.attendees.isEmpty() ? QString() : QLocale().toString(m_meeting.attendees.size());
}

bool MeetingItem::canJoin() const
{
    return m_meeting.meetingURL.has_value();
}

QString MeetingItem::joinText() const
{
    return qtTrId("alert.join_button.title %@").arg(platformName());
}

QString MeetingItem::summary() const
{
    return title() + u", "_s + startText() + u", "_s + platformName();
}

QString MeetingItem::details() const
{
    QStringList parts { startText() + u" – "_s + endText(), durationText() };
    if (!location().isEmpty())
        parts.append(location());
    if (!m_meeting.attendees.isEmpty())
        parts.append(qtTrId("meeting.invited %n", static_cast<int>(m_meeting.attendees.size())));
    return parts.join(u", "_s);
}

bool MeetingItem::canOpenInCalendar() const
{
    return m_meeting.canonicalURL.has_value();
}

void MeetingItem::join()
{
    if (!m_meeting.meetingURL)
        return;
    m_opener.openForAccount(*m_meeting.meetingURL, m_meeting.accountID);
    Q_EMIT joined();
}

void MeetingItem::openInCalendar()
{
    if (m_meeting.canonicalURL)
        m_opener.openExternal(*m_meeting.canonicalURL);
}

void MeetingItem::openMap()
{
    if (const auto search = mapsSearchURL(location()))
        m_opener.openExternal(*search);
}

void MeetingItem::activate()
{
    if (m_meeting.canonicalURL)
        openInCalendar();
    else
        join();
}

void MeetingItem::joinOrOpen()
{
    if (m_meeting.meetingURL)
        join();
    else
        openInCalendar();
}

} // namespace kestrel
