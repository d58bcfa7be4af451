#include "store/server/servedconnection.h"

#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>

#include <windows.h>

namespace devhost::store {

namespace {

constexpr auto welcome = R"({"code":0})";

} // namespace

ServedConnection::ServedConnection(ipc::Pipe& pipe, RequestHandler& handler, const ipc::Signal& stop)
    : m_pipe(pipe), m_handler(handler), m_stop(stop)
{
    m_pipe.limit({&stop});
}

void ServedConnection::run()
{
    const auto frame = m_pipe.receive();
    if (!frame)
        return;
    const nlohmann::json hello = vx::parseJson(*frame);
    const Role role = hello.at("role") == "tool" ? Role::Tool : Role::Application;
    if (refused(role))
        return;
    if (hello.at("channel") == "notifications")
        serveNotifications(hello, role);
    else if (m_pipe.send(welcome))
        serveCalls(role);
}

void ServedConnection::serveCalls(Role role)
{
    while (const auto request = m_pipe.receive()) {
        if (refused(role) || !pause(role) || !m_pipe.send(m_handler.handle(*request, role)))
            return;
    }
}

void ServedConnection::serveNotifications(const nlohmann::json& hello, Role role)
{
    const auto awake = std::make_shared<ipc::Signal>();
    const auto subscriber = m_handler.attach(hello, [awake] { awake->set(); });
    bool open = m_pipe.send(welcome);
    void* const events[] = {m_stop.handle(), m_pipe.watchForClose(), awake->handle()};
    while (open && WaitForMultipleObjects(3, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 2) {
        // Before anything is looked at: what comes from here on wakes anew.
        awake->reset();
        if (refused(role))
            break;
        for (const std::string& frame : subscriber->take())
            open = open && m_pipe.send(frame);
    }
    m_handler.detach(hello.at("session").get<std::string>(), subscriber.get());
}

bool ServedConnection::refused(Role role) const
{
    return role == Role::Application && m_handler.faults().state().refuse;
}

bool ServedConnection::pause(Role role) const
{
    const unsigned milliseconds = role == Role::Application ? m_handler.faults().state().delayMs : 0;
    return milliseconds == 0 || !m_stop.wait(milliseconds);
}

} // namespace devhost::store
