#pragma once

// The server end of the notification benchmarks: an XPUB socket, so that a benchmark can wait
// for the subscription to arrive before it publishes.

#include <cstddef>
#include <string>
#include <thread>

#include <zmq.hpp>

namespace Korvo::Bench {

/// Publishes batches of one notification, [topic][header][payload], from a thread of its own.
/// Nothing is dropped: the send queue is unbounded, so a slow subscriber is measured, not skipped.
class Publisher {
public:
    /// Binds to a free loopback port of its own context.
    Publisher(std::string topic, std::string header, std::string payload);
    ~Publisher();

    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

    const std::string& Address() const { return address; }

    /// Waits for one subscription to arrive; false when none came within ten seconds.
    bool WaitForSubscriber();

    /// Starts publishing `count` copies on the publishing thread and returns at once.
    void StartBatch(std::size_t count);

    /// Waits until the batch started last has been handed to ZeroMQ.
    void FinishBatch();

private:
    zmq::context_t context;
    zmq::socket_t socket;
    std::string address;
    const std::string topic;
    const std::string header;
    const std::string payload;
    std::thread batch;
};

}  // namespace Korvo::Bench
