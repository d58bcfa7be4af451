#include "rotationrace.h"

#include "barefile.h"
#include "logging-backend/processlogger.h"
#include "logging/logstream.h"

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>
#include <windows.h>

namespace {

constexpr int rounds = 60;
constexpr int recordsPerRound = 500;
constexpr unsigned long maxSizeKb = 100;
constexpr DWORD deadline = 60000;
constexpr const wchar_t* folderName = L"race";

std::string message(const std::string& tag, int number)
{
    std::string text = "race " + tag + " " + std::to_string(number) + " ";
    text.resize(94, static_cast<char>('a' + number % 26));
    return text + " end";
}

std::string eventName(const char* kind, const std::string& side, const std::string& tag, DWORD parent)
{
    return "vx-log-bench-" + std::to_string(parent) + kind + side + tag;
}

class Racer {
public:
    Racer(const std::string& side, const std::string& tag, const std::wstring& folder)
        : m_go(CreateEventA(nullptr, FALSE, FALSE, eventName("go", side, tag, GetCurrentProcessId()).c_str())),
          m_done(CreateEventA(nullptr, FALSE, FALSE, eventName("done", side, tag, GetCurrentProcessId()).c_str()))
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring command = L"\"" + std::wstring(program) + L"\"";
        for (const std::string& argument : {std::string(racerMode), side, tag, std::to_string(GetCurrentProcessId())})
            command += L" " + std::wstring(argument.begin(), argument.end());
        command += L" \"" + folder + L"\"";
        STARTUPINFOW start{};
        start.cb = sizeof start;
        if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process))
            throw std::runtime_error("a second process can't be started");
        // It tells when it is ready.
        waitDone();
    }
    ~Racer()
    {
        join();
        TerminateProcess(m_process.hProcess, 1);
        for (const HANDLE handle : {m_process.hThread, m_process.hProcess, m_go, m_done})
            CloseHandle(handle);
    }
    Racer(const Racer&) = delete;
    Racer& operator=(const Racer&) = delete;

    void go() const { SetEvent(m_go); }
    void join() const { WaitForSingleObject(m_process.hProcess, deadline); }
    void waitDone() const
    {
        if (WaitForSingleObject(m_done, deadline) != WAIT_OBJECT_0)
            throw std::runtime_error("a second process hangs");
    }

private:
    HANDLE m_go;
    HANDLE m_done;
    PROCESS_INFORMATION m_process{};
};

struct Verdict {
    bool holds;
    std::string text;
};

/// Two processes of one kind and the files that they leave.
class Race {
public:
    Race(const std::string& side, const std::filesystem::path& folder)
        : m_side(side), m_folder(folder), m_seen(folder / (side + "-seen")), m_a(side, "a", folder.wstring()),
          m_b(side, "b", folder.wstring())
    {
        std::filesystem::create_directories(m_seen);
    }

    bench::Measure round()
    {
        const auto run = bench::perBatch(2 * recordsPerRound, [this] {
            m_a.go();
            m_b.go();
            m_a.waitDone();
            m_b.waitDone();
        });
        return [this, run] {
            const double time = run();
            putRotatedFilesAside();
            return time;
        };
    }

    /// After the last round: what is wrong with the records of all files.
    Verdict verify() const
    {
        m_a.join();
        m_b.join();
        std::map<std::string, int> seen;
        int torn = 0;
        count(m_folder / (m_side + ".log"), seen, torn);
        for (const auto& entry : std::filesystem::directory_iterator(m_seen))
            count(entry.path(), seen, torn);
        int lost = 0;
        int twice = 0;
        for (const std::string tag : {"a", "b"})
            for (int i = 0; i < (rounds + 1) * recordsPerRound; ++i) {
                const int times = seen[message(tag, i)];
                lost += times == 0;
                twice += times > 1;
            }
        return {torn == 0 && lost == 0 && twice == 0,
            m_side + ": " + std::to_string(2 * (rounds + 1) * recordsPerRound) + " records, " +
                std::to_string(m_rotated) + " rotated files, " + std::to_string(lost) + " lost, " +
                std::to_string(torn) + " torn, " + std::to_string(twice) + " twice"};
    }

private:
    void putRotatedFilesAside()
    {
        for (unsigned i = 1; i <= rotateCount; ++i) {
            const auto file = m_folder / (m_side + "." + std::to_string(i) + ".log");
            if (std::filesystem::exists(file))
                std::filesystem::rename(file, m_seen / std::to_string(m_rotated++));
        }
    }

    static void count(const std::filesystem::path& file, std::map<std::string, int>& seen, int& torn)
    {
        std::ifstream stream(file, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        std::string text;
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
            text += bytes[i + 1] == 0 ? bytes[i] : '?';
        torn += bytes.size() % 2 != 0 || !bytes.starts_with("\xFF\xFE") || !text.ends_with("\r\n");
        for (std::size_t begin = 0; begin < text.size();) {
            const auto end = text.find("\r\n", begin);
            if (end == std::string::npos)
                break;
            const std::string line = text.substr(begin, end - begin);
            begin = end + 2;
            if (line.empty() || line.find("***  LOG") == 40)
                continue;
            if (line.size() == 138 && line.compare(40, 5, "race ") == 0 && line.ends_with(" end"))
                ++seen[line.substr(40)];
            else
                ++torn;
        }
    }

    std::string m_side;
    std::filesystem::path m_folder;
    std::filesystem::path m_seen;
    Racer m_a;
    Racer m_b;
    int m_rotated = 0;
};

class Appender {
public:
    virtual ~Appender() = default;
    virtual void append(const std::string& text) = 0;
};

class BareAppender : public Appender {
public:
    explicit BareAppender(const std::wstring& folder) : m_file(folder, L"bare", rotateCount) {}
    void append(const std::string& text) override
    {
        std::wstring record(40, L' ');
        record.append(text.begin(), text.end()).append(L"\r\n");
        m_file.appendRotating(record, maxSizeKb * 1024);
    }

private:
    BareFile m_file;
};

class OurAppender : public Appender {
public:
    OurAppender() { VxQrlLogging::open(folderName, L"ours", 4, 0); }
    ~OurAppender() override { VxQrlLogging::close(); }
    void append(const std::string& text) override { vx::logging::LogStream(vx::logging::Level::Info) << text; }
};

} // namespace

int runRacer(int argc, char** argv)
{
    if (argc != 6)
        return 2;
    const std::string side = argv[2];
    const std::string tag = argv[3];
    const auto parent = static_cast<DWORD>(std::stoul(argv[4]));
    const HANDLE go = OpenEventA(SYNCHRONIZE, FALSE, eventName("go", side, tag, parent).c_str());
    const HANDLE done = OpenEventA(EVENT_MODIFY_STATE, FALSE, eventName("done", side, tag, parent).c_str());
    std::unique_ptr<Appender> appender;
    if (side == "ours")
        appender = std::make_unique<OurAppender>();
    else
        appender = std::make_unique<BareAppender>(std::filesystem::path(argv[5]).wstring());
    SetEvent(done);
    for (int round = 0; round <= rounds; ++round) {
        std::vector<std::string> texts;
        for (int i = 0; i < recordsPerRound; ++i)
            texts.push_back(message(tag, round * recordsPerRound + i));
        if (WaitForSingleObject(go, deadline) != WAIT_OBJECT_0)
            return 3;
        for (const std::string& text : texts)
            appender->append(text);
        SetEvent(done);
    }
    return 0;
}

void compareRotationRace(bench::Comparison& table, const bench::LogSandbox& sandbox)
{
    bench::LogSandbox::configure(maxSizeKb, rotateCount);
    std::filesystem::create_directories(sandbox.folder(folderName));
    Race bare("bare", sandbox.folder(folderName));
    Race ours("ours", sandbox.folder(folderName));
    // One more round than repeats: the first is not measured, but its records count.
    table.row("two processes, rotation at 100 KB, per record", bare.round(), ours.round(), bench::Reach::rateFrom(0.95),
        rounds);
    for (const Verdict& verdict : {bare.verify(), ours.verify()})
        table.note(verdict.text, verdict.holds);
}
