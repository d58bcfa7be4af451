// The functions of <pthread.h> that libstdc++ and libgcc call for exceptions, static objects of functions and
// locales. Each of their locks is one word: its initial value marks it as fresh, zero is a fresh lock of the system's.

#include <cerrno>
#include <pthread.h>
#include <windows.h>

namespace __gnu_cxx {
void __freeres();
}

extern "C" unsigned char __stdcall RtlDllShutdownInProgress();

namespace {

static_assert(sizeof(pthread_mutex_t) == sizeof(SRWLOCK) && sizeof(pthread_cond_t) == sizeof(CONDITION_VARIABLE) &&
              sizeof(pthread_once_t) == sizeof(INIT_ONCE));

// The header's initialisers are -1 to -3. A lock in use never has such a value: the system keeps addresses in it, and
// there is no memory at the last bytes of the address space.
template <typename Lock, typename Word>
Lock* ready(Word* word)
{
    if (const Word initial = __atomic_load_n(word, __ATOMIC_RELAXED); initial >= -3 && initial < 0) {
        Word expected = initial;
        __atomic_compare_exchange_n(word, &expected, 0, false, __ATOMIC_RELAXED, __ATOMIC_RELAXED);
    }
    return reinterpret_cast<Lock*>(word);
}

/// The system's functions change the thread's last error, which whoever throws or catches may be about to read.
class LastErrorKeeper {
public:
    LastErrorKeeper() : m_error(GetLastError()) {}
    ~LastErrorKeeper() { SetLastError(m_error); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    const DWORD m_error;
};

/// The one slot that the run-time uses, for what it keeps of each thread. The system's slots for fibers call back
/// for every thread's value when the slot is given back. Older systems have only 128 of them for a whole process; when
/// they are used up, one of the many slots for threads does, whose values are then left behind: a run-time without a
/// slot ends the process.
class Slot {
public:
    int create(void (*destroy)(void*))
    {
        const LastErrorKeeper keeper;
        m_destroy = destroy;
        m_fiberIndex = FlsAlloc(&destroyValue);
        if (m_fiberIndex == FLS_OUT_OF_INDEXES)
            m_threadIndex = TlsAlloc();
        return isFibers() || m_threadIndex != TLS_OUT_OF_INDEXES ? 0 : EAGAIN;
    }
    void* get() const
    {
        const LastErrorKeeper keeper;
        return isFibers() ? FlsGetValue(m_fiberIndex) : TlsGetValue(m_threadIndex);
    }
    int set(const void* value) const
    {
        const LastErrorKeeper keeper;
        void* const own = const_cast<void*>(value);
        return (isFibers() ? FlsSetValue(m_fiberIndex, own) : TlsSetValue(m_threadIndex, own)) ? 0 : EINVAL;
    }
    void release()
    {
        if (isFibers())
            FlsFree(m_fiberIndex);
        else
            TlsFree(m_threadIndex);
        // From here on the numbers are somebody else's.
        m_fiberIndex = FLS_OUT_OF_INDEXES;
        m_threadIndex = TLS_OUT_OF_INDEXES;
    }

private:
    static void WINAPI destroyValue(void* value);

    bool isFibers() const { return m_fiberIndex != FLS_OUT_OF_INDEXES; }

    DWORD m_fiberIndex = FLS_OUT_OF_INDEXES;
    DWORD m_threadIndex = TLS_OUT_OF_INDEXES;
    void (*m_destroy)(void*) = nullptr;
};

constinit Slot slot;

void WINAPI Slot::destroyValue(void* value)
{
    if (value)
        slot.m_destroy(value);
}

/// Its destruction is the module's last one, when none of its code throws any more.
struct LastOfModule {
    ~LastOfModule()
    {
        if (RtlDllShutdownInProgress())
            return;
        slot.release();
        __gnu_cxx::__freeres();
    }
};

__attribute__((init_priority(101))) LastOfModule lastOfModule;

BOOL CALLBACK callOnce(INIT_ONCE*, void* function, void**)
{
    reinterpret_cast<void (*)()>(function)();
    return TRUE;
}

} // namespace

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*)
{
    *mutex = 0;
    return 0;
}

int pthread_mutex_destroy(pthread_mutex_t*)
{
    return 0;
}

int pthread_mutex_lock(pthread_mutex_t* mutex)
{
    AcquireSRWLockExclusive(ready<SRWLOCK>(mutex));
    return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex)
{
    ReleaseSRWLockExclusive(ready<SRWLOCK>(mutex));
    return 0;
}

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex)
{
    SleepConditionVariableSRW(ready<CONDITION_VARIABLE>(condition), ready<SRWLOCK>(mutex), INFINITE, 0);
    return 0;
}

int pthread_cond_broadcast(pthread_cond_t* condition)
{
    WakeAllConditionVariable(ready<CONDITION_VARIABLE>(condition));
    return 0;
}

int pthread_once(pthread_once_t* once, void (*function)())
{
    InitOnceExecuteOnce(reinterpret_cast<INIT_ONCE*>(once), &callOnce, reinterpret_cast<void*>(function), nullptr);
    return 0;
}

int pthread_key_create(pthread_key_t* key, void (*destroy)(void*))
{
    *key = 0;
    return slot.create(destroy);
}

void* pthread_getspecific(pthread_key_t)
{
    return slot.get();
}

int pthread_setspecific(pthread_key_t, const void* value)
{
    return slot.set(value);
}

pthread_t pthread_self()
{
    return GetCurrentThreadId();
}
