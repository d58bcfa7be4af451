#include "filecontext.h"

#include "account.h"
#include "logging-backend/configuration.h"
#include "logging-backend/location.h"
#include "logging-backend/logger.h"
#include "securityattributes.h"

#include <algorithm>
#include <windows.h>

namespace VxQrlLogging {

namespace {

constexpr unsigned mostRotatedFiles = 99;
constexpr unsigned smallestMaxSize = 3;
constexpr std::size_t mutexPathStart = 19;

} // namespace

FileContext::FileContext(std::wstring name1, std::wstring name2, unsigned flags, std::unique_ptr<FileSystem::Path> path,
    unsigned long mutexWaitMs, bool (*hasLowIntegrity)())
    : m_path(std::move(path)), m_name1(std::move(name1)), m_name2(std::move(name2)), m_flags(flags),
      m_file(m_path->createFile()), m_mutexWaitMs(mutexWaitMs), m_hasLowIntegrity(hasLowIntegrity)
{}

FileContext::~FileContext()
{
    if (m_mutex)
        CloseHandle(m_mutex);
}

bool FileContext::open()
{
    if (m_initialised)
        return false;
    // Set first: a failure below leaves a log without a file, not one that tries again at each record.
    m_initialised = true;
    const Configuration configuration(m_name1, m_name2);
    m_rotateCount = std::min<unsigned>(configuration.number(rotateCountValue).value_or(2), mostRotatedFiles);
    m_maxSize = std::max<unsigned>(configuration.number(maxSizeValue).value_or(100) * 1024, smallestMaxSize);
    m_logLevel = configuration.number(logLevelValue);
    m_debugOutput = configuration.number(debugOutputValue).value_or(0) != 0;
    try {
        place();
    } catch (...) {
        m_fileBase.clear();
    }
    return true;
}

void FileContext::place()
{
    const bool administrator = account::isAdministrator();
    const bool lowIntegrity = !administrator && m_hasLowIntegrity();
    if (administrator)
        m_securityAttributes = m_flags & LOG_FLAG_STRICT_ACL ? restrictedAttributes() : inheritingAttributes();
    const std::wstring maker = makerFolder(administrator  ? Location::Machine
                                           : lowIntegrity ? Location::LowIntegrity
                                                          : Location::User);
    if (!m_path->createDirectories(maker, nullptr))
        return;
    const std::wstring folder = logFolder(maker, m_name1);
    if (!m_path->createDirectories(folder, m_securityAttributes.get()))
        return;
    m_fileBase = folder + L"\\" + m_name2;
    if (administrator && (m_flags & LOG_FLAG_USER_SUFFIX))
        m_fileBase += L"." + account::userSid();
    for (unsigned i = 0; i <= m_rotateCount + 1; ++i)
        m_names.push_back(fileName(i));
    createMutex(administrator, lowIntegrity);
}

void FileContext::createMutex(bool administrator, bool local)
{
    const std::wstring name = mutexName(local);
    const FileSystem::SecurityAttributesPointer attributes = administrator ? restrictedAttributes() : nullptr;
    m_mutex = CreateMutexW(attributes.get(), FALSE, name.c_str());
    // Made by another account, and closed to this one but for waiting.
    if (!m_mutex && GetLastError() == ERROR_ACCESS_DENIED)
        m_mutex = OpenMutexW(SYNCHRONIZE, FALSE, name.c_str());
}

bool FileContext::acquire() const
{
    const DWORD result = WaitForSingleObject(m_mutex, m_mutexWaitMs);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

void FileContext::write(std::wstring_view line)
{
    if (!acquire())
        return;
    if (prepareFile())
        m_file->write(line.data(), line.size() * sizeof(wchar_t));
    ReleaseMutex(m_mutex);
}

void FileContext::flush()
{
    if (!acquire())
        return;
    m_file->flush();
    ReleaseMutex(m_mutex);
}

int FileContext::logLevel(int fallback) const
{
    return m_logLevel ? static_cast<int>(*m_logLevel) : fallback;
}

bool FileContext::debugOutputEnabled() const
{
    return m_debugOutput;
}

bool FileContext::hasRoom() const
{
    return static_cast<std::uint32_t>(m_file->size()) < m_maxSize;
}

bool FileContext::prepareFile()
{
    if (m_names.empty())
        return false;
    if (m_file->isOpen()) {
        if (hasRoom())
            return true;
        m_file->close();
    }
    // The name may stand for a new file by now: another process rotates too, and once is enough.
    if (m_file->open(m_names[0], m_securityAttributes.get())) {
        if (hasRoom())
            return true;
        m_file->close();
    }
    rotate();
    return m_file->open(m_names[0], m_securityAttributes.get());
}

void FileContext::rotate()
{
    m_path->remove(m_names[m_rotateCount]);
    for (unsigned n = m_rotateCount; n-- > 0;)
        if (m_path->exists(m_names[n]))
            m_path->move(m_names[n], m_names[n + 1]);
}

std::wstring FileContext::fileName(unsigned index) const
{
    if (m_fileBase.empty())
        return {};
    return index == 0 ? m_fileBase + L".log" : m_fileBase + L"." + std::to_wstring(index) + L".log";
}

void FileContext::deleteFile(const std::wstring& path)
{
    const std::wstring doomed = path + L"__delete_" + std::to_wstring(GetTickCount());
    m_path->remove(m_path->move(path, doomed) ? doomed : path);
}

std::wstring FileContext::mutexName(bool local) const
{
    std::wstring name = (local ? localMutexPrefix : mutexPrefix) + m_fileBase;
    std::replace(name.begin() + mutexPathStart, name.end(), L'\\', L'_');
    return name;
}

} // namespace VxQrlLogging
