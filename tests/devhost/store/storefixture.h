#pragma once

#include "stage.h"

struct StoreTest : support::StageTest {
    devhost::store::Client application{instance, devhost::store::Role::Application};
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
