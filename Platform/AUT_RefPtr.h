#ifndef PLATFORM_AUT_REFPTR_H
#define PLATFORM_AUT_REFPTR_H

#include "QEENGINE_EXPORT.h"

#include <cstdint>

/// Returns the memory of one reference count, uninitialised. Throws std::bad_alloc when there is
/// none left.
[[nodiscard]] QEENGINE_EXPORT std::int32_t* AUT_RefPtrGetMemory();

/// Takes back what AUT_RefPtrGetMemory gave. Null is ignored.
QEENGINE_EXPORT void AUT_RefPtrReleaseMemory(std::int32_t* count) noexcept;

/// A reference-counting pointer: the last one deletes the object.
///
/// The 32-bit count is allocated apart from the object, and exists for a null object as well.
/// It is not atomic: all holders of one object belong to one thread.
template <typename T>
class AUT_RefPtr
{
public:
    /// Takes ownership of `object`, which may be null. When no count can be had, the object is
    /// deleted before the exception leaves.
    explicit AUT_RefPtr(T* object = nullptr);

    AUT_RefPtr(const AUT_RefPtr& other) noexcept;
    // Exchanges itself with a copy, which a self-assignment does as well.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
    AUT_RefPtr& operator=(const AUT_RefPtr& other) noexcept;
    ~AUT_RefPtr();

    /// Returns the object, which stays shared by its pointers; null when there is none.
    [[nodiscard]] T* Get() const noexcept { return mObject; }
    T* operator->() const noexcept { return mObject; }
    T& operator*() const noexcept { return *mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }

private:
    static std::int32_t* MakeCount(T* object);

    T* mObject;
    std::int32_t* mCount;
};

template <typename T>
AUT_RefPtr<T>::AUT_RefPtr(T* object) : mObject(object), mCount(MakeCount(object))
{}

template <typename T>
AUT_RefPtr<T>::AUT_RefPtr(const AUT_RefPtr& other) noexcept
    : mObject(other.mObject), mCount(other.mCount)
{
    ++*mCount;
}

template <typename T>
AUT_RefPtr<T>& AUT_RefPtr<T>::operator=(const AUT_RefPtr& other) noexcept
{
    AUT_RefPtr copy(other);
    T* const object = mObject;
    std::int32_t* const count = mCount;
    mObject = copy.mObject;
    mCount = copy.mCount;
    copy.mObject = object;
    copy.mCount = count;
    return *this;
}

template <typename T>
AUT_RefPtr<T>::~AUT_RefPtr()
{
    if (--*mCount > 0)
        return;
    AUT_RefPtrReleaseMemory(mCount);
    delete mObject;
}

template <typename T>
std::int32_t* AUT_RefPtr<T>::MakeCount(T* object)
{
    try {
        std::int32_t* const count = AUT_RefPtrGetMemory();
        *count = 1;
        return count;
    } catch (...) {
        delete object;
        throw;
    }
}

#endif
