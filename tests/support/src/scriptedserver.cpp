#include "support/scriptedserver.h"

#include <winsock2.h>

#include <algorithm>
#include <utility>

namespace support {

namespace {

sockaddr_in loopback(unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

std::string receiveHead(SOCKET client)
{
    std::string head;
    char buffer[4096];
    for (int count = 1; count > 0 && head.find("\r\n\r\n") == std::string::npos;) {
        count = recv(client, buffer, sizeof buffer, 0);
        head.append(buffer, static_cast<std::size_t>(std::max(count, 0)));
    }
    return head;
}

/// False when the other side has gone.
bool sendAll(SOCKET client, const std::string& bytes)
{
    int count = 1;
    for (std::size_t sent = 0; count > 0 && sent < bytes.size(); sent += static_cast<std::size_t>(count))
        count = send(client, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
    return count > 0;
}

void play(SOCKET client, const Answer& answer)
{
    bool there = sendAll(client, answer.head);
    for (std::size_t i = 0; there && i < answer.times; ++i)
        there = sendAll(client, answer.body);
    const linger now = {answer.then == Answer::Then::Reset, 0};
    setsockopt(client, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
}

} // namespace

ScriptedServer::ScriptedServer(std::vector<Answer> answers) : m_answers(std::move(answers))
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    m_listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    int size = sizeof address;
    bind(m_listener, reinterpret_cast<sockaddr*>(&address), size);
    listen(m_listener, SOMAXCONN);
    getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { serve(); });
}

ScriptedServer::~ScriptedServer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    const SOCKET last = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(m_port);
    connect(last, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    closesocket(last);
    m_thread.join();
    closesocket(m_listener);
    WSACleanup();
}

std::vector<std::string> ScriptedServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

const Answer* ScriptedServer::answerTo(const std::string& request)
{
    const std::lock_guard lock(m_mutex);
    m_requests.push_back(request);
    return m_stopping ? nullptr : &m_answers[std::min(m_requests.size(), m_answers.size()) - 1];
}

void ScriptedServer::serve()
{
    static const Answer nothing;
    SOCKET before = INVALID_SOCKET;
    for (const Answer *given = &nothing, *held = &nothing; given; held = given) {
        const SOCKET client = accept(m_listener, nullptr, nullptr);
        given = answerTo(receiveHead(client));
        play(client, given ? *given : nothing);
        sendAll(before, held->rest);
        closesocket(before);
        before = client;
        if (!given || given->then != Answer::Then::Hold)
            closesocket(std::exchange(before, INVALID_SOCKET));
    }
}

} // namespace support
