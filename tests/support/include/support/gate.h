#pragma once

#include <future>

namespace support {

/// Where one call of another thread is held until the test lets it go.
class Gate {
public:
    /// In that call.
    void pass()
    {
        m_entered.set_value();
        m_opened.get_future().wait();
    }
    void waitUntilEntered() { m_entered.get_future().wait(); }
    void open() { m_opened.set_value(); }

private:
    std::promise<void> m_entered, m_opened;
};

} // namespace support
