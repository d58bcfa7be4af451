#pragma once

#include <functional>
#include <string>

namespace Vx {

/// One-shot work for a TaskScheduler. Runs once, on the scheduler's thread. The name is what a cancellation
/// asks for; of a unique task the queue holds at most one per name.
class Task {
public:
    Task(std::string name, bool unique) : m_name(std::move(name)), m_unique(unique) {}
    virtual ~Task();
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    virtual void run() = 0;

    const std::string& name() const noexcept { return m_name; }
    bool isUnique() const noexcept { return m_unique; }

private:
    const std::string m_name;
    const bool m_unique;
};

/// Calls a callable; an empty one throws std::bad_function_call.
class FuncTask : public Task {
public:
    FuncTask(std::string name, bool unique, std::function<void()> function)
        : Task(std::move(name), unique), m_function(std::move(function))
    {}
    void run() override;

private:
    const std::function<void()> m_function;
};

} // namespace Vx

namespace vx::tarn {

/// Calls a callable; an empty one is passed over.
class ActionNamedTask : public Vx::Task {
public:
    ActionNamedTask(std::string name, bool unique, std::function<void()> function)
        : Task(std::move(name), unique), m_function(std::move(function))
    {}
    void run() override;

private:
    const std::function<void()> m_function;
};

} // namespace vx::tarn
