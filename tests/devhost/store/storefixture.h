#pragma once

#include "store/client.h"
#include "store/server.h"
#include "vxtl/handle.h"

#include <chrono>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

constexpr std::chrono::seconds deadline{30};

/// Collects changes.
class Heard {
public:
    void add(const std::string& name);
    std::size_t count();
    /// False after the deadline.
    bool await(std::size_t count);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_names;
};

/// A folder and an instance of its own for each test, and a server that is not started yet.
struct StoreTest : testing::Test {
    StoreTest();
    ~StoreTest() override;

    /// This program again, with arguments; see main.cpp.
    vx::SharedHandle startChild(const std::wstring& arguments);
    void writeFile(const std::string& content) const;
    std::string readFile() const;

    std::wstring instance;
    std::wstring folder;
    std::wstring file;
    devhost::store::Server server;
    Heard heard; ///< of callbacks, so it outlives the clients
    devhost::store::Client tool;
    devhost::store::Client client;

private:
    std::vector<vx::SharedHandle> m_children; ///< killed at the end, if a failed test has not done so
};

void killChild(const vx::SharedHandle& process);
unsigned long awaitChild(const vx::SharedHandle& process);

/// The code that an operation ends with.
template <typename Operation>
devhost::store::ErrorCode codeOf(Operation operation)
{
    try {
        operation();
        return devhost::store::ErrorCode::Success;
    } catch (const devhost::store::StoreException& exception) {
        return exception.code();
    }
}
