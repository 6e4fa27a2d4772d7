#pragma once
#include "helper/relay/Browser.h"
#include "helper/relay/ListeningSocket.h"
#include <deque>
#include <list>
#include <memory>
#include <string>
#include <string_view>

namespace kestrel::relay {

/// Passes messages between one browser and the clients of its socket, without reading them. Each message of
/// the browser goes to all clients. docs/browser-protocol.md describes both sides.
class Relay final
{
public:
    /// `signals` becomes readable when the relay is to end.
    Relay(Browser browser, ListeningSocket &socket, int signals);

    /// Until the browser is gone or a signal arrives.
    void run();

private:
    using Message = std::shared_ptr<const std::string>;

    /// What waits for a descriptor to take it.
    struct Outbox
    {
        std::deque<Message> messages;
        std::size_t written = 0; ///< of the first one
        std::size_t size = 0; ///< of all that is left

        void add(Message message);
        /// False when the other end is gone.
        [[nodiscard]] bool flush(int descriptor);
    };

    struct Client
    {
        int descriptor;
        FrameReader reader { Framing::Length, FrameReader::Excess::Refuse };
        Outbox outbox {};
        long long greetBy = 0; ///< whether or not the extension answers; 0 once it was greeted
    };

    [[nodiscard]] bool readBrowser();
    void takeFromBrowser(std::string_view message);
    /// To the extension, which answers with what holds now.
    void sayHello();
    void acceptClient();
    [[nodiscard]] bool readClient(Client &client);
    void greet(Client &client);
    void greetWaiting();
    [[nodiscard]] std::string greeting() const;
    /// In milliseconds, as poll() takes it.
    [[nodiscard]] int timeToGreeting() const;

    Browser m_browser;
    ListeningSocket &m_socket;
    int m_signals;
    FrameReader m_reader;
    Outbox m_toBrowser;
    std::list<Client> m_clients;
    std::string m_hello; ///< what the extension said of itself, as members of a JSON object
};

} // namespace kestrel::relay
