// Decodes any bytes as an events list and maps what comes out; holds the meetings against what their fields
// promise.
#include "Require.h"
#include "google/CalendarDecoder.h"
#include "google/GoogleEventMapper.h"
#include <QTextBoundaryFinder>

using namespace kestrel;

namespace {

bool isAtMost(const QString &text, int limit)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    while (limit >= 0 && finder.toNextBoundary() >= 0)
        --limit;
    return limit >= 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArrayView json(bytes, static_cast<qsizetype>(size));
    const auto calendars = decodeCalendarList(json);
    require(calendars || !calendars.error().description.isEmpty());
    const auto answer = decodeEventsList(json);
    if (!answer) {
        require(!answer.error().description.isEmpty());
        return 0;
    }
    for (const Google::Event &event : answer->items) {
        const auto meeting = GoogleEventMapper().map(event, {});
        if (!meeting)
            continue;
        require(!meeting->title.isEmpty() && isAtMost(meeting->title, 140));
        require(!meeting->location || isAtMost(*meeting->location, 200));
        require(!meeting->meetingURL
                || (meeting->meetingURL->scheme() == u"https" && !meeting->meetingURL->host().isEmpty()));
        require(!meeting->canonicalURL || meeting->canonicalURL->scheme() == u"https");
        require(meeting->meetingURL || meeting->platform.kind() == MeetingPlatform::Kind::InPerson
                || meeting->platform.kind() == MeetingPlatform::Kind::Other);
        require(meeting->attendees.size() == (event.attendees ? event.attendees->size() : 0));
    }
    return 0;
}
