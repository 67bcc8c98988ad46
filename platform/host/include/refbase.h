// SPDX-License-Identifier: Apache-2.0
//
// The platform's counted pointers. An object of a class that derives from RefBase counts its pointers itself: sptr
// keeps it alive, wptr does not and tells whether it still lives.
//
//     class Listener : public RefBase { ... };
//     sptr<Listener> listener = new Listener();              // or sptr<Listener>::MakeSptr()
//     sptr<Listener> same = listener.GetRefPtr();            // counts with the first one
//     wptr<Listener> watched = listener;
//     if (sptr<Listener> alive = watched.promote()) { ... }  // null once the last sptr is gone
//
// The counts may be changed from any thread; one pointer object is one thread's at a time. Deleting an object that an
// sptr holds, and a second count by std::shared_ptr, are errors that nothing detects.

#ifndef HOST_REFBASE_H
#define HOST_REFBASE_H

#include <utility>

namespace OHOS {

// What outlives a counted object for its weak pointers. Host sources have no use for it.
class RefCounter;

// The base of objects that count their pointers and end with the last.
class RefBase {
public:
    RefBase();
    RefBase(const RefBase &other);  // a copy is an object of its own: counts are not copied
    RefBase &operator=(const RefBase &other);
    virtual ~RefBase();

    // What sptr calls; `owner` tells who counts and may be anything. The object ends with its last count.
    void IncStrongRef(const void *owner);
    void DecStrongRef(const void *owner);

    // The strong counts at this moment, 0 before the first.
    int GetSptrRefCount();

private:
    template <typename T>
    friend class wptr;

    // Weak counting, by way of what outlives the object. Promote counts the object strongly unless it is gone.
    RefCounter *Watch() const;
    static RefCounter *Watch(RefCounter *counter);
    static void Unwatch(RefCounter *counter);
    static bool Promote(RefCounter *counter);

    RefCounter *counter_;
};

// A pointer that keeps its object.
template <typename T>
class sptr {
public:
    sptr() = default;
    sptr(T *object) : object_(object)  // NOLINT(google-explicit-constructor): the platform's converts
    {
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

    // Takes any of the above, a plain pointer and null too.
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
    operator T *() const  // comparisons are those of the plain pointers
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

// A pointer that does not keep its object, and tells whether it is still there.
template <typename T>
class wptr {
public:
    wptr() = default;
    wptr(T *object) : object_(object), counter_(object == nullptr ? nullptr : object->RefBase::Watch())
    {
    }
    template <typename Derived>
    wptr(const sptr<Derived> &object) : wptr(static_cast<T *>(object.GetRefPtr()))
    {
    }
    wptr(const wptr &other) : object_(other.object_), counter_(RefBase::Watch(other.counter_))
    {
    }
    wptr(wptr &&other) noexcept
        : object_(std::exchange(other.object_, nullptr)), counter_(std::exchange(other.counter_, nullptr))
    {
    }
    ~wptr()
    {
        RefBase::Unwatch(counter_);
    }
    wptr &operator=(wptr other) noexcept
    {
        std::swap(object_, other.object_);
        std::swap(counter_, other.counter_);
        return *this;
    }

    // A strong pointer to the object; null when the object is gone, or was never there.
    sptr<T> promote() const
    {
        if (!RefBase::Promote(counter_)) {
            return nullptr;
        }
        const sptr<T> object(object_);
        object_->DecStrongRef(this);  // what Promote counted, now that `object` does
        return object;
    }

private:
    T *object_ = nullptr;
    RefCounter *counter_ = nullptr;
};

}  // namespace OHOS

#endif  // HOST_REFBASE_H
