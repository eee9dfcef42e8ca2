#include "Bridge.h"

#include <utility>

namespace Korvo::Python {

namespace py = pybind11;

namespace {

bool Finalizing() {
#if PY_VERSION_HEX >= 0x030D0000
    return Py_IsFinalizing() != 0;
#else
    return _Py_IsFinalizing() != 0;
#endif
}

}  // namespace

Bridge::Bridge(PyObject* wake, std::size_t notificationBytes)
    : notificationLimit(notificationBytes), wake(wake) {
    Py_INCREF(wake);
}

void Bridge::Post(Item item) { Enqueue(std::move(item), false); }

void Bridge::PostNotification(std::string family, std::string json, std::uint64_t id,
                              int code) {
    Enqueue(Item{kNotification, id, code, std::move(json), std::move(family)}, true);
}

void Bridge::Enqueue(Item item, bool bounded) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (bounded) {
            const std::size_t size = item.text.size() + item.note.size();
            if (notificationBytes + size > notificationLimit && notificationBytes != 0) {
                ++dropped;
                return;
            }
            notificationBytes += size;
        }
        items.push_back(std::move(item));
        if (scheduled || closed) {
            return;
        }
        scheduled = true;
    }
    // An interpreter on its way out cannot take a thread in; the atexit hook of the package
    // closes every connection before that, so this is only a last guard.
    if (!Py_IsInitialized() || Finalizing()) {
        return;
    }
    PyGILState_STATE state = PyGILState_Ensure();
    PyObject* result = PyObject_CallNoArgs(wake);
    if (result == nullptr) {
        // The loop is closed: nobody waits for what is queued any more.
        PyErr_Clear();
    }
    Py_XDECREF(result);
    PyGILState_Release(state);
}

py::list Bridge::Take() {
    std::deque<Item> taken;
    {
        std::lock_guard<std::mutex> lock(mutex);
        taken.swap(items);
        notificationBytes = 0;
        scheduled = false;
    }
    py::list list(taken.size());
    std::size_t index = 0;
    for (auto& item : taken) {
        list[index++] = py::make_tuple(static_cast<int>(item.kind), item.id, item.code,
                                       py::str(item.text), py::str(item.note));
    }
    return list;
}

std::uint64_t Bridge::Dropped() const {
    std::lock_guard<std::mutex> lock(mutex);
    return dropped;
}

void Bridge::Close() {
    std::lock_guard<std::mutex> lock(mutex);
    closed = true;
}

void Bridge::ReleaseWake() {
    Py_CLEAR(wake);
}

}  // namespace Korvo::Python
