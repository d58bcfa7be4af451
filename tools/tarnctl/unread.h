#pragma once

#include "tarnctl/health/gather.h"
#include "vxtl/win32exception.h"

#include <ostream>
#include <set>
#include <string>

namespace tarnctl {

/// Why files of a log could not be read, each said once. One thread.
class Unread {
public:
    void take(const vx::Win32Exception& exception)
    {
        auto text = health::textOf(exception);
        if (m_known.insert(text).second)
            m_new += "tarnctl: " + text + '\n';
    }
    bool any() const { return !m_known.empty(); }
    /// Says what came since the last call.
    void say(std::ostream& errors)
    {
        errors << m_new << std::flush;
        m_new.clear();
    }

private:
    std::set<std::string> m_known;
    std::string m_new;
};

} // namespace tarnctl
