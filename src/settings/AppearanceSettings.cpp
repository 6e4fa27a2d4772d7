#include "settings/AppearanceSettings.h"
#include "preferences/Preferences.h"
#include <QCoreApplication>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kestrel {

AppearanceSettings::AppearanceSettings(Preferences &preferences, MeetingOpener &opener, const Clock &clock)
    : m_preferences(preferences)
    , m_clock(clock)
    , m_sample(sampleMeeting(), opener, clock)
{
    connect(&preferences, &Preferences::changed, this, &AppearanceSettings::changed);
}

void AppearanceSettings::retranslate()
{
    Q_EMIT retranslated();
    Q_EMIT changed();
    renewSample();
    m_sample.retranslate();
}

QStringList AppearanceSettings::languages() const
{
    return { qtTrId("language.system"), qtTrId("language.english"), qtTrId("language.spanish") };
}

int AppearanceSettings::language() const
{
    const auto &all = Preferences::languageCodes;
    return static_cast<int>(std::ranges::find(all, m_preferences.languageOverride()) - all.begin());
}

void AppearanceSettings::setLanguage(int index)
{
    m_preferences.setLanguageOverride(Preferences::languageCodes.at(static_cast<std::size_t>(index)));
}

void AppearanceSettings::renewSample()
{
    m_sample.setMeeting(sampleMeeting());
}

Meeting AppearanceSettings::sampleMeeting() const
{
    Meeting meeting;
    meeting.id = u"sample"_s;
    meeting.title = qtTrId("settings.preview.meeting");
    meeting.location = qtTrId("settings.preview.location");
    // cards come at this time; a countdown that has just begun says the whole number
    meeting.start = m_clock.now()
        + secondsSpan(60 * static_cast<double>(std::max<qint64>(m_preferences.leadTimeMinutes(), 1)));
    meeting.end = meeting.start + std::chrono::minutes(30);
    meeting.meetingURL = QUrl(u"https://meet.google.com/sam-plec-all"_s);
    meeting.platform = MeetingPlatform::Kind::GoogleMeet;
    meeting.canonicalURL = QUrl(u"https://calendar.google.com/"_s);
    meeting.calendarColorHex = u"#4DB6AC"_s;
    return meeting;
}

} // namespace kestrel
