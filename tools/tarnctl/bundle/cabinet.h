#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnctl::bundle {

/// Writes a cabinet with the system's own library. One thread.
class Cabinet {
public:
    /// Makes the file, over one that is there. Throws std::runtime_error where it can't.
    explicit Cabinet(const std::filesystem::path& file);
    ~Cabinet();
    Cabinet(const Cabinet&) = delete;
    Cabinet& operator=(const Cabinet&) = delete;

    /// Adds a file with this name and content. Throws std::runtime_error.
    void add(const std::string& name, std::string_view content);
    /// Completes the cabinet; without it there is none. Throws std::runtime_error.
    void finish();

private:
    struct State;

    std::unique_ptr<State> m_state;
};

} // namespace tarnctl::bundle
