#pragma once

// The hand-off between the library's threads and the Python event loop. Library threads push what
// happened (a call ended, a part came, a notification, a state change) into a queue of plain C++
// values and, when the queue was empty, wake the loop once through a Python callable
// (`loop.call_soon_threadsafe(drain)`); the loop then takes everything queued in one go. That
// wake-up is the only moment a library thread holds the GIL, and no other Python object is touched
// there.

#include <Python.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include <pybind11/pybind11.h>

namespace Korvo::Python {

class Bridge {
public:
    enum Kind : int { kDone = 0, kPart = 1, kNotification = 2, kState = 3 };

    struct Item {
        Kind kind;
        std::uint64_t id;  // the call (kDone, kPart); the source of a mirror's change
        int code;          // the outcome (kDone), the state (kState), a mirror's change
        std::string text;  // reply or notification JSON, the state's name
        std::string note;  // the reason (kDone), the family (kNotification)
    };

    /// `wake` is called (with the GIL) to schedule a drain on the loop; a new reference is kept
    /// until `ReleaseWake`. `notificationBytes` bounds the notifications waiting for the loop.
    Bridge(PyObject* wake, std::size_t notificationBytes);

    /// Any library thread. Never dropped: every call waits for its end.
    void Post(Item item);

    /// Any library thread. Dropped and counted when the waiting notifications already hold
    /// `notificationBytes`. `id` and `code` travel with it (a mirror's source and change).
    void PostNotification(std::string family, std::string json, std::uint64_t id = 0,
                          int code = 0);

    /// The loop's thread, with the GIL: everything queued, as a list of
    /// (kind, id, code, text, note) tuples, in the order it was posted.
    pybind11::list Take();

    /// Notifications dropped so far at the bound.
    std::uint64_t Dropped() const;

    /// No wake-up after this; what is still posted waits for `Take`.
    void Close();

    /// With the GIL, once no library thread can post any more: drops the wake callable.
    void ReleaseWake();

private:
    void Enqueue(Item item, bool bounded);

    mutable std::mutex mutex;
    std::deque<Item> items;
    std::size_t notificationBytes = 0;  // held by the notifications in `items`
    const std::size_t notificationLimit;
    std::uint64_t dropped = 0;
    bool scheduled = false;  // a drain is on its way to the loop
    bool closed = false;
    PyObject* wake;
};

}  // namespace Korvo::Python
