#pragma once

#include <iosfwd>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace devhost::host {

/// Writes results and events, for people or as one JSON object per line. Any thread; each call is one whole
/// line, shown at once. Texts are UTF-8.
class Printer {
public:
    /// For people, or for programs.
    enum class Form { Text, Json };

    /// The stream is borrowed.
    Printer(Form form, std::ostream& output) : m_form(form), m_output(output) {}

    bool isJson() const { return m_form == Form::Json; }
    /// A line with the time in front, for what happens while a command runs: `text` for people; the
    /// members of `fields` with "time" and "event" for programs.
    void event(std::string_view name, std::string_view text, const nlohmann::json& fields);
    /// A line of a command's answer, in the form that is asked for.
    void result(std::string_view text, const nlohmann::json& object);
    void line(std::string_view text);

private:
    Form m_form;
    std::mutex m_mutex;
    std::ostream& m_output; ///< guarded by m_mutex
};

} // namespace devhost::host
