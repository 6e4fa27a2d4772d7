#include "helper/RelayConnection.h"
#include "base/Log.h"
#include <QJsonDocument>
#include <QRandomGenerator>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr int protocolVersion = 1;
constexpr auto greetingPatience = 1s;
constexpr qsizetype longestOutput = 4'000'000;
constexpr qsizetype mostQuestions = 256;
constexpr qint64 oldestQuestion = 60'000;

QString endedText()
{
    return u"The browser went before it answered"_s;
}

bool isOurUser(int descriptor)
{
    ucred peer {};
    socklen_t length = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == ::getuid();
}

} // namespace

std::optional<RelayGreeting> RelayGreeting::fromJson(const QJsonObject &message)
{
    const QString route = message.value("route"_L1).toString();
    const bool isExtension = route == "extension"_L1;
    if (message.value("relay"_L1).toInt() != protocolVersion || (!isExtension && route != "devtools"_L1))
        return {};
    return RelayGreeting { isExtension ? Route::Extension : Route::DevTools,
                           message.value("browser"_L1).toString(),
                           message.value("userDataDir"_L1).toString() };
}

std::expected<std::unique_ptr<RelayConnection>, int> RelayConnection::open(const QByteArray &path)
{
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return std::unexpected(ENAMETOOLONG);
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return std::unexpected(errno);
    int error = 0;
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        error = errno;
    else if (!isOurUser(descriptor))
        error = EPERM;
    if (error != 0) {
        ::close(descriptor);
        return std::unexpected(error);
    }
    return std::unique_ptr<RelayConnection>(new RelayConnection(descriptor));
}

RelayConnection::RelayConnection(int descriptor)
    : m_descriptor(descriptor)
    , m_readable(descriptor, QSocketNotifier::Read)
    , m_writable(descriptor, QSocketNotifier::Write)
    // other clients of the same relay count from elsewhere
    , m_nextId(QRandomGenerator::global()->bounded(1, 1 << 30))
{
    m_writable.setEnabled(false);
    m_greetingBound.setSingleShot(true);
    connect(&m_readable, &QSocketNotifier::activated, this, &RelayConnection::read);
    connect(&m_writable, &QSocketNotifier::activated, this, &RelayConnection::write);
    connect(&m_greetingBound, &QTimer::timeout, this, [this] { m_greeted.settle(false); });
    m_greetingBound.start(greetingPatience);
}

RelayConnection::~RelayConnection()
{
    blockSignals(true);
    end(false);
}

Awaited<RelayConnection::Answer> RelayConnection::ask(QJsonObject message)
{
    Awaited<Answer> answer;
    const int id = m_nextId;
    m_nextId = m_nextId < (1 << 30) ? m_nextId + 1 : 1;
    message.insert("id"_L1, id);
    const QByteArray frame = QJsonDocument(message).toJson(QJsonDocument::Compact);
    forgetOldQuestions();
    if (m_descriptor < 0)
        answer.settle(std::unexpected(endedText()));
    else if (frame.size() > longestFrame)
        answer.settle(std::unexpected(u"The script is too long"_s));
    else if (m_output.size() + frame.size() > longestOutput || m_questions.size() >= mostQuestions)
        answer.settle(std::unexpected(u"The browser does not answer"_s));
    if (answer.value())
        return answer;

    m_questions[id].answer = answer;
    m_questions[id].age.start();
    m_output.append(
        relay::framed({ frame.constData(), static_cast<std::size_t>(frame.size()) }, relay::Framing::Length));
    write();
    return answer;
}

void RelayConnection::read()
{
    static constexpr std::size_t chunk = 65536;
    std::array<char, chunk> buffer;
    const ssize_t count = ::recv(m_descriptor, buffer.data(), buffer.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return end(false);
    const bool isSound =
        m_input.feed({ buffer.data(), static_cast<std::size_t>(count) }, [this](std::string_view frame) {
            // what stands behind a frame that was one too many says nothing
            if (m_descriptor >= 0)
                take(QByteArray(frame.data(), static_cast<qsizetype>(frame.size())));
        });
    if (!isSound)
        end(true);
}

void RelayConnection::take(const QByteArray &frame)
{
    const QJsonDocument document = QJsonDocument::fromJson(frame);
    if (!document.isObject())
        return end(true);
    const QJsonObject message = document.object();
    if (!m_greeting) {
        m_greeting = RelayGreeting::fromJson(message);
        if (!m_greeting)
            return end(true);
        Q_EMIT introduced();
        m_greetingBound.stop();
        m_greeted.settle(true);
        return;
    }
    const QJsonValue id = message.value("id"_L1);
    if (id.isUndefined()) {
        Q_EMIT announced(message);
        return;
    }
    const auto question = m_questions.find(id.toInt());
    if (question != m_questions.end()) {
        const Awaited<Answer> answer = question->answer;
        m_questions.erase(question);
        answer.settle(message);
    }
}

void RelayConnection::write()
{
    while (m_descriptor >= 0 && !m_output.isEmpty()) {
        const ssize_t count = ::send(m_descriptor, m_output.constData(),
                                     static_cast<std::size_t>(m_output.size()), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            break; // EAGAIN; of anything else the reading side hears too
        m_output.remove(0, static_cast<qsizetype>(count));
    }
    m_writable.setEnabled(m_descriptor >= 0 && !m_output.isEmpty());
    if (m_output.isEmpty())
        m_output = QByteArray();
}

void RelayConnection::forgetOldQuestions()
{
    QList<Awaited<Answer>> forgotten;
    for (auto question = m_questions.begin(); question != m_questions.end();) {
        if (question->age.hasExpired(oldestQuestion)) {
            forgotten.append(question->answer);
            question = m_questions.erase(question);
        } else {
            ++question;
        }
    }
    for (const auto &answer : forgotten)
        answer.settle(std::unexpected(u"The browser does not answer"_s));
}

void RelayConnection::end(bool isUnfit)
{
    if (m_descriptor < 0)
        return;
    m_readable.setEnabled(false);
    m_writable.setEnabled(false);
    ::close(std::exchange(m_descriptor, -1));
    m_output.clear();
    if (isUnfit)
        qCWarning(lcApp) << "a browser relay does not keep to the protocol";
    m_greeted.settle(false);
    for (const auto &question : std::exchange(m_questions, {}))
        question.answer.settle(std::unexpected(endedText()));
    Q_EMIT closed(isUnfit);
}

} // namespace kestrel
