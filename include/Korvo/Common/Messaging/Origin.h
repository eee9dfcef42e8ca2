#pragma once

namespace Korvo::Common::Messaging {

/// Where a received message comes from, as far as a request/reply exchange cares: the ticket of
/// the request that it answers.
class Origin {
public:
    explicit Origin(int ticket = 0) noexcept : ticket(ticket) {}

    /// The 32-bit signed ticket that the server echoed from the request.
    const int& GetTicket() const noexcept { return ticket; }

private:
    int ticket;
};

}  // namespace Korvo::Common::Messaging
