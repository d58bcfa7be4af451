#include "tarnctl/bundle/cabinet.h"

#include "vxtl/str.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <io.h>
#include <stdexcept>
#include <sys/stat.h>
#include <windows.h>

#include <fci.h>

namespace tarnctl::bundle {

namespace {

// What the library asks of its caller: files by descriptors of the run-time library, memory. Names are narrow there,
// and only come back to the functions here: all are UTF-8, whatever the system's code page.

void* DIAMONDAPI allocate(ULONG size)
{
    return std::malloc(size);
}
void DIAMONDAPI release(void* memory)
{
    std::free(memory);
}

INT_PTR DIAMONDAPI openFile(char* name, int flags, int mode, int* error, void*)
{
    const int file = _wopen(vx::str::fromUtf8(name).c_str(), flags | _O_BINARY, mode);
    if (file == -1)
        *error = errno;
    return file;
}
UINT DIAMONDAPI readFile(INT_PTR file, void* memory, UINT size, int* error, void*)
{
    const int got = _read(static_cast<int>(file), memory, size);
    if (got == -1)
        *error = errno;
    return static_cast<UINT>(got);
}
UINT DIAMONDAPI writeFile(INT_PTR file, void* memory, UINT size, int* error, void*)
{
    const int put = _write(static_cast<int>(file), memory, size);
    if (put == -1)
        *error = errno;
    return static_cast<UINT>(put);
}
int DIAMONDAPI closeFile(INT_PTR file, int* error, void*)
{
    const int result = _close(static_cast<int>(file));
    if (result == -1)
        *error = errno;
    return result;
}
LONG DIAMONDAPI seekFile(INT_PTR file, LONG distance, int origin, int* error, void*)
{
    const LONG result = _lseek(static_cast<int>(file), distance, origin);
    if (result == -1)
        *error = errno;
    return result;
}
int DIAMONDAPI deleteFile(char* name, int* error, void*)
{
    const int result = _wunlink(vx::str::fromUtf8(name).c_str());
    if (result == -1)
        *error = errno;
    return result;
}

/// A folder for the library's files and the contents, gone with this.
class TemporaryFolder {
public:
    TemporaryFolder()
        : m_path(std::filesystem::temp_directory_path() /
                 (L"tarnctl-" + std::to_wstring(GetCurrentProcessId()) + L'-' + std::to_wstring(GetTickCount())))
    {
        create_directories(m_path);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    const std::filesystem::path m_path;
};

} // namespace

struct Cabinet::State {
    explicit State(std::filesystem::path target)
        : file(std::move(target)), narrow(vx::str::toUtf8(folder.path().native()) + '\\')
    {
        if (narrow.size() >= CB_MAX_CAB_PATH)
            throw std::runtime_error("the way to the folder for temporary files is too long");
        parameters.cb = 0x7FFFFFFF; // never a second cabinet
        parameters.cbFolderThresh = 0x7FFFFFFF;
        std::strncpy(parameters.szCab, "bundle.cab", CB_MAX_CABINET_NAME);
        std::strncpy(parameters.szCabPath, narrow.c_str(), CB_MAX_CAB_PATH - 1);
        context = FCICreate(&error, onPlaced, allocate, release, openFile, readFile, writeFile, closeFile, seekFile,
            deleteFile, onTemporaryName, &parameters, this);
        if (!context)
            fail("begun");
    }
    ~State()
    {
        if (context)
            FCIDestroy(context);
    }

    [[noreturn]] void fail(const char* what) const
    {
        throw std::runtime_error("the cabinet can't be " + std::string(what) + ": error " +
                                 std::to_string(error.erfOper) + ", " + std::to_string(error.erfType));
    }

    static int DIAMONDAPI onPlaced(PCCAB, char*, LONG, BOOL, void*) { return 0; }
    static BOOL DIAMONDAPI onTemporaryName(char* name, int size, void* pointer)
    {
        auto& state = *static_cast<State*>(pointer);
        const auto made = state.narrow + "temporary" + std::to_string(state.temporaries++);
        if (made.size() >= static_cast<std::size_t>(size))
            return FALSE;
        std::memcpy(name, made.c_str(), made.size() + 1);
        return TRUE;
    }
    static BOOL DIAMONDAPI onNextCabinet(PCCAB, ULONG, void*) { return FALSE; }
    static LONG DIAMONDAPI onStatus(UINT, ULONG, ULONG, void*) { return 0; }
    static INT_PTR DIAMONDAPI onOpen(
        char* name, USHORT* date, USHORT* time, USHORT* attributes, int* error, void* pointer)
    {
        FILETIME now, local;
        GetSystemTimeAsFileTime(&now);
        FileTimeToLocalFileTime(&now, &local);
        FileTimeToDosDateTime(&local, date, time);
        *attributes = _A_NAME_IS_UTF;
        return openFile(name, _O_RDONLY, 0, error, pointer);
    }

    const std::filesystem::path file;
    const TemporaryFolder folder;
    const std::string narrow; ///< the folder's, with a backslash
    CCAB parameters{};
    ERF error{};
    HFCI context = nullptr;
    unsigned temporaries = 0;
};

Cabinet::Cabinet(const std::filesystem::path& file) : m_state(std::make_unique<State>(file)) {}

Cabinet::~Cabinet() = default;

void Cabinet::add(const std::string& name, std::string_view content)
{
    auto& state = *m_state;
    const auto source = "content" + std::to_string(state.temporaries++);
    {
        std::ofstream stream(state.folder.path() / source, std::ios::binary);
        if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush())
            throw std::runtime_error("the folder for temporary files can't be written");
    }
    auto path = state.narrow + source;
    auto shown = name;
    if (!FCIAddFile(state.context, path.data(), shown.data(), FALSE, State::onNextCabinet, State::onStatus,
            State::onOpen, tcompTYPE_MSZIP))
        state.fail("filled");
}

void Cabinet::finish()
{
    auto& state = *m_state;
    if (!FCIFlushCabinet(state.context, FALSE, State::onNextCabinet, State::onStatus))
        state.fail("completed");
    std::error_code failed;
    copy_file(
        state.folder.path() / "bundle.cab", state.file, std::filesystem::copy_options::overwrite_existing, failed);
    if (failed)
        throw std::runtime_error("the cabinet can't be put at its place: error " + std::to_string(failed.value()));
}

} // namespace tarnctl::bundle
