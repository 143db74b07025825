#include "support/SessionManager.h"

#include "threads/MainThread.h"

#include <QSocketNotifier>

#include <array>
#include <cstdlib>
#include <span>
#include <string_view>

// Included last: its macros have the names of things in Qt.
#include <X11/SM/SMlib.h>

namespace corvane::test {

namespace {

Bool acceptAll(char *)
{
    return True;
}

/// The library's own handler would end the process.
void ignoreLostConnection(IceConn) { }

} // namespace

struct SessionManager::Session {
    std::span<IceListenObj> listeners = {}; ///< Owned by the library.
    IceListenObj local = nullptr;           ///< The listener at the Unix socket.
    std::unique_ptr<QSocketNotifier> connections = {};
    IceConn connection = nullptr;
    std::unique_ptr<QSocketNotifier> messages = {};
    SmsConn client = nullptr;
    int saved = 0;
    bool isEnding = false;
    bool isReady = false;
    int questions = 0;
    std::optional<int> restartStyle = {};

    void listen();
    void accept();
    void read();
    void disconnect();
    void take(const SmProp &property);

    static Session &of(SmPointer session) { return *static_cast<Session *>(session); }
    static Status onNewClient(SmsConn client, SmPointer manager, unsigned long *mask,
                              SmsCallbacks *callbacks, char **failure);
    static Status onRegister(SmsConn client, SmPointer session, char *previousId);
};

/// The library also listens for other machines; these connections are not accepted.
void SessionManager::Session::listen()
{
    int count = 0;
    IceListenObj *all = nullptr;
    std::array<char, 256> error = {};
    if (!IceListenForConnections(&count, &all, error.size(), error.data()))
        return;
    listeners = {all, static_cast<std::size_t>(count)};
    for (const IceListenObj listener : listeners) {
        char *name = IceGetListenConnectionString(listener);
        if (std::string_view(name).starts_with("local/"))
            local = listener;
        std::free(name);
    }
    if (!local)
        return;
    IceSetHostBasedAuthProc(local, acceptAll);
    connections = std::make_unique<QSocketNotifier>(IceGetListenConnectionNumber(local),
                                                    QSocketNotifier::Read);
    QObject::connect(connections.get(), &QSocketNotifier::activated, [this] { accept(); });
}

void SessionManager::Session::accept()
{
    IceAcceptStatus status = {};
    connection = IceAcceptConnection(local, &status);
    if (!connection)
        return;
    connections->setEnabled(false);
    IceSetShutdownNegotiation(connection, False);
    messages =
        std::make_unique<QSocketNotifier>(IceConnectionNumber(connection), QSocketNotifier::Read);
    QObject::connect(messages.get(), &QSocketNotifier::activated, [this] { read(); });
}

void SessionManager::Session::read()
{
    if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesSuccess)
        disconnect();
}

void SessionManager::Session::disconnect()
{
    if (!connection)
        return;
    messages->setEnabled(false);
    if (client)
        SmsCleanUp(client);
    client = nullptr;
    IceCloseConnection(connection);
    connection = nullptr;
}

void SessionManager::Session::take(const SmProp &property)
{
    if (std::string_view(property.name) == SmRestartStyleHint && property.num_vals == 1
        && property.vals[0].length > 0) // Qt sends four bytes, of which managers read the first.
        restartStyle = *static_cast<const unsigned char *>(property.vals[0].value);
}

Status SessionManager::Session::onRegister(SmsConn client, SmPointer session, char *previousId)
{
    if (previousId) {
        std::free(previousId);
        return 0; // Refused; the client registers again without an id.
    }
    char *id = SmsGenerateClientID(client);
    SmsRegisterClientReply(client, id);
    std::free(id);
    SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
    of(session).client = client;
    return 1;
}

Status SessionManager::Session::onNewClient(SmsConn, SmPointer manager, unsigned long *mask,
                                            SmsCallbacks *callbacks, char **)
{
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask
        | SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask
        | SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask
        | SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    *callbacks = {};
    callbacks->register_client = {onRegister, manager};
    callbacks->interact_request = {[](SmsConn peer, SmPointer session, int) {
                                       ++of(session).questions;
                                       SmsInteract(peer);
                                   },
                                   manager};
    callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, manager};
    callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {},
                                        manager};
    callbacks->save_yourself_phase2_request = {
        [](SmsConn peer, SmPointer) { SmsSaveYourselfPhase2(peer); }, manager};
    callbacks->save_yourself_done = {[](SmsConn peer, SmPointer session, Bool success) {
                                         Session &self = of(session);
                                         ++self.saved;
                                         self.isReady = self.isEnding && success;
                                         if (!self.isEnding)
                                             SmsSaveComplete(peer);
                                     },
                                     manager};
    callbacks->close_connection = {[](SmsConn, SmPointer session, int count, char **reasons) {
                                       SmFreeReasons(count, reasons);
                                       of(session).disconnect();
                                   },
                                   manager};
    callbacks->set_properties = {[](SmsConn, SmPointer session, int count, SmProp **properties) {
                                     for (SmProp *property :
                                          std::span(properties, static_cast<std::size_t>(count))) {
                                         of(session).take(*property);
                                         SmFreeProperty(property);
                                     }
                                     std::free(properties);
                                 },
                                 manager};
    callbacks->delete_properties = {[](SmsConn, SmPointer, int count, char **names) {
                                        SmFreeReasons(count, names); // Frees any list of texts.
                                    },
                                    manager};
    callbacks->get_properties = {
        [](SmsConn peer, SmPointer) { SmsReturnProperties(peer, 0, nullptr); }, manager};
    return 1;
}

SessionManager::SessionManager() : m_session(std::make_unique<Session>())
{
    assertMainThread();
    IceSetIOErrorHandler(ignoreLostConnection);
    std::array<char, 256> error = {};
    if (SmsInitialize("Corvane's tests", "1", Session::onNewClient, m_session.get(), acceptAll,
                      error.size(), error.data()))
        m_session->listen();
}

SessionManager::~SessionManager()
{
    m_session->disconnect();
    m_session->connections.reset();
    if (!m_session->listeners.empty())
        IceFreeListenObjs(static_cast<int>(m_session->listeners.size()),
                          m_session->listeners.data());
}

QByteArray SessionManager::address() const
{
    if (!m_session->local)
        return {};
    char *name = IceGetListenConnectionString(m_session->local);
    const QByteArray copy(name);
    std::free(name);
    return copy;
}

bool SessionManager::hasClient() const
{
    return m_session->client && m_session->saved > 0;
}

void SessionManager::announceEnd()
{
    m_session->isEnding = true;
    SmsSaveYourself(m_session->client, SmSaveBoth, True, SmInteractStyleAny, False);
}

bool SessionManager::isReadyForEnd() const
{
    return m_session->isReady;
}

void SessionManager::end()
{
    SmsDie(m_session->client);
}

int SessionManager::questions() const
{
    return m_session->questions;
}

std::optional<int> SessionManager::restartStyle() const
{
    return m_session->restartStyle;
}

} // namespace corvane::test
