#pragma once

#include "childprocess.h"
#include "store/client/client.h"
#include "store/server/server.h"
#include "support/record.h"

#include <gmock/gmock.h>

/// A folder and an instance of its own for each test, and a server that is not started yet.
struct StoreTest : testing::Test {
    /// Another process, on the same instance or on a neighbour of it.
    support::ChildProcess tarnhost(const std::wstring& arguments, const std::wstring& suffix = {}) const
    {
        return {"tarnhost.exe", L"--instance " + instance + suffix + L" " + arguments, folder.path()};
    }

    support::TemporaryFolder folder;
    const std::wstring instance = folder.path().filename().wstring();
    const std::filesystem::path file = folder.path() / "sub" / "store.json";
    devhost::store::Server server{file.wstring(), instance};
    support::Record heard; ///< by callbacks, so it outlives the clients
    devhost::store::Client tool{instance};
    devhost::store::Client client{instance, devhost::store::Role::Application};
};

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
