#pragma once
#include "base/Clock.h"
#include "platform/HttpTransport.h"
#include <QStringList>

namespace kestrel {

/// A Google whose calendars never end: so many meetings a day, spread over the accounts that are signed in,
/// and always something changed, moved or cancelled. Now and then an answer is a failure. Answers come in a
/// later turn of the event loop.
class SoakGoogle final : public HttpTransport
{
    Q_OBJECT
public:
    SoakGoogle(const Clock &clock, int meetingsPerDay);

    [[nodiscard]] QCoro::Task<std::expected<HttpResponse, TransportError>> send(HttpRequest request) override;
    [[nodiscard]] QCoro::Task<std::expected<void, TransportError>> waitForNetwork(QString account,
                                                                                  QUrl address) override;
    [[nodiscard]] bool isOnline() const override { return true; }

    /// Whose calendars there are; the others' are empty.
    void setAccounts(const QStringList &accounts) { m_accounts = accounts; }

    int requests = 0;

private:
    [[nodiscard]] HttpResponse answerTo(const HttpRequest &request);
    [[nodiscard]] QByteArray events(const QString &account);

    const Clock &m_clock;
    std::chrono::milliseconds m_between;
    QStringList m_accounts;
};

} // namespace kestrel
