// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// The platform's reference-counted pointer. An object of a class that derives from RefBase contains its own reference
/// count, and is deleted when the last sptr that points to it is destroyed.
///
///     class Listener : public RefBase { ... };
///     sptr<Listener> listener = new Listener();    // or sptr<Listener>::MakeSptr()
///     sptr<Listener> same = listener.GetRefPtr();  // shares the count
///
/// The count is thread-safe. An sptr is not: callers must synchronize access to it. It is undefined behavior to delete
/// an object that an sptr owns, or to own it with a std::shared_ptr as well.

#ifndef HOST_REFBASE_H
#define HOST_REFBASE_H

#include <atomic>
#include <type_traits>
#include <utility>

namespace OHOS {

/// The base of reference-counted objects.
class RefBase {
public:
    RefBase();
    RefBase(const RefBase &other);  // the count is not copied
    RefBase &operator=(const RefBase &other);
    virtual ~RefBase();

    /// Called by sptr. `owner` is ignored. Releasing the last reference deletes the object.
    void IncStrongRef(const void *owner);
    void DecStrongRef(const void *owner);

    /// Returns the current count, 0 before the first sptr and in the destructor.
    int GetSptrRefCount();

private:
    std::atomic<int> count_{0};
};

/// A strong pointer, which keeps its object alive.
template <typename T>
class sptr {
public:
    sptr() = default;
    sptr(T *object) : object_(object)  // NOLINT(google-explicit-constructor): implicit, as on the platform
    {
        static_assert(std::is_base_of_v<RefBase, T>, "sptr: the class must derive from RefBase");
        if (object_ != nullptr) {
            object_->IncStrongRef(this);
        }
    }
    sptr(const sptr &other) : sptr(other.object_)
    {
    }
    sptr(sptr &&other) noexcept : object_(std::exchange(other.object_, nullptr))
    {
    }
    template <typename Derived>
    sptr(const sptr<Derived> &other) : sptr(static_cast<T *>(other.GetRefPtr()))
    {
    }
    ~sptr()
    {
        if (object_ != nullptr) {
            object_->DecStrongRef(this);
        }
    }

    /// Also assigns plain pointers and null.
    sptr &operator=(sptr other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    template <typename... Args>
    static sptr MakeSptr(Args &&...args)
    {
        return sptr(new T(std::forward<Args>(args)...));
    }

    T *GetRefPtr() const
    {
        return object_;
    }
    operator T *() const  // also makes pointers comparable
    {
        return object_;
    }
    explicit operator bool() const
    {
        return object_ != nullptr;
    }
    T &operator*() const
    {
        return *object_;
    }
    T *operator->() const
    {
        return object_;
    }

private:
    T *object_ = nullptr;
};

}  // namespace OHOS

#endif  // HOST_REFBASE_H
