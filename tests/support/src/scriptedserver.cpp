#include "support/scriptedserver.h"

#include <winsock2.h>

#include <algorithm>

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
    while (head.find("\r\n\r\n") == std::string::npos) {
        const int count = recv(client, buffer, sizeof buffer, 0);
        if (count <= 0)
            break;
        head.append(buffer, static_cast<std::size_t>(count));
    }
    return head;
}

/// False when the other side has gone.
bool sendAll(SOCKET client, const std::string& bytes)
{
    for (std::size_t sent = 0; sent < bytes.size();) {
        const int count = send(client, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count <= 0)
            return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
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
    release();
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    const SOCKET last = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(m_port);
    connect(last, reinterpret_cast<sockaddr*>(&address), sizeof address);
    closesocket(last);
    m_thread.join();
    closesocket(m_listener);
    WSACleanup();
}

std::wstring ScriptedServer::url(const std::wstring& path) const
{
    return L"http://127.0.0.1:" + std::to_wstring(m_port) + L"/" + path;
}

std::vector<std::string> ScriptedServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

void ScriptedServer::release()
{
    const std::lock_guard lock(m_mutex);
    for (const auto& [client, rest] : m_held) {
        sendAll(client, rest);
        closesocket(client);
    }
    m_held.clear();
}

void ScriptedServer::serve()
{
    while (take(accept(m_listener, nullptr, nullptr))) {
    }
}

bool ScriptedServer::take(std::size_t client)
{
    const std::string head = receiveHead(client);
    const std::lock_guard lock(m_mutex);
    if (m_stopping)
        return closesocket(client), false;
    const Answer& answer = m_answers[std::min(m_requests.size(), m_answers.size() - 1)];
    m_requests.push_back(head);
    play(client, answer);
    return true;
}

void ScriptedServer::play(std::size_t client, const Answer& answer)
{
    bool there = sendAll(client, answer.head);
    for (std::size_t i = 0; there && i < answer.times; ++i)
        there = sendAll(client, answer.body);
    if (answer.then == Answer::Then::Hold)
        return m_held.emplace_back(client, answer.rest), void();
    const linger now = {answer.then == Answer::Then::Reset, 0};
    setsockopt(client, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
    closesocket(client);
}

} // namespace support
