#pragma once
#include "base/Awaited.h"
#include "helper/relay/Frames.h"
#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <expected>

namespace kestrel {

/// Who a relay says it is.
struct RelayGreeting
{
    enum class Route { Extension, DevTools };

    Route route = Route::Extension;
    QString browser; ///< its program file
    QString userDataDir; ///< may be empty

    /// Nothing when the relay speaks another protocol.
    [[nodiscard]] static std::optional<RelayGreeting> fromJson(const QJsonObject &message);
};

/// One relay's socket (docs/browser-protocol.md): frames there and back, answers brought to their questions.
/// A relay that breaks the protocol is hung up on. Whoever waits is answered before it goes; it is to be
/// destroyed from the event loop only. Main thread only.
class RelayConnection final : public QObject
{
    Q_OBJECT
public:
    /// The answer to a question, or a text that says why there is none.
    using Answer = std::expected<QJsonObject, QString>;

    static constexpr qsizetype longestFrame = relay::largestMessage;

    /// The error is a number of errno.
    [[nodiscard]] static std::expected<std::unique_ptr<RelayConnection>, int> open(const QByteArray &path);
    ~RelayConnection() override;

    /// True once it has said who it is; false when it has not within a second, or has gone.
    [[nodiscard]] Awaited<bool> greeted() const { return m_greeted; }
    /// Empty until then.
    [[nodiscard]] const std::optional<RelayGreeting> &greeting() const { return m_greeting; }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

    /// Gives the message an "id" and sends it. Answers to forgotten questions are no answers: after a minute
    /// a question is forgotten.
    [[nodiscard]] Awaited<Answer> ask(QJsonObject message);

Q_SIGNALS:
    /// After this, greeting() holds it.
    void introduced();
    /// What bears nobody's id.
    void announced(const QJsonObject &message);
    /// It has gone; `isUnfit` when it was hung up on because it does not keep to the protocol.
    void closed(bool isUnfit);

private:
    struct Question
    {
        Awaited<Answer> answer;
        QElapsedTimer age;
    };

    explicit RelayConnection(int descriptor);

    void read();
    void take(const QByteArray &frame);
    void write();
    void forgetOldQuestions();
    void end(bool isUnfit);

    int m_descriptor;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QTimer m_greetingBound;
    relay::FrameReader m_input { relay::Framing::Length, relay::FrameReader::Excess::Refuse };
    QByteArray m_output;
    Awaited<bool> m_greeted;
    std::optional<RelayGreeting> m_greeting;
    QHash<int, Question> m_questions;
    int m_nextId;
};

} // namespace kestrel
