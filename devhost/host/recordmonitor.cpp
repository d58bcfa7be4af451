#include "host/recordmonitor.h"

#include "host/printer.h"
#include "host/recordtext.h"
#include "logreading/directorywatch.h"
#include "vxtl/guarded.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

// Some file systems tell of no change, and the folder may not be there yet.
constexpr unsigned long recheckMs = 1000;

} // namespace

RecordMonitor::Place::Place(const std::wstring& instance, const wchar_t* kind) : file(instance, kind)
{
    file.read(position);
}

RecordMonitor::RecordMonitor(const std::wstring& instance, Printer& printer)
    : m_printer(printer), m_flyers(instance, records::flyers), m_alerts(instance, records::alerts),
      m_thread([this] { run(); })
{}

RecordMonitor::~RecordMonitor()
{
    m_stop.set();
    m_thread.join();
    showNew();
}

void RecordMonitor::run()
{
    logreading::DirectoryWatch watch(m_flyers.file.path().parent_path());
    do
        showNew();
    while (watch.wait(m_stop.handle(), recheckMs) != logreading::DirectoryWatch::Result::Stopped);
}

void RecordMonitor::showNew()
{
    const auto show = [this](const char* event, Place& place, std::string (*text)(const nlohmann::json&)) {
        vx::guarded("A record cannot be shown. ", [&] {
            for (const auto& record : place.file.read(place.position))
                m_printer.event(event, text(record), record);
        });
    };
    show("flyer", m_flyers, flyerText);
    show("alert", m_alerts, alertText);
}

} // namespace devhost::host
