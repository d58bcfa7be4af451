#pragma once

#include <string>

/// What a program would call that knows its one task: a daily one in the product's folder, which exists. Registers it
/// anew with the calls that the product makes for that, the double look-up of the task too, and nothing around them.
/// Throws std::runtime_error when a call fails.
void updateTaskBare(const std::wstring& task, const std::wstring& agent, const std::wstring& startBoundary);
